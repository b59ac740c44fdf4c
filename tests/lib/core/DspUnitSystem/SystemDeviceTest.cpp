#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "algorithms/cabsim/IRProcessor.h"
#include "algorithms/cabsim/IRProcessorPool.h"
#include "core/DspUnitSystem/SFAD_LoadPresetCabsim.h"
#include "core/Parameter/Parameter.h"
#include "shared/DspUnitInfo/DefaultDspUnitDatabase.h"
#include "support/AudioWhileWaiting.h"
#include "support/LogRecorder.h"
#include "utility/Exception.h"

namespace {

constexpr int kBlock = 32;
constexpr float kRate = 44100.0f;

std::string chainOf(const std::vector<std::string>& tarvekIds) {
    std::string nodes;
    std::string edges;
    std::string before = "preset";
    const auto connect = [&](const std::string& to) {
        for (int c = 0; c < 2; ++c)
            edges += (edges.empty() ? "" : ",") + (R"({"input":{"nodeId":")" + before + R"(","index":)") +
                     std::to_string(c) + R"(},"output":{"nodeId":")" + to + R"(","index":)" +
                     std::to_string(c) + "}}";
        before = to;
    };
    for (const std::string& id : tarvekIds) {
        const std::string node = "node" + std::to_string(nodes.size());
        nodes += (nodes.empty() ? "" : ",") + (R"({"nodeId":")" + node) +
                 R"(","nodeType":"dspUnit","TarvekId":")" + id + R"(","dspUnitParameters":{}})";
        connect(node);
    }
    connect("preset");
    return R"({"nodeType":"preset","nodeId":"preset","version":"1.1","numInputs":2,"numOutputs":2,"info":{},)"
           R"("audioGraph":{"nodes":[)" +
           nodes + R"(],"connections":[)" + edges + "]}}";
}

class SystemDeviceTest : public testing::Test {
protected:
    SystemDeviceTest() {
        for (int c = 0; c < 2; ++c) {
            in[static_cast<size_t>(c)].assign(kBlock, 1.0f);
            device.connectInput(c, in[static_cast<size_t>(c)].data(), 0);
        }
    }
    void run(int blocks) {
        for (int i = 0; i < blocks; ++i)
            block();
    }
    void block() {
        device.process();
        const float* const out = device.getOutputAddr(0);
        heard.insert(heard.end(), out, out + kBlock);
    }

    LogRecorder log;
    DefaultDspUnitDatabase database;
    std::array<std::vector<float>, 2> in;
    SFAD_LoadPresetCabsim device{2, 2, &database, kBlock, "", nullptr, kRate};
    std::vector<float> heard;  // output 0, all blocks
    AudioWhileWaiting clock{kBlock / static_cast<double>(kRate), [this] { block(); }};
};

TEST_F(SystemDeviceTest, BeforeThePresetTheOutputIsSilent) {
    run(100);
    EXPECT_TRUE(std::all_of(heard.begin(), heard.end(), [](float x) { return x == 0.0f; }));
}

TEST_F(SystemDeviceTest, APresetPassesAudioAfterItsFades) {
    device.loadPreset(chainOf({"DUBS_Passthru"}));
    run(200);
    EXPECT_NEAR(heard.back(), 1.0f, 1e-4f);
}

TEST_F(SystemDeviceTest, TheOutputIsBelowOnePerCentAtTheMomentOfTheSwap) {
    device.loadPreset(chainOf({}));
    run(200);
    heard.clear();
    // A graph whose output is silent: whatever is heard after the swap is zero.
    device.loadPreset(
        R"({"nodeType":"preset","nodeId":"preset","numInputs":2,"numOutputs":2,"audioGraph":{}})");
    run(1);
    EXPECT_NEAR(heard.front(), 1.0, 0.05);
    const auto lastHeard = std::find_if(heard.rbegin(), heard.rend(), [](float x) { return x != 0.0f; });
    ASSERT_NE(lastHeard, heard.rend());
    EXPECT_LT(*lastHeard, 0.01f);
    // One pole of 1 ms from full level: nothing jumps on the way down.
    const double pole = std::exp(-1.0 / (0.001 * static_cast<double>(kRate)));
    for (auto x = heard.begin(); x + 1 != lastHeard.base(); ++x)
        EXPECT_NEAR(x[1], *x * pole, 1e-5);
}

