// A host that is edited from one thread while another runs it. The thread and address sanitizers judge the
// accesses; the units themselves notice when one is freed in mid-run.

#include <atomic>
#include <cmath>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

#include "GraphUnits.h"
#include "core/System/DspUnitHost.h"
#include "support/LogRecorder.h"
#include "support/RealtimeGuard.h"
#include "utility/RealtimeThread.h"

namespace {

constexpr int kBlock = 32;

class RunningHost {
public:
    RunningHost() {
        host.connectInput(0, input_.data(), 0);
        host.connectInput(1, input_.data(), 0);
        thread_ = std::thread([this] {
            const tvk::RealtimeThreadScope realtime;
            while (running_.load(std::memory_order_relaxed)) {
                host.process();
                for (int n = 0; n < kBlock; ++n)
                    if (!std::isfinite(host.getOutputAddr(0)[n])) sawNonsense.store(true);
                blocks.fetch_add(1, std::memory_order_relaxed);
            }
        });
    }
    ~RunningHost() {
        running_.store(false);
        thread_.join();
    }
    void waitForBlocks(long count) {
        const long until = blocks.load() + count;
        while (blocks.load() < until)
            std::this_thread::yield();
    }

    GraphDatabase database;
    DspUnitHost host{"host", kBlock, 2, 2, &database, 44100.0f};
    std::atomic<bool> sawNonsense{false};
    std::atomic<long> blocks{0};

private:
    std::vector<float> input_ = std::vector<float>(kBlock, 0.5f);
    std::atomic<bool> running_{true};
    std::thread thread_;
};

std::string offsetNode(const std::string& id) {
    return R"({"nodeId":")" + id +
           R"(","nodeType":"dspUnit","TarvekId":"Offset","dspUnitParameters":{"value":0.5}})";
}

const char* const kEdges = R"([{"input":{"nodeId":"preset","index":0},"output":{"nodeId":"a","index":0}},)"
                           R"({"input":{"nodeId":"a","index":0},"output":{"nodeId":"b","index":0}},)"
                           R"({"input":{"nodeId":"b","index":0},"output":{"nodeId":"preset","index":0}}])";

std::string graph() {
    return R"({"nodeType":"preset","nodeId":"preset","version":"1.1","numInputs":2,"numOutputs":2,)"
           R"("audioGraph":{"nodes":[)" +
           offsetNode("a") + "," + offsetNode("b") + R"(],"connections":)" + kEdges + "}}";
}

class HostConcurrencyTest : public testing::Test {
protected:
    HostConcurrencyTest() { OffsetUnit::freedWhileRunning.store(false); }

    void load() {
        DspArchive archive(graph());
        running.host.init(archive);
    }

    LogRecorder log;
    RunningHost running;
};

TEST_F(HostConcurrencyTest, LoadsNeverFreeAUnitThatRuns) {
    for (int i = 0; i < 200; ++i) {
        load();
        if (i % 20 == 0) running.waitForBlocks(2);
    }
    EXPECT_FALSE(OffsetUnit::freedWhileRunning);
    EXPECT_FALSE(running.sawNonsense);
}

TEST_F(HostConcurrencyTest, LoadsThatThrowNeverFreeAUnitThatRuns) {
    std::string failing = graph();
    failing.insert(failing.find("],\"connections\""),
                   R"(,{"nodeId":"f","nodeType":"dspUnit","TarvekId":"Failing","dspUnitParameters":{}})");
    for (int i = 0; i < 100; ++i) {
        load();
        DspArchive archive(failing);
        EXPECT_THROW(running.host.init(archive), std::runtime_error);
    }
    EXPECT_FALSE(OffsetUnit::freedWhileRunning);
}

TEST_F(HostConcurrencyTest, EditsNeverFreeAUnitThatRuns) {
    load();
    running.waitForBlocks(10);
    for (int i = 0; i < 20; ++i) {
        DspArchive node(offsetNode("x"));
        const std::string inserted = running.host.insertDspUnit("b", node);
        running.waitForBlocks(1);
        running.host.moveDspUnit(inserted, "a");
        const std::string replaced = running.host.replaceDspUnit(inserted, node);
        dynamic_cast<Parameter<float>&>(*running.host.getDspUnit(replaced)->getParameter("value")).set(0.25f);
        running.host.removeDspUnitAndBridge(replaced);
        const std::string added = running.host.addDspUnit(node);
        running.host.connectAll("b", added);
        running.host.removeDspUnit(added);
    }
    EXPECT_EQ(running.host.getNodeIds(), (std::vector<std::string>{"a", "b"}));
    EXPECT_FALSE(OffsetUnit::freedWhileRunning);
    EXPECT_FALSE(running.sawNonsense);
}

TEST_F(HostConcurrencyTest, TheAudioThreadNeitherAllocatesNorLocksThroughLoads) {
    load();
    running.waitForBlocks(10);
    const RealtimeGuard guard;
    for (int i = 0; i < 50; ++i) {
        load();
        running.waitForBlocks(1);
    }
    EXPECT_EQ(guard.violations(), RealtimeGuard::Violations{});
}

}  // namespace
