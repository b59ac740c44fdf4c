#include <gtest/gtest.h>

#include "GraphUnits.h"
#include "core/System/DspUnitAudioBufferStorage.h"
#include "core/System/DspUnitDatabase.h"
#include "core/System/DspUnitHost.h"
#include "support/LogRecorder.h"

namespace {

TEST(DspUnitDatabase, AnUnknownIdWarnsAndGivesAUnitOfTheDefaultType) {
    LogRecorder log;
    const GraphDatabase database;
    EXPECT_EQ(database.createDspUnit("Nonesuch", 8, 44100.0f)->getTarvekId(), "Default");
    EXPECT_STREQ(database.getDefinition("Nonesuch"), "{}");
    EXPECT_EQ(log.count("Warn can't find Nonesuch in database"), 2);
}

TEST(DspUnitDatabase, AddingAnIdAgainChangesNothing) {
    GraphDatabase database;
    const auto ids = database.getIds();
    const DspUnitDatabaseEntry again{"Offset", createNull, "other"};
    database.add(again);
    EXPECT_EQ(database.getIds(), ids);
    EXPECT_STREQ(database.getDefinition("Offset"), "{}");
}

TEST(DspUnitDatabase, TheDefaultIsTheFirstId) {
    const GraphDatabase database;
    EXPECT_EQ(database.getIds().front(), "Default");
    EXPECT_TRUE(database.contains("Default"));
    EXPECT_FALSE(database.contains("Nonesuch"));
}

TEST(DspUnitDatabase, ADefinitionLoadedAsANodeTakesItsDefaults) {
    const LogRecorder log;
    const GraphDatabase database;
    DspUnitHost host("host", 8, 2, 2, &database, 44100.0f);
    DspArchive definition(
        R"({"nodeType":"dspUnit","TarvekId":"Offset","defaultDspUnitParameters":{"value":7},"info":{},"ui":{}})");
    const std::string id = host.addDspUnit(definition);
    EXPECT_EQ(dynamic_cast<Parameter<float>&>(*host.getDspUnit(id)->getParameter("value")).get(), 7.0f);
}

TEST(DspUnitAudioBufferStorage, ABadIndexIsAnErrorAndNull) {
    LogRecorder log;
    float block[1] = {};
    DspUnitAudioBufferStorage::setAddr(2, block);
    EXPECT_EQ(DspUnitAudioBufferStorage::getAddr(2), block);
    DspUnitAudioBufferStorage::setAddr(2, nullptr);
    DspUnitAudioBufferStorage::setAddr(3, block);
    EXPECT_EQ(DspUnitAudioBufferStorage::getAddr(3), nullptr);
    EXPECT_EQ(DspUnitAudioBufferStorage::getAddr(-1), nullptr);
    EXPECT_EQ(log.startingWith("Error setAddr index 3 doesn't exist").size(), 1u);
    EXPECT_EQ(log.startingWith("Error getAddr index").size(), 2u);
}

}  // namespace
