// The hand-over of a convolver's tail between the audio thread and its helper.
//
// Every K samples the audio side takes the tail that the helper has finished and hands over the input of the
// last K samples; the helper has until the next turn. Two one-byte flags carry it:
//
//   audio side   blocks written, done = 0, request = 1
//   helper       done = 0, request = 0, runs every block in order, done = 1
//
// The job is unfinished while request is set or done is not. Then the audio side is not held up and touches
// nothing that the helper owns: the warning "Convolution background thread overruning", the old tail once
// more, the input into a ring of spare blocks. The helper works through the ring; each result overwrites the
// one before, so late ones are dropped, and the tail is exact again from the first job that is done in time.
// When a stall fills the ring, input is lost; the tail's history is then forgotten, and the output is exact
// one response length later.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>

#include "math/fft/AlignedFloats.h"
#include "utility/JobBell.h"

class FFTConv2;

class TailExchange {
public:
    static constexpr int kRingBlocks = 8;

    // blockLength: K in samples. name: the helper's, at which HelperStall holds it.
    TailExchange(int blockLength, const std::string& name);
    // Nobody uses it any more; jobs that nobody ran are counted as done.
    ~TailExchange();
    TailExchange(const TailExchange&) = delete;
    TailExchange& operator=(const TailExchange&) = delete;

    // The convolver of the next jobs, which starts from silence, as both blocks do. Control side, while the
    // exchange is idle and the audio side stays away.
    void connect(FFTConv2* tail);

    // True when no job is pending or running.
    bool isIdle() const;

    // Takes the finished tail, or warns and keeps the old one; hands over input, K samples. Audio thread.
    void turn(const float* input);

    // The tail to play until the next turn: K samples. Audio thread.
    const float* output() const { return tailOut_.data(); }

    // Runs what has been handed over until nothing is left. Helper thread.
    void runPending();
    tvk::JobBell& bell() { return bell_; }

private:
    struct Block {
        fft::AlignedFloats input;
        bool isAfterLoss = false;
    };

    void handOver(const float* input);
    bool takeRequest();

    const int blockLength_;
    const std::string name_;
    FFTConv2* tail_ = nullptr;
    std::chrono::nanoseconds deadline_{0};  // a head's length
    std::atomic<std::uint8_t> tailRequest_{0};
    std::atomic<std::uint8_t> tailDone_{1};
    tvk::JobBell bell_;

    std::array<Block, kRingBlocks> ring_;
    std::atomic<std::uint32_t> written_{0};  // by the audio side
    std::atomic<std::uint32_t> run_{0};      // by the helper
    bool hasLostInput_ = false;              // the audio side's

    fft::AlignedFloats tailOut_;   // the audio side's
    fft::AlignedFloats tailNext_;  // the helper's until it is done
};
