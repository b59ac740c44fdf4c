// The hand-over of a vibrato channel's signal to the spring tank, which runs one block behind on a thread of
// its own.
//
//   audio thread   waits for the block before; takes the return, leaves the send; done = 0, request = 1
//   tank's thread  takes the request, runs the tank from send to return, done = 1
//
// The buffers belong to the tank's thread while request is set or done is not, else to the audio thread. The
// first block finds a silent return.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "utility/JobBell.h"

class ReverbHandover {
public:
    // blockLength: samples of a block.
    explicit ReverbHandover(int blockLength);
    // Neither thread uses it any more; a block that nobody ran is counted as done.
    ~ReverbHandover();
    ReverbHandover(const ReverbHandover&) = delete;
    ReverbHandover& operator=(const ReverbHandover&) = delete;

    // Gives send, one block, to the tank and writes what the tank made of the block before to returned. While
    // that is unfinished it warns "Reverb buffer not ready", lets other threads run, and looks again: nothing
    // is dropped. Audio thread.
    void exchange(const float* send, float* returned);

    // Takes a request, if there is one. Between a true answer and finish the buffers are the caller's. Tank's
    // thread.
    bool takeRequest();
    tvk::JobBell& bell() { return bell_; }
    const float* send() const { return reverbIn_.data(); }
    float* returned() { return reverbOut_.data(); }
    void finish();

private:
    bool isUnfinished() const;

    std::atomic<std::uint8_t> reverbRequest_{0};
    std::atomic<std::uint8_t> reverbDone_{1};
    tvk::JobBell bell_;
    std::vector<float> reverbIn_;
    std::vector<float> reverbOut_;
};
