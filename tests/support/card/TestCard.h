// A sound card in the test's hand, behind the real ALSA library under the name "hw".
//
// It has one time for both directions, in frames, which advances when a period of capture is asked for: a
// read never waits, and a run repeats. Playback that has been overtaken by the time is an underrun. Every
// call that reaches the card is written down, and hooks can break each transfer. Nothing in it allocates,
// locks or blocks after arm (but a hook may).
//
// One card a process; the AudioAlsaPcm that uses it lives shorter than a fixture's CardScope.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

struct TestCard {
    static TestCard& instance();

    // What the hardware can do; set before the device is opened.
    unsigned rateHz = 44100;
    unsigned channels = 6;
    std::vector<unsigned> formats{6, 10};  // ALSA format codes
    std::vector<unsigned> accesses{3};     // ALSA access codes
    unsigned mostPeriods = 16;
    unsigned mostBufferFrames = 16 * 32;
    int hwParamsResult = 0;
    int swParamsResult = 0;  // of every setting after the library's own default
    int startResult = 0;
    int prepareResult = 0;

    // The word of a channel at a frame of the capture.
    std::function<std::int32_t(std::uint64_t frame, unsigned channel)> captured;

    // How many of the frames a transfer moves, or a negative code. `call` counts the transfers of the
    // direction from 0.
    using Hook = std::function<long(long call, long frames)>;
    Hook onCapture;
    Hook onPlayback;

    // Runs on the reading thread whenever the time is about to advance.
    std::function<void()> beforePeriod;

    // What happened, in order: "capture prepare", "playback start", "read", "write", ...
    std::vector<const char*> calls;
    // All words written, interleaved.
    std::vector<std::int32_t> written;

    // As the program set them, one a stream.
    std::vector<unsigned long> startThresholds;

    long captureTransfers = 0;
    long playbackTransfers = 0;

    // State of the two streams.
    std::uint64_t time = 0;
    std::uint64_t readFrames = 0;      // since the last prepare
    std::uint64_t writtenFrames = 0;   // since the last prepare
    std::uint64_t capturedFrames = 0;  // since the start of the test
    bool captureRuns = false;
    bool playbackRuns = false;

    std::vector<std::string> callsSince(std::size_t first) const {
        return {calls.begin() + static_cast<std::ptrdiff_t>(first), calls.end()};
    }
    std::vector<std::int32_t> writtenChannel(unsigned channel) const {
        std::vector<std::int32_t> words;
        for (std::size_t i = channel; i < written.size(); i += channels)
            words.push_back(written[i]);
        return words;
    }
};

// Makes "hw:0,0" the card, in its first state, for the life of the object. Opening any other device fails.
class CardScope {
public:
    CardScope();
    ~CardScope();
    CardScope(const CardScope&) = delete;
    CardScope& operator=(const CardScope&) = delete;

    TestCard& card = TestCard::instance();

private:
    std::string configuration_;
};
