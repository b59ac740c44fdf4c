#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "algorithms/amp/StandardAmpAlgorithmInterface.h"
#include "algorithms/amp/StandardAmpAlgorithmInterfaceAdapter.h"
#include "support/LogRecorder.h"

namespace {

using Lines = std::vector<std::string>;

TEST(StandardAmpAlgorithmInterface, EveryControlThatAModelLacksLogsSoAndNothingElse) {
    StandardAmpAlgorithmInterface amp;
    const LogRecorder log;
    amp.setGain(0.5f, false);
    amp.setBass(0.5f, true);
    amp.setMid(0.5f, false);
    amp.setMidLo(0.5f, false);
    amp.setMidHi(0.5f, false);
    amp.setMidfreq(0.5f, false);
    amp.setTreb(0.5f, false);
    amp.setBias(0.5f, false);
    amp.setSag(1, false);
    amp.setMasterVolume(0.5f, false);
    amp.setPresence(0.5f, false);
    amp.setBlend(0.5f, false);
    amp.setGain2(0.5f, false);
    amp.setCut(0.5f, false);
    amp.setBrightSw(true, false);
    amp.setBodyLevel(0.5f, false);
    Lines expected;
    for (const char* operation :
         {"Gain", "Bass", "Mid", "MidLo", "MidHi", "Midfreq", "Treb", "Bias", "Sag", "MasterVolume",
          "Presence", "Blend", "Gain2", "Cut", "BrightSw", "BodyLevel"})
        expected.push_back("Warn: set" + std::string(operation) + " not implemented");
    EXPECT_EQ(log.lines(), expected);
}

// Writes down what reaches the algorithm.
class RecordingAmp : public StandardAmpAlgorithmInterface {
public:
    void setGain(float value, bool isInit) override { note("gain", value, isInit); }
    void setBass(float value, bool isInit) override { note("bass", value, isInit); }
    void setMid(float value, bool isInit) override { note("mid", value, isInit); }
    void setMidLo(float value, bool isInit) override { note("midLo", value, isInit); }
    void setMidHi(float value, bool isInit) override { note("midHi", value, isInit); }
    void setMidfreq(float value, bool isInit) override { note("midfreq", value, isInit); }
    void setTreb(float value, bool isInit) override { note("treb", value, isInit); }
    void setBias(float value, bool isInit) override { note("bias", value, isInit); }
    void setSag(int value, bool isInit) override { note("sag", value, isInit); }
    void setMasterVolume(float value, bool isInit) override { note("master", value, isInit); }
    void setPresence(float value, bool isInit) override { note("presence", value, isInit); }
    void setBlend(float value, bool isInit) override { note("blend", value, isInit); }
    void setGain2(float value, bool isInit) override { note("gain2", value, isInit); }
    void setCut(float value, bool isInit) override { note("cut", value, isInit); }
    void setBrightSw(bool value, bool isInit) override { note("bright", value, isInit); }
    void setBodyLevel(float value, bool isInit) override { note("bodyLevel", value, isInit); }

    Lines calls;

private:
    template <typename T>
    void note(const char* name, T value, bool isInit) {
        calls.push_back(std::string(name) + " " + std::to_string(value) + (isInit ? " init" : " live"));
    }
};

class AdapterTest : public testing::Test {
protected:
    using Adapter = StandardAmpAlgorithmInterfaceAdapter;
    using Setter = void (Adapter::*)(float);
    using Getter = float (Adapter::*)() const;

    void expectFloatControl(const char* logName, const char* call, Setter set, Setter init, Getter get) {
        log.clear();
        amp.calls.clear();
        (adapter.*set)(0.25f);
        EXPECT_EQ((adapter.*get)(), 0.25f) << logName;
        (adapter.*init)(0.75f);
        EXPECT_EQ((adapter.*get)(), 0.75f) << logName;
        const std::string tag = "DspUnitAmp: " + std::string(logName);
        EXPECT_EQ(log.lines(), (Lines{tag + " set, 0.250000", tag + " init, 0.750000"}));
        EXPECT_EQ(amp.calls,
                  (Lines{std::string(call) + " 0.250000 live", std::string(call) + " 0.750000 init"}));
    }

