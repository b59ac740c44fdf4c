#include "ProductFolders.h"
#include "proj/models/FactoryIRModel.h"
#include "proj/models/IRName.h"
#include "support/card/EngineOnCard.h"

namespace {

using tvk::FactoryIRModel;

struct Row {
    const char* family;
    int amplifier;
    const char* catalogue;
    const char* directory;
};

constexpr Row kRows[] = {
    {"slatePanel", 0, "/home/root/factoryIRsArvelSlate.json", "/home/root/factoryIRs/Arvel-SlatePanel-IRs/"},
    {"slatePanel", 1, "/home/root/factoryIRsCorvinSlate.json",
     "/home/root/factoryIRs/Corvin-SlatePanel-IRs/"},
    {"slatePanel", 2, "/home/root/factoryIRsLisko.json", "/home/root/factoryIRs/Lisko-SlatePanel-IRs/"},
    {"slatePanel", 3, "/home/root/factoryIRsSorrel.json", "/home/root/factoryIRs/Sorrel-SlatePanel-IRs/"},
    {"fawn", 0, "/home/root/factoryIRsArvelFawn.json", "/home/root/factoryIRs/Arvel-Fawn-IRs/"},
    {"fawn", 1, "/home/root/factoryIRsCorvinFawn.json", "/home/root/factoryIRs/Corvin-Fawn-IRs/"},
};

class FactoryIRModelTest : public ProductFolders {
protected:
    // The list after the amplifier's catalogue held this text.
    Lines listAfter(const std::string& text) {
        EngineOnCard engine;
        FactoryIRModel model(engine.model(), storage);
        write(kRows[0].catalogue, text);
        log.clear();
        model.amplifierChanged(0);
        return model.getFactoryIRList();
    }
};

TEST_F(FactoryIRModelTest, UntilTheAmplifierIsKnownTheListIsEmptyAndNoNameHasAPath) {
    EngineOnCard engine;
    write(kRows[0].catalogue, R"({"factoryIRs": [{"name": "a"}]})");
    const FactoryIRModel model(engine.model(), storage);
    EXPECT_TRUE(model.getFactoryIRList().empty());
    EXPECT_EQ(model.getFactoryIRFilePath("a"), tvk::kNoIR);
}

TEST_F(FactoryIRModelTest, EachAmplifierOfAFamilyHasItsCatalogueAndItsDirectory) {
    for (const Row& row : kRows)
        write(row.catalogue, R"({"factoryIRs": [{"name": ")" + std::string(row.family) +
                                 std::to_string(row.amplifier) + R"("}, {"name": "b"}]})");
    for (const char* const family : {"slatePanel", "fawn"}) {
        EngineOnCard engine(family);
        FactoryIRModel model(engine.model(), storage);
        log.clear();
        for (const Row& row : kRows) {
            if (row.family != std::string(family)) continue;
            model.amplifierChanged(row.amplifier);
            EXPECT_EQ(model.getFactoryIRList(), (Lines{family + std::to_string(row.amplifier), "b"}));
            EXPECT_EQ(model.getFactoryIRFilePath("b"), row.directory + std::string("b"));
        }
        EXPECT_TRUE(complaints().empty());
    }
}

TEST_F(FactoryIRModelTest, AnAmplifierThatTheFamilyDoesNotHaveHasNoResponses) {
    const std::pair<const char*, const char*> warnings[] = {
        {"slatePanel", "Warn No Slate Panel IRs for specified amp."},
        {"fawn", "Warn No Fawn IRs for specified amp."},
        {"ostrel", "Warn No IRs for specified product family: ostrel."}};
    for (const auto& [family, warning] : warnings) {
        EngineOnCard engine(family);
        FactoryIRModel model(engine.model(), storage);
        write(kRows[0].catalogue, R"({"factoryIRs": [{"name": "a"}]})");
        write(kRows[4].catalogue, R"({"factoryIRs": [{"name": "a"}]})");
        model.amplifierChanged(0);
        log.clear();
        model.amplifierChanged(4);
        EXPECT_EQ(complaints(), Lines{warning});
        EXPECT_TRUE(model.getFactoryIRList().empty()) << "the list before is gone";
        EXPECT_EQ(model.getFactoryIRFilePath("a"), tvk::kNoIR);
    }
}

TEST_F(FactoryIRModelTest, ACatalogueThatCannotBeReadLeavesTheListEmpty) {
    const Lines failure{"Error Failed to load factory IR database."};
    for (const std::string text : {"", "{", "[]", "{}", R"({"factoryIRs": {}})", R"({"factoryIRs": "a"})",
                                   R"({"factoryIRs": [{"name": "a"}, {}]})",
                                   R"({"factoryIRs": [{"name": 1}]})", R"({"factoryIRs": ["a"]})"}) {
        EXPECT_TRUE(listAfter(text).empty()) << text;
        EXPECT_EQ(complaints(), failure) << text;
    }
    EXPECT_TRUE(listAfter(R"({"factoryIRs": []})" + std::string(1 << 20, ' ')).empty());
    EXPECT_EQ(complaints(), failure) << "over a mebibyte";
    EXPECT_TRUE(listAfter(R"({"factoryIRs": []})").empty());
    EXPECT_TRUE(complaints().empty()) << "an empty catalogue is one";
}

TEST_F(FactoryIRModelTest, AListIsEmptiedBeforeTheNextIsRead) {
    EngineOnCard engine;
    FactoryIRModel model(engine.model(), storage);
    write(kRows[0].catalogue, R"({"factoryIRs": [{"name": "a"}]})");
    model.amplifierChanged(0);
    EXPECT_EQ(model.getFactoryIRList(), Lines{"a"});
    log.clear();
    model.amplifierChanged(1);
    EXPECT_TRUE(model.getFactoryIRList().empty());
    EXPECT_EQ(complaints(), Lines{"Error Failed to load factory IR database."});
}

TEST_F(FactoryIRModelTest, NamesThatMayNotBeAndRepetitionsAreLeftOut) {
    const Lines names = listAfter(
        R"({"factoryIRs": [{"name": "b"}, {"name": "../x"}, {"name": "a"}, {"name": "b"}, {"name": "\u001b[2J"}]})");
    EXPECT_EQ(names, (Lines{"b", "a"}));
    EXPECT_EQ(complaints(),
              (Lines{"Warn IR \"../x\" left out of its catalogue", "Warn IR \"b\" left out of its catalogue",
                     "Warn IR \"\\x1B[2J\" left out of its catalogue"}));
}

TEST_F(FactoryIRModelTest, ObserversHearOfTheAmplifierWhenItsCatalogueIsThere) {
    EngineOnCard engine;
    FactoryIRModel model(engine.model(), storage);
    write(kRows[2].catalogue, R"({"factoryIRs": [{"name": "a"}]})");
    Lines heard;
    {
        const nod::connection connection = model.addAmplifierObserver([&](int id) {
            heard.push_back(std::to_string(id) + " with " + std::to_string(model.getFactoryIRList().size()));
        });
        model.amplifierChanged(2);
    }
    model.amplifierChanged(2);
    EXPECT_EQ(heard, Lines{"2 with 1"});
}

}  // namespace
