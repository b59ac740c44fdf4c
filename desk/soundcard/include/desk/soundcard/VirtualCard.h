// The sound card that is not there: six channels in, six out, one clock for both directions.
//
//   guitar 0 (normal)  -> capture 2, times the sensitive gain, clipped at full scale
//                      -> capture 3, as it is                        } the analogue front end
//   guitar 1 (vibrato) -> capture 0 and 1 likewise                   }
//   playback 0 (speaker), 1 (line) -> output frames, taken by takeOutput
//
// The ALSA library sees it as a PCM plug-in of its own (src/IoPlug.cpp): the functions below that speak of a
// direction are called from there, the others by whoever plays with the card. Positions count frames since
// the direction's start and move by whole periods, as those of a card that raises one interrupt a period. The
// card's own time counts frames since configure; transport frames count from the period boundary after
// beginTransport.
//
// One object a process, whether its library was linked or loaded by the ALSA library.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

#include "desk/soundcard/Fault.h"
#include "desk/soundcard/FrameRing.h"
#include "desk/soundcard/Histogram.h"
#include "desk/soundcard/VirtualTime.h"

namespace tvk::desk {

class VirtualCard {
public:
    static constexpr int kChannels = 6;
    static constexpr int kPeriodFrames = 32;
    static constexpr std::uint64_t kEndless = std::numeric_limits<std::uint64_t>::max();

    enum class ClockMode {
        Real,    // CLOCK_MONOTONIC; who comes late gets an xrun
        Virtual  // VirtualTime; nobody can come late
    };

    struct Settings {
        ClockMode clock = ClockMode::Real;
        unsigned rateHz = 44100;
        float sensitiveGainDb = 20.0f;
        // Planar, 1.0 = full scale; past its end a guitar is silent unless it loops.
        std::array<std::vector<float>, 2> guitars;
        bool loop = false;
        // Frames of output to hand out; the transport is finished when they have been played.
        std::uint64_t transportFrames = kEndless;
        std::vector<Fault> faults;
        // Called by the audio thread when the transport's last frame has been played. Empty for nobody.
        std::function<void()> transportEnds;
    };

    struct Counters {
        long captureXruns = 0;             // overruns seen by the card, faults included
        long playbackXruns = 0;            // underruns likewise
        std::uint64_t lostFrames = 0;      // output frames that found the ring full (real clock only)
        std::uint64_t capturedFrames = 0;  // since configure, silence before the transport included
    };

    enum class Direction { Capture, Playback };

    static VirtualCard& instance();

    // Makes the ALSA library find this card under "hw". Call it before the process's first ALSA call.
    // Throws std::runtime_error when the configuration file is not beside the library.
    static void installConfiguration();

    // Puts the card into the state of its first day with these settings. No PCM may be open.
    void configure(Settings settings);

    const Settings& settings() const { return settings_; }
    VirtualTime& virtualTime() { return virtualTime_; }

    // The guitar starts, and the output with it, at the next period that begins. Once. Any thread.
    void beginTransport();

    // Throws away all output from now on: nobody will take it. Any thread.
    void endTransport() { isOutputWanted_.store(false, std::memory_order_relaxed); }

    // True once the transport's last frame has been played and can be taken. Any thread.
    bool transportFinished() const { return finished_.load(std::memory_order_acquire); }

    // Whether the period read last belongs to the transport's frames. Any thread.
    bool isInTransport() const { return isInTransport_.load(std::memory_order_relaxed); }

    // The output in order, at most `most` frames. One consumer thread.
    std::size_t takeOutput(FrameRing::Frame* to, std::size_t most) { return output_.take(to, most); }

    Counters counters() const;

    // How long after the end of a period the audio thread looked at the card (real clock). Any thread.
    const Histogram& wakeLateness() const { return wakeLateness_; }

    // --- The plug-in's side: everything below is called by the thread that reads and writes, except that
    // prepare and stop may be called before and after it by another.

    // These return 0 or a negative errno.
    int prepare(Direction direction, std::size_t bufferFrames);
    // Starting the capture starts a prepared playback at the same instant, as on a linked pair.
    int start(Direction direction);
    void stop(Direction direction);

    // Where the card reads or writes now, or -EPIPE for an xrun, -ENODEV for a card that is gone.
    std::int64_t position(Direction direction);

    // Hands out the next `frames` captured frames, or takes the next played ones: kChannels floats each.
    int capture(float* interleaved, std::size_t frames);
    int play(const float* interleaved, std::size_t frames);

    // When position will have moved on: time since configure.
    std::chrono::nanoseconds nextProgress(Direction direction);

    // Waits for that (virtual clock).
    void awaitProgress(Direction direction);

    // Waits until all that was written has been played.
    void drainPlayback();

    // The CLOCK_MONOTONIC time of the card's time zero.
    std::chrono::nanoseconds epoch() const { return epoch_; }

private:
    struct Stream {
        bool isPrepared = false;
        bool isRunning = false;
        std::int64_t startFrame = 0;  // card frame of position 0
        std::int64_t moved = 0;       // frames read or written since prepare
        std::size_t bufferFrames = 0;
    };

    VirtualCard() = default;

    std::chrono::nanoseconds now() const;
    std::int64_t frameNow() const;
    std::int64_t frameAt(std::chrono::nanoseconds time) const;
    std::chrono::nanoseconds timeOf(std::int64_t frame) const;
    Stream& stream(Direction direction) { return direction == Direction::Capture ? capture_ : playback_; }

    void settleOrigin();
    bool isGone(std::int64_t cardFrame);
    bool takeFault(Fault::Kind kind, std::int64_t cardFrame);
    std::int64_t frameOf(const Fault& fault) const;
    std::int64_t fail(Stream& which, std::atomic<long>& count);
    std::int64_t capturePosition(std::int64_t cardFrame);
    std::int64_t playbackPosition(std::int64_t cardFrame);
    void noteWake(std::int64_t awaitedFrame);
    void playOut(std::int64_t cardFrame);
    void emit(std::int64_t cardFrame, FrameRing::Frame frame);
    void push(FrameRing::Frame frame);
    float guitarAt(int which, std::int64_t transportFrame) const;

    Settings settings_;
    VirtualTime virtualTime_;
    std::chrono::nanoseconds epoch_{0};
    float sensitiveGain_ = 1.0f;

    Stream capture_;
    Stream playback_;
    std::int64_t origin_ = kNoFrame;  // card frame of transport frame 0
    std::atomic<bool> isInTransport_{false};
    std::int64_t playedUpTo_ = 0;                   // card frame; all before it has been played
    std::vector<Fault> faults_;                     // those to come and those in force, by their periods
    std::int64_t shortReadEnd_ = kNoFrame;          // capture position at which a short read breaks off
    std::vector<FrameRing::Frame> playbackBuffer_;  // written, not yet played; indexed by position

    FrameRing output_{kOutputFrames};
    Histogram wakeLateness_;
    std::atomic<std::int64_t> requestFrame_{kNoFrame};
    std::atomic<bool> finished_{false};
    std::atomic<bool> isOutputWanted_{true};
    std::atomic<long> captureXruns_{0};
    std::atomic<long> playbackXruns_{0};
    std::atomic<std::uint64_t> lostFrames_{0};
    std::atomic<std::uint64_t> capturedFrames_{0};

    static constexpr std::int64_t kNoFrame = -1;
    // Six seconds: longer than a disk is ever asleep.
    static constexpr std::size_t kOutputFrames = 1 << 18;
};

}  // namespace tvk::desk