TEST_F(SystemDeviceTest, ALateFadeIsWaitedForAtMostFiveMillisecondsMore) {
    device.loadPreset(chainOf({}));
    run(200);
    // Audio has stopped, so the fade never gets there.
    AudioWhileWaiting stopped(1.0, [] {});
    const auto start = stopped.now();
    device.loadPreset(chainOf({}));
    EXPECT_EQ(stopped.now() - start, std::chrono::milliseconds(10));
}

TEST_F(SystemDeviceTest, ASilentOutputIsMutedAfterFiveMilliseconds) {
    AudioWhileWaiting stopped(1.0, [] {});
    device.setMuteOutput(true);
    EXPECT_EQ(stopped.now(), std::chrono::milliseconds(5));
}

TEST_F(SystemDeviceTest, LoadingTwiceLeavesOneRunListWithOneUnit) {
    device.loadPreset(chainOf({"DUBS_Passthru"}));
    device.loadPreset(chainOf({"DUBS_Passthru"}));
    EXPECT_EQ(device.getNodeIds(), std::vector<std::string>{"node0"});
    run(200);
    EXPECT_NEAR(heard.back(), 1.0f, 1e-4f);
}

TEST_F(SystemDeviceTest, APresetWithoutNodesHasNoNodeIds) {
    device.loadPreset(chainOf({}));
    EXPECT_TRUE(device.getNodeIds().empty());
}

TEST_F(SystemDeviceTest, ATextThatDoesNotParseThrowsAndTouchesNothing) {
    device.loadPreset(chainOf({"DUBS_Passthru"}));
    run(200);
    const auto before = clock.now();
    try {
        device.loadPreset("{\"nodeType\":");
        FAIL() << "no exception";
    } catch (const std::exception& error) {
        EXPECT_EQ(std::string(error.what()).rfind("[json.exception.parse_error", 0), 0u) << error.what();
    }
    EXPECT_EQ(clock.now(), before) << "no mute was waited for";
    run(1);
    EXPECT_NEAR(heard.back(), 1.0f, 1e-4f);
}

TEST_F(SystemDeviceTest, ALoadThatThrowsLeavesSilence) {
    std::string bad = chainOf({"DUBS_Passthru"});
    bad.replace(bad.find("dspUnit"), 7, "plugin!");
    device.loadPreset(chainOf({"DUBS_Passthru"}));
    run(200);
    EXPECT_THROW(device.loadPreset(bad), tvk::Exception);
    EXPECT_TRUE(device.getNodeIds().empty());
    heard.clear();
    run(100);
    EXPECT_TRUE(std::all_of(heard.begin(), heard.end(), [](float x) { return x == 0.0f; }));
}

TEST_F(SystemDeviceTest, EditsReachTheLiveGraph) {
    device.loadPreset(chainOf({"DUBS_Passthru"}));
    const std::string definition = database.getDefinition("PassthruStereo");
    const DspArchive archive(definition);
    const std::string added = device.addDspUnit(archive);
    EXPECT_EQ(added, "PassthruStereo");
    device.disconnect("node0", 0, "preset", 0);
    device.disconnect("node0", 1, "preset", 1);
    device.connectAll("node0", added);
    device.connect(added, 0, "preset", 0);
    run(200);
    EXPECT_NEAR(heard.back(), 1.0f, 1e-4f);
    EXPECT_EQ(device.getOutputAddr(1)[0], 0.0f);

    DspArchive other(database.getDefinition("DU_StereoAdder"));
    EXPECT_EQ(device.insertDspUnit(added, other), "DU_StereoAdder");
    EXPECT_EQ(device.replaceDspUnit("DU_StereoAdder", other), "DU_StereoAdder");
    device.moveDspUnit("DU_StereoAdder", "node0");
    EXPECT_EQ(device.getNodeIds(), (std::vector<std::string>{"DU_StereoAdder", "node0", added}));
    device.removeDspUnitAndBridge("DU_StereoAdder");
    run(200);
    EXPECT_NEAR(heard.back(), 1.0f, 1e-4f);
    device.removeDspUnit(added);
    run(1);
    EXPECT_EQ(heard.back(), 0.0f);
    device.connectAll("node0", "preset");
    run(1);
    EXPECT_NEAR(heard.back(), 1.0f, 1e-4f);
    device.disconnect("node0");
    run(1);
    EXPECT_EQ(heard.back(), 0.0f);
}

