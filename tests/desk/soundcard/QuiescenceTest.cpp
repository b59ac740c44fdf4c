#include <atomic>
#include <condition_variable>
#include <gtest/gtest.h>
#include <mutex>
#include <sched.h>
#include <thread>
#include <unistd.h>
#include <utility>

#include "desk/soundcard/Quiescence.h"
#include "utility/scheduler.h"

using tvk::desk::Quiescence;

namespace {

// Answers each question as soon as it runs, and waits for the next.
class Answerer {
public:
    Answerer() : thread_([this] { run(); }) {}
    ~Answerer() {
        ask(kEnd);
        thread_.join();
    }
    Answerer(const Answerer&) = delete;
    Answerer& operator=(const Answerer&) = delete;

    void ask(int question) { ask(question, kNothing); }
    int answered() const { return answered_; }

    // The next question is answered after a byte has been read there.
    void readFrom(int descriptor) { ask(answered_ + 1, descriptor); }

    cpu_set_t processors() {
        cpu_set_t set;
        pthread_getaffinity_np(thread_.native_handle(), sizeof set, &set);
        return set;
    }
    void askForPriority(int priority) {
        tvk::scheduler::setThreadScheduling(thread_.native_handle(), SCHED_FIFO, priority);
    }
    void bindTo(const cpu_set_t& set) {
        pthread_setaffinity_np(thread_.native_handle(), sizeof set, &set);
        Quiescence::threadBound();
    }

private:
    static constexpr int kEnd = -1;
    static constexpr int kNothing = -1;

    void ask(int question, int readsFrom) {
        {
            const std::lock_guard lock(mutex_);
            question_ = question;
            readsFrom_ = readsFrom;
        }
        asked_.notify_one();
    }

    void run() {
        std::unique_lock lock(mutex_);
        while (question_ != kEnd) {
            char byte = 0;
            if (const int descriptor = std::exchange(readsFrom_, kNothing); descriptor != kNothing) {
                EXPECT_EQ(read(descriptor, &byte, 1), 1);
            }
            answered_ = question_;
            asked_.wait(lock, [this] { return question_ != answered_; });
        }
    }

    std::mutex mutex_;
    std::condition_variable asked_;
    int question_ = 0;
    std::atomic<int> answered_{0};
    int readsFrom_ = kNothing;
    std::thread thread_;  // the last: it uses all others
};

cpu_set_t processorsOfThisThread() {
    cpu_set_t set;
    pthread_getaffinity_np(pthread_self(), sizeof set, &set);
    return set;
}

// What shareProcessor does outlives it; the other tests get the test's processors back.
class Processors : public ::testing::Test {
protected:
    ~Processors() override { pthread_setaffinity_np(pthread_self(), sizeof before_, &before_); }

    // The n-th of those that the test may run on.
    cpu_set_t only(int n) const {
        cpu_set_t one;
        CPU_ZERO(&one);
        for (std::size_t cpu = 0; cpu < CPU_SETSIZE; ++cpu)
            if (CPU_ISSET(cpu, &before_) && n-- == 0) CPU_SET(cpu, &one);
        return one;
    }

    const cpu_set_t before_ = processorsOfThisThread();
};

// The test's thread and those that share its processor have real-time priorities, where machine and build
// give them.
class RealtimeProcessor : public Processors {
protected:
    RealtimeProcessor() { others_.shareProcessor(); }
    ~RealtimeProcessor() override {
        const sched_param none{};
        pthread_setschedparam(pthread_self(), SCHED_OTHER, &none);
    }

    static constexpr int kPriority = 3;
    const bool isRealTime_ = tvk::scheduler::setThreadScheduling(pthread_self(), SCHED_FIFO, kPriority);
    Quiescence others_;
};

// How many of 2000 questions have no answer yet when the others are said to be at rest.
int lateAnswers(Quiescence& others, Answerer& answerer) {
    others.await();
    int late = 0;
    for (int question = 1; question <= 2000; ++question) {
        answerer.ask(question);
        others.await();
        if (answerer.answered() != question) ++late;
    }
    return late;
}

}  // namespace

TEST_F(Processors, WokenFromAnotherOneIsAtWork) {
    Quiescence others;
    Answerer answerer;
    const cpu_set_t first = only(0);
    pthread_setaffinity_np(pthread_self(), sizeof first, &first);
    answerer.bindTo(only(CPU_COUNT(&before_) - 1));
    EXPECT_EQ(lateAnswers(others, answerer), 0);
}

TEST_F(Processors, SharedAreOne) {
    Quiescence others;
    others.shareProcessor();
    Answerer answerer;
    others.await();
    const cpu_set_t shared = answerer.processors();
    EXPECT_EQ(CPU_COUNT(&shared), 1);
    const cpu_set_t own = processorsOfThisThread();
    EXPECT_TRUE(CPU_EQUAL(&shared, &own));
}

TEST_F(Processors, SharedAreSharedByWhoIsBoundToOthersLater) {
    Quiescence others;
    others.shareProcessor();
    Answerer answerer;
    others.await();
    const cpu_set_t shared = answerer.processors();
    answerer.bindTo(before_);
    others.await();
    const cpu_set_t after = answerer.processors();
    EXPECT_TRUE(CPU_EQUAL(&after, &shared));
}

TEST_F(Processors, SharedGiveEveryTurnItsEnd) {
    Quiescence others;
    others.shareProcessor();
    Answerer answerer;
    EXPECT_EQ(lateAnswers(others, answerer), 0);
}

TEST_F(RealtimeProcessor, OfWhoAwaitsGoesBelowThoseOfTheOthers) {
    Answerer answerer;
    answerer.askForPriority(kPriority - 1);
    others_.await();
    sched_param own{};
    sched_getparam(0, &own);
    EXPECT_EQ(own.sched_priority, isRealTime_ ? 1 : 0) << "1 is the lowest real-time priority, 0 is none";
}

TEST_F(RealtimeProcessor, GivesEveryTurnItsEnd) {
    Answerer answerer;
    answerer.askForPriority(kPriority - 1);
    EXPECT_EQ(lateAnswers(others_, answerer), 0);
}

TEST_F(RealtimeProcessor, DoesNotHideThatAThreadAtRestHasGoneOnToACallThatIsNoWait) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    {
        Answerer answerer;
        answerer.askForPriority(kPriority - 1);
        others_.await();
        EXPECT_TRUE(others_.areAtRest());
        answerer.readFrom(ends[0]);
        EXPECT_FALSE(others_.areAtRest());
        EXPECT_EQ(write(ends[1], "x", 1), 1);
        others_.await();
    }
    close(ends[0]);
    close(ends[1]);
}
