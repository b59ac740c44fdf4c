#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

#include "TestUnits.h"
#include "core/DspUnit/DspUnit.h"
#include "support/LogRecorder.h"

namespace {

using testing::ElementsAre;

// A parameter of any name and type.
template <typename T>
struct Loose {
    explicit Loose(const std::string& name)
        : parameter(name, PropertySlot(this, &Loose::get, &Loose::set, &Loose::set)) {}
    T get() const { return value; }
    void set(const T& v) { value = v; }
    T value{};
    Parameter<T> parameter;
};

TEST(DspUnit, KnowsItsTypeItsNameAndItsChannels) {
    PlainUnit unit(3, 1);
    EXPECT_EQ(unit.getTarvekId(), "DU_Plain");
    EXPECT_EQ(unit.getNodeId(), "");
    unit.setNodeId("node");
    EXPECT_EQ(unit.getNodeId(), "node");
    EXPECT_EQ(unit.getNodeType(), "dspUnit");
    EXPECT_EQ(unit.getNumInputs(), 3);
    EXPECT_EQ(unit.getNumOutputs(), 1);
    EXPECT_EQ(unit.getBlockLength(), kBlock);
}

TEST(DspUnit, UnconnectedInputsAndFreshOutputsAreZeros) {
    PlainUnit unit;
    std::set<const float*> arrays;
    for (int channel = 0; channel < 2; ++channel) {
        for (int n = 0; n < kBlock; ++n) {
            EXPECT_EQ(unit.getInputAddr(channel)[n], 0.0f);
            EXPECT_EQ(unit.getOutputAddr(channel)[n], 0.0f);
        }
        arrays.insert(unit.getOutputAddr(channel));
    }
    EXPECT_EQ(arrays.size(), 2u) << "each output has its own array";
}

TEST(DspUnit, TheLastConnectionGivesTheAddressAndTheChannelFallsSilentOnlyWhenAllAreGone) {
    for (const int first : {1, 2}) {
        PlainUnit unit;
        const float* silence = unit.getInputAddr(0);
        float a[kBlock], b[kBlock];
        unit.connectInput(0, a, 1);
        unit.connectInput(0, b, 2);
        EXPECT_EQ(unit.getInputAddr(0), b);
        EXPECT_THAT(unit.getInputConnections(0), ElementsAre(1, 2));
        unit.disconnectInput(0, first);
        EXPECT_EQ(unit.getInputAddr(0), b) << "whichever id goes first";
        unit.disconnectInput(0, 3 - first);
        EXPECT_EQ(unit.getInputAddr(0), silence);
        EXPECT_TRUE(unit.getInputConnections(0).empty());
    }
}

TEST(DspUnit, DisconnectRemovesEveryEntryOfAnId) {
    PlainUnit unit;
    float a[kBlock];
    for (int id : {7, 8, 7})
        unit.connectInput(1, a, id);
    unit.disconnectInput(1, 7);
    EXPECT_THAT(unit.getAllInputConnections(), ElementsAre(ElementsAre(), ElementsAre(8)));
}

TEST(DspUnit, DisconnectAllSilencesEveryInput) {
    PlainUnit unit;
    const float* silence = unit.getInputAddr(0);
    float a[kBlock];
    unit.connectInput(0, a, 1);
    unit.connectInput(1, a, 2);
    unit.disconnectAllInputs();
    for (int channel = 0; channel < 2; ++channel) {
        EXPECT_EQ(unit.getInputAddr(channel), silence);
        EXPECT_TRUE(unit.getInputConnections(channel).empty());
    }
}

TEST(DspUnit, ABadInputChannelIsAnErrorLineAndChangesNothing) {
    PlainUnit unit;
    float a[kBlock];
    LogRecorder log;
    unit.connectInput(2, a, 1);
    unit.connectInput(-1, a, 1);
    unit.disconnectInput(2, 1);
    EXPECT_EQ(log.count("Error bad channelIndex"), 3);
    EXPECT_THAT(unit.getAllInputConnections(), ElementsAre(ElementsAre(), ElementsAre()));
}

TEST(DspUnit, AConnectionIsLogged) {
    PlainUnit unit;
    unit.setNodeId("amp");
    LogRecorder log;
    unit.connectInput(1, nullptr, 12);
    EXPECT_EQ(log.lines(), std::vector<std::string>{"connectInput: amp, 1, 0x0, 12"});
}

TEST(DspUnit, OutputConnectionsAreKeptPerChannel) {
    PlainUnit unit;
    for (int id : {1, 2, 1})
        unit.addOutputConnection(0, id);
    unit.addOutputConnection(1, 3);
    EXPECT_THAT(unit.getAllOutputConnections(), ElementsAre(ElementsAre(1, 2, 1), ElementsAre(3)));
    unit.removeOutputConnection(0, 1);
    EXPECT_THAT(unit.getOutputConnections(0), ElementsAre(2));
    unit.clearOutputConnections();
    EXPECT_THAT(unit.getAllOutputConnections(), ElementsAre(ElementsAre(), ElementsAre()));
}

TEST(DspUnit, ConnectionListsAreRangeChecked) {
    PlainUnit unit;
    for (int channel : {-1, 2}) {
        EXPECT_THROW(unit.getInputConnections(channel), std::out_of_range);
        EXPECT_THROW(unit.getOutputConnections(channel), std::out_of_range);
        EXPECT_THROW(unit.addOutputConnection(channel, 1), std::out_of_range);
        EXPECT_THROW(unit.removeOutputConnection(channel, 1), std::out_of_range);
    }
}

TEST(DspUnit, ParametersAreFoundByNameAndListedByTheBytesOfTheirNames) {
    PlainUnit unit;
    Loose<float> level("level"), upper("Upper");
    Loose<int> count("count");
    for (IParameter* parameter :
         {static_cast<IParameter*>(&level.parameter), static_cast<IParameter*>(&upper.parameter),
          static_cast<IParameter*>(&count.parameter)})
        unit.addParameter(parameter);
    EXPECT_EQ(unit.getParameter("level"), &level.parameter);
    EXPECT_THAT(unit.getParameters(), ElementsAre(testing::Pair("Upper", &upper.parameter),
                                                  testing::Pair("count", &count.parameter),
                                                  testing::Pair("level", &level.parameter)));
}

TEST(DspUnit, AnUnknownParameterThrowsWithItsName) {
    PlainUnit unit;
    try {
        unit.getParameter("gain");
        ADD_FAILURE();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "Unknown parameter gain.");
    }
}

