#include <atomic>
#include <gtest/gtest.h>
#include <latch>
#include <thread>

#include "utility/CallList.h"
#include "utility/Signal.h"

namespace {

TEST(CallListTest, ARoundCallsInTheOrderOfAdding) {
    tvk::CallList<int> list;
    list.add(3);
    list.add(1);
    list.add(2);
    std::vector<int> called;
    list.forEach([&](int callee) { called.push_back(callee); });
    EXPECT_EQ(called, (std::vector<int>{3, 1, 2}));
}

TEST(CallListTest, AnEntryRemovedDuringARoundIsNotCalledAfterwards) {
    tvk::CallList<int> list;
    list.add(1);
    const auto second = list.add(2);
    std::vector<int> called;
    list.forEach([&](int callee) {
        called.push_back(callee);
        list.remove(second);
    });
    EXPECT_EQ(called, std::vector<int>{1});
}

TEST(CallListTest, AnEntryMayRemoveItselfFromWithinItsCall) {
    tvk::CallList<int> list;
    const auto entry = list.add(1);
    int calls = 0;
    for (int round = 0; round < 2; ++round)
        list.forEach([&](int) {
            ++calls;
            list.remove(entry);
        });
    EXPECT_EQ(calls, 1);
}

TEST(CallListTest, RemovingWaitsForTheCallThatAnotherThreadIsIn) {
    tvk::CallList<int> list;
    const auto entry = list.add(1);
    std::latch isInside(1);
    std::atomic<bool> mayReturn = false;
    std::atomic<bool> hasReturned = false;
    std::thread caller([&] {
        list.forEach([&](int) {
            isInside.count_down();
            mayReturn.wait(false);
            hasReturned = true;
        });
    });
    isInside.wait();
    std::thread release([&] {
        mayReturn = true;
        mayReturn.notify_all();
    });
    list.remove(entry);
    EXPECT_TRUE(hasReturned);
    release.join();
    caller.join();
}

TEST(CallListTest, AllEntriesOfACalleeGoAtOnce) {
    tvk::CallList<int> list;
    list.add(1);
    list.add(2);
    list.add(1);
    list.removeCallee(1);
    std::vector<int> called;
    list.forEach([&](int callee) { called.push_back(callee); });
    EXPECT_EQ(called, std::vector<int>{2});
}

TEST(SignalTest, EverySlotReceivesTheValues) {
    nod::signal_type<float, int> signal;
    float sum = 0.0f;
    const nod::connection first = signal.connect([&](float a, int b) { sum += a * static_cast<float>(b); });
    const nod::connection second = signal.connect([&](float a, int) { sum += a; });
    signal(0.5f, 3);
    EXPECT_EQ(sum, 2.0f);
}

TEST(SignalTest, TheEndOfAConnectionDisconnectsItsSlot) {
    nod::signal_type<int> signal;
    int sum = 0;
    {
        const nod::connection kept = signal.connect([&](int v) { sum += v; });
        signal(1);
    }
    signal(10);
    EXPECT_EQ(sum, 1);
}

TEST(SignalTest, AConnectionThatIsMovedGoesOnAndTheOneReplacedEnds) {
    nod::signal_type<int> signal;
    int first = 0;
    int second = 0;
    nod::connection kept = signal.connect([&](int v) { first += v; });
    kept = signal.connect([&](int v) { second += v; });
    signal(1);
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
    EXPECT_TRUE(kept.connected());
}

TEST(SignalTest, AConnectionMayOutliveItsSignal) {
    nod::connection kept;
    {
        nod::signal_type<int> signal;
        kept = signal.connect([](int) {});
    }
    EXPECT_FALSE(kept.connected());
    kept.disconnect();
}

TEST(SignalTest, ASignalWithoutSlotsDoesNothing) {
    const nod::signal_type<> signal;
    signal();
}

TEST(SignalTest, ConnectingAndEmittingOverlap) {
    nod::signal_type<int> signal;
    std::atomic<int> sum = 0;
    const nod::connection kept = signal.connect([&](int v) { sum += v; });
    std::thread emitter([&] {
        for (int n = 0; n < 1000; ++n)
            signal(1);
    });
    for (int n = 0; n < 1000; ++n)
        const nod::connection brief = signal.connect([](int) {});
    emitter.join();
    EXPECT_EQ(sum, 1000);
}

}  // namespace
