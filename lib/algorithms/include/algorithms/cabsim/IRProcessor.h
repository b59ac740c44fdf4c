// The convolver of a cabinet: a short impulse response from a file, on the audio thread and its own helper
// thread "cabSim".
//
// The stages are SplitConvolver's. A load takes the convolver out of the audio path (the dry signal passes
// meanwhile), waits until neither the audio thread nor the helper is inside, and puts new stages in; the
// audio thread waits for nothing.
//
//   load      active = 0 -> wait for inProcess = 0 and an idle tail -> read, build, swap -> active = 1
//   process   inProcess = 1 -> active? convolution : dry -> inProcess = 0
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include "algorithms/cabsim/IRStreamOwner.h"
#include "math/SplitConvolver.h"
#include "utility/AudioFileReader.h"
#include "utility/Flaggable.h"
#include "utility/TarvekThread.h"

class IRProcessor : public Flaggable<TarvekThread> {
public:
    // blockSize: frames of a call to process. irCapacity: samples used of a response. The third argument is
    // kept for the callers that pass it and has no effect. middleBlock: transform block of the middle.
    // headLength: K in samples. cpu, priority and name: the helper's. sampleRate: Hz, the only one that files
    // may have. The helper starts here. Throws std::invalid_argument for sizes that do not fit.
    IRProcessor(int blockSize, int irCapacity, int unused, int middleBlock, int headLength, int cpu,
                const std::string& name, int priority, float sampleRate);
    ~IRProcessor() override;

    // Makes the response of a WAV or AIFF file the current one: channel 0, cut at irCapacity or padded with
    // zeros. False, and dry from now on, when the file cannot be used. Control threads; several take turns.
    bool load(const std::string& path);

    // The same with a response in memory, at the system's rate.
    void load(std::span<const float> response);

    // Who may call process, when several units hold the convolver.
    IRStreamOwner& streamOwner() { return streamOwner_; }
    const IRStreamOwner& streamOwner() const { return streamOwner_; }

    // Writes one block to out: the convolution, or in while no response is loaded. count: blockSize. in and
    // out do not overlap. Audio thread.
    void process(const float* in, float* out, int count);

    // True while a response is loaded.
    bool isActive() const { return active_.load() != 0; }

protected:
    void init() override {}
    void loop() override;

private:
    void takeOutOfAudioPath();
    bool readResponse(const std::string& path);
    void swapStages();

    const int blockSize_;
    const float sampleRate_;
    const int irCapacity_;
    const int middleBlock_;
    const int headLength_;
    const std::chrono::nanoseconds blockPeriod_;
    SplitConvolver convolver_;
    IRStreamOwner streamOwner_;
    std::atomic<std::uint8_t> inProcess_{0};
    std::atomic<std::uint8_t> active_{0};

    std::mutex loadMutex_;
    AudioFileReader reader_;
    std::vector<float> irData_;
};