TEST_F(SystemDeviceTest, NodesAnswerByTheirIds) {
    device.loadPreset(chainOf({"DUBS_Passthru"}));
    EXPECT_EQ(device.getTarvekIdInNode("node0"), "DUBS_Passthru");
    EXPECT_EQ(device.getTarvekIdInNode("nobody"), "");
    EXPECT_TRUE(log.has("Error Invalid DspUnit loaded in getTarvekIdInNode(). Returning empty string."));
    EXPECT_EQ(device.getParameter("node0", "bypass")->getName(), "bypass");
    EXPECT_THROW(device.getParameter("node0", "nothing"), std::runtime_error);
    EXPECT_THROW(device.getParameter("nobody", "bypass"), tvk::Exception);
    EXPECT_EQ(device.getFirstActiveImpedance(), std::make_pair(1000000.0f, 0.01f));
}

TEST_F(SystemDeviceTest, TheSecondNodeTakesNoAudioAndNoPreset) {
    auto nodeA = std::make_unique<DspUnitHost>("audioSystemNodeA", kBlock, 2, 2, &database, kRate);
    auto nodeB = std::make_unique<DspUnitHost>("audioSystemNodeB", kBlock, 2, 2, &database, kRate);
    DspUnitHost* const live = nodeA.get();
    DspUnitHost* const idle = nodeB.get();
    SFAD_LoadPreset both(2, 2, kBlock, kRate, std::move(nodeA), std::move(nodeB));
    both.connectInput(0, in[0].data(), 0);
    both.loadPreset(chainOf({"DUBS_Passthru"}));
    for (int i = 0; i < 200; ++i)
        both.process();
    EXPECT_NEAR(live->getOutputAddr(0)[kBlock - 1], 1.0f, 1e-4f);
    EXPECT_TRUE(idle->getNodeIds().empty());
    EXPECT_EQ(idle->getOutputAddr(0)[kBlock - 1], 0.0f);
    EXPECT_NE(idle->getInputAddr(0), in[0].data());
    EXPECT_EQ(both.getOutputAddr(0), live->getOutputAddr(0));
}

TEST_F(SystemDeviceTest, WithoutACostFileTheDeviceSaysSo) {
    const SFAD_LoadPreset plain(2, 2, &database, kBlock, kRate);
    EXPECT_TRUE(log.has("SystemFixedAudioDevice: running without processorUtilizationFilename"));
}

TEST_F(SystemDeviceTest, TheConvolverIsInThePoolOfTheCabinetsAsLongAsTheDeviceLives) {
    const auto convolver = std::make_shared<IRProcessor>(kBlock, 4096, 128, 64, 128, 3, "cabSim", 49, kRate);
    {
        const SFAD_LoadPresetCabsim other(2, 2, &database, kBlock, "", convolver, kRate);
        EXPECT_EQ(IRProcessorPool::size(), 1u);
        EXPECT_EQ(IRProcessorPool::take(), convolver);
    }
    EXPECT_FALSE(IRProcessorPool::isThere());
    EXPECT_EQ(convolver.use_count(), 1);
}

TEST_F(SystemDeviceTest, WithoutAConvolverThePoolIsThereAndEmpty) {
    const SFAD_LoadPresetCabsim other(2, 2, &database, kBlock, "", nullptr, kRate);
    EXPECT_TRUE(IRProcessorPool::isThere());
    EXPECT_EQ(IRProcessorPool::take(), nullptr);
}

}  // namespace