TEST(DspUnit, ReservedNamesGoThroughTheReservedPathOnly) {
    PlainUnit unit;
    Loose<bool> mute("muteInput");
    LogRecorder log;
    unit.addParameter(&mute.parameter);
    EXPECT_TRUE(log.has("Error cannot add parameter \"muteInput\", parameter is reserved"));
    EXPECT_TRUE(unit.getParameters().empty());
    unit.addReservedParameter(&mute.parameter);
    EXPECT_EQ(unit.getParameter("muteInput"), &mute.parameter);
}

TEST(DspUnit, EveryReservedNameHasOneType) {
    const auto accepts = [](auto loose) {
        PlainUnit unit;
        unit.addReservedParameter(&loose->parameter);
        return unit.getParameters().size() == 1;
    };
    const auto acceptedTypes = [&](const std::string& name) {
        std::string types;
        if (accepts(std::make_unique<Loose<float>>(name))) types += "f";
        if (accepts(std::make_unique<Loose<int>>(name))) types += "i";
        if (accepts(std::make_unique<Loose<bool>>(name))) types += "b";
        if (accepts(std::make_unique<Loose<std::string>>(name))) types += "s";
        return types;
    };
    for (const char* name : {"bypass", "clipState", "muteInput", "muteOutput"})
        EXPECT_EQ(acceptedTypes(name), "b") << name;
    for (const char* name : {"tapTime", "tapTimeBPM"})
        EXPECT_EQ(acceptedTypes(name), "f") << name;
    EXPECT_EQ(acceptedTypes("bypassType"), "s");
    EXPECT_EQ(acceptedTypes("mix"), "");
}

TEST(DspUnit, RefusedReservedParametersAreErrorLines) {
    PlainUnit unit;
    Loose<float> bypass("bypass"), mute("muteOutput"), mix("mix");
    LogRecorder log;
    unit.addReservedParameter(&bypass.parameter);
    unit.addReservedParameter(&mute.parameter);
    unit.addReservedParameter(&mix.parameter);
    EXPECT_THAT(log.lines(),
                ElementsAre("Error parameter has wrong type", "Error parameter \"muteOutput\" has wrong type",
                            "Error cannot add parameter \"mix\" as reserved"));
    EXPECT_TRUE(unit.getParameters().empty());
}

TEST(DspUnit, AReservedParameterReplacesTheOneThatIsThere) {
    PlainUnit unit;
    Loose<bool> first("bypass"), second("bypass");
    unit.addReservedParameter(&first.parameter);
    unit.addReservedParameter(&second.parameter);
    EXPECT_EQ(unit.getParameter("bypass"), &second.parameter);
    EXPECT_EQ(unit.getParameters().size(), 1u);
}

}  // namespace