    RecordingAmp amp;
    Adapter adapter{&amp};
    LogRecorder log;
};

TEST_F(AdapterTest, EveryKnobIsKeptLoggedAndHandedOnLiveAndAtLoad) {
    expectFloatControl("Gain", "gain", &Adapter::setGain, &Adapter::initGain, &Adapter::getGain);
    expectFloatControl("Bass", "bass", &Adapter::setBass, &Adapter::initBass, &Adapter::getBass);
    expectFloatControl("Mid", "mid", &Adapter::setMid, &Adapter::initMid, &Adapter::getMid);
    expectFloatControl("MidLo", "midLo", &Adapter::setMidLo, &Adapter::initMidLo, &Adapter::getMidLo);
    expectFloatControl("MidHi", "midHi", &Adapter::setMidHi, &Adapter::initMidHi, &Adapter::getMidHi);
    expectFloatControl("Midfreq", "midfreq", &Adapter::setMidfreq, &Adapter::initMidfreq,
                       &Adapter::getMidfreq);
    expectFloatControl("Treb", "treb", &Adapter::setTreb, &Adapter::initTreb, &Adapter::getTreb);
    expectFloatControl("Bias", "bias", &Adapter::setBias, &Adapter::initBias, &Adapter::getBias);
    expectFloatControl("Master", "master", &Adapter::setMaster, &Adapter::initMaster, &Adapter::getMaster);
    expectFloatControl("Presence", "presence", &Adapter::setPresence, &Adapter::initPresence,
                       &Adapter::getPresence);
    expectFloatControl("Blend", "blend", &Adapter::setBlend, &Adapter::initBlend, &Adapter::getBlend);
    expectFloatControl("Gain2", "gain2", &Adapter::setGain2, &Adapter::initGain2, &Adapter::getGain2);
    expectFloatControl("Cut", "cut", &Adapter::setCut, &Adapter::initCut, &Adapter::getCut);
}

TEST_F(AdapterTest, KnobsStandInTheMiddleAndSagAtMatchBeforeAnyChange) {
    EXPECT_EQ(adapter.getGain(), 0.5f);
    EXPECT_EQ(adapter.getBass(), 0.5f);
    EXPECT_EQ(adapter.getMid(), 0.5f);
    EXPECT_EQ(adapter.getTreb(), 0.5f);
    EXPECT_EQ(adapter.getMaster(), 0.5f);
    EXPECT_FALSE(adapter.getBright());
    EXPECT_EQ(adapter.getSag(), "match");
    EXPECT_TRUE(amp.calls.empty());
}

TEST_F(AdapterTest, BrightIsKeptLoggedAndHandedOn) {
    adapter.setBright(true);
    EXPECT_TRUE(adapter.getBright());
    adapter.initBright(false);
    EXPECT_FALSE(adapter.getBright());
    EXPECT_EQ(log.lines(), (Lines{"DspUnitAmp: Bright set, 1", "DspUnitAmp: Bright init, 0"}));
    EXPECT_EQ(amp.calls, (Lines{"bright 1 live", "bright 0 init"}));
}

TEST_F(AdapterTest, TheBodyLevelIsLoggedAsAWholeNumberAndItsLoadFormHasNoInit) {
    adapter.setBodyLevel(2.75f);
    adapter.initBodyLevel(3.5f);
    EXPECT_EQ(adapter.getBodyLevel(), 3.5f);
    EXPECT_EQ(log.lines(), (Lines{"DspUnitAmp: BodyLevel set, 2", "DspUnitAmp: BodyLevel, 3"}));
    EXPECT_EQ(amp.calls, (Lines{"bodyLevel 2.750000 live", "bodyLevel 3.500000 init"}));
}

TEST_F(AdapterTest, SagNamesBecomeTheirNumbers) {
    adapter.setSag("less");
    adapter.setSag("more");
    adapter.initSag("match");
    EXPECT_EQ(adapter.getSag(), "match");
    EXPECT_EQ(amp.calls, (Lines{"sag 0 live", "sag 2 live", "sag 1 init"}));
    EXPECT_EQ(log.lines(), (Lines{"DspUnitAmp: Sag set, less", "DspUnitAmp: Sag set, more",
                                  "DspUnitAmp: Sag init, match", "DspUnitAmp: Sag set, match"}));
}

TEST_F(AdapterTest, ABadSagIsRefusedAndTheLastOneStays) {
    adapter.setSag("more");
    amp.calls.clear();
    log.clear();
    for (const char* bad : {"Less", "", "match ", "3"}) {
        adapter.setSag(bad);
        adapter.initSag(bad);
    }
    EXPECT_EQ(adapter.getSag(), "more");
    EXPECT_TRUE(amp.calls.empty());
    EXPECT_EQ(log.count("Error invalid sag value"), 8);
}

// A model with no middle control, say.
TEST(StandardAmpAlgorithmInterfaceAdapter, AControlThatTheModelLacksLogsAtEachChange) {
    StandardAmpAlgorithmInterface amp;
    StandardAmpAlgorithmInterfaceAdapter adapter(&amp);
    const LogRecorder log;
    adapter.setMid(0.2f);
    adapter.setMid(0.3f);
    EXPECT_EQ(log.count("Warn: setMid not implemented"), 2);
    EXPECT_EQ(adapter.getMid(), 0.3f);
}

}  // namespace
