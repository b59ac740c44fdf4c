#include "desk/soundcard/VirtualCard.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <ctime>
#include <iterator>
#include <thread>
#include <utility>

namespace tvk::desk {

namespace {

constexpr std::int64_t kNsPerSecond = 1000000000;
constexpr std::int64_t kPeriod = VirtualCard::kPeriodFrames;
// Adding a period to it stays before frame 0.
constexpr std::int64_t kBeforeTransport = std::numeric_limits<std::int64_t>::min() / 2;

std::chrono::nanoseconds machineTime() {
    timespec t{};
    clock_gettime(CLOCK_MONOTONIC, &t);
    return std::chrono::nanoseconds(t.tv_sec * kNsPerSecond + t.tv_nsec);
}

std::int64_t roundUpToPeriod(std::int64_t frames) {
    return (frames + kPeriod - 1) / kPeriod * kPeriod;
}

}  // namespace

VirtualCard& VirtualCard::instance() {
    static VirtualCard card;
    return card;
}

void VirtualCard::configure(Settings settings) {
    settings_ = std::move(settings);
    sensitiveGain_ = std::pow(10.0f, settings_.sensitiveGainDb / 20.0f);
    virtualTime_.reset();
    epoch_ = machineTime();
    capture_ = Stream{};
    playback_ = Stream{};
    origin_ = kNoFrame;
    isInTransport_ = false;
    playedUpTo_ = 0;
    faults_ = std::exchange(settings_.faults, {});
    std::stable_sort(faults_.begin(), faults_.end(),
                     [](const Fault& a, const Fault& b) { return a.period < b.period; });
    shortReadEnd_ = kNoFrame;
    output_.clear();
    wakeLateness_.clear();
    requestFrame_.store(kNoFrame);
    finished_.store(false);
    isOutputWanted_.store(true);
    captureXruns_.store(0);
    playbackXruns_.store(0);
    lostFrames_.store(0);
    capturedFrames_.store(0);
}

std::chrono::nanoseconds VirtualCard::now() const {
    return settings_.clock == ClockMode::Virtual ? virtualTime_.now() : machineTime() - epoch_;
}

std::int64_t VirtualCard::frameAt(std::chrono::nanoseconds time) const {
    // In two steps, since the product of nanoseconds and rate leaves 64 bits after two days.
    const std::int64_t rate = settings_.rateHz;
    const std::int64_t seconds = time.count() / kNsPerSecond;
    const std::int64_t rest = time.count() % kNsPerSecond;
    return seconds * rate + rest * rate / kNsPerSecond;
}

std::chrono::nanoseconds VirtualCard::timeOf(std::int64_t frame) const {
    // Rounded up, so that frameAt(timeOf(frame)) is the frame.
    const std::int64_t rate = settings_.rateHz;
    const std::int64_t seconds = frame / rate;
    const std::int64_t rest = frame % rate;
    return std::chrono::nanoseconds(seconds * kNsPerSecond + (rest * kNsPerSecond + rate - 1) / rate);
}

std::int64_t VirtualCard::frameNow() const {
    return frameAt(now());
}

void VirtualCard::beginTransport() {
    requestFrame_.store(frameNow(), std::memory_order_release);
}

VirtualCard::Counters VirtualCard::counters() const {
    Counters counters;
    counters.captureXruns = captureXruns_.load(std::memory_order_relaxed);
    counters.playbackXruns = playbackXruns_.load(std::memory_order_relaxed);
    counters.lostFrames = lostFrames_.load(std::memory_order_relaxed);
    counters.capturedFrames = capturedFrames_.load(std::memory_order_relaxed);
    return counters;
}

int VirtualCard::prepare(Direction direction, std::size_t bufferFrames) {
    const std::int64_t cardFrame = frameNow();
    playOut(cardFrame);
    if (isGone(cardFrame)) return -ENODEV;
    Stream& which = stream(direction);
    which = Stream{};
    which.isPrepared = true;
    which.bufferFrames = bufferFrames;
    if (direction == Direction::Playback)
        playbackBuffer_.assign(bufferFrames, FrameRing::Frame{0.0f, 0.0f});
    else
        shortReadEnd_ = kNoFrame;
    return 0;
}

int VirtualCard::start(Direction direction) {
    virtualTime_.markAudioThread();
    const std::int64_t cardFrame = frameNow();
    if (isGone(cardFrame)) return -ENODEV;
    const auto run = [cardFrame](Stream& which) {
        if (!which.isPrepared || which.isRunning) return;
        which.isRunning = true;
        which.startFrame = cardFrame;
    };
    run(stream(direction));
    if (direction == Direction::Capture) run(playback_);
    return 0;
}

void VirtualCard::stop(Direction direction) {
    playOut(frameNow());
    stream(direction).isRunning = false;
    stream(direction).isPrepared = false;
}

void VirtualCard::settleOrigin() {
    if (origin_ != kNoFrame || !capture_.isRunning) return;
    const std::int64_t request = requestFrame_.load(std::memory_order_acquire);
    if (request == kNoFrame) return;
    origin_ = capture_.startFrame + roundUpToPeriod(std::max<std::int64_t>(request - capture_.startFrame, 0));
}

// Faults strike at the end of their period.
std::int64_t VirtualCard::frameOf(const Fault& fault) const {
    return origin_ + static_cast<std::int64_t>(fault.period + 1) * kPeriod;
}

bool VirtualCard::isGone(std::int64_t cardFrame) {
    if (origin_ == kNoFrame) return false;
    for (auto fault = faults_.begin(); fault != faults_.end() && frameOf(*fault) <= cardFrame;) {
        const std::int64_t end = frameOf(*fault) + static_cast<std::int64_t>(fault->periods) * kPeriod;
        const bool isGone = fault->kind == Fault::Kind::Gone;
        if (isGone && cardFrame < end) return true;
        fault = isGone ? faults_.erase(fault) : std::next(fault);
    }
    return false;
}

bool VirtualCard::takeFault(Fault::Kind kind, std::int64_t cardFrame) {
    if (origin_ == kNoFrame) return false;
    for (auto fault = faults_.begin(); fault != faults_.end() && frameOf(*fault) <= cardFrame; ++fault) {
        if (fault->kind != kind) continue;
        faults_.erase(fault);
        return true;
    }
    return false;
}

std::int64_t VirtualCard::fail(Stream& which, std::atomic<long>& count) {
    which.isRunning = false;
    which.isPrepared = false;
    count.fetch_add(1, std::memory_order_relaxed);
    return -EPIPE;
}

std::int64_t VirtualCard::position(Direction direction) {
    settleOrigin();
    const std::int64_t cardFrame = frameNow();
    playOut(cardFrame);
    if (isGone(cardFrame)) {
        capture_.isRunning = playback_.isRunning = false;
        capture_.isPrepared = playback_.isPrepared = false;
        return -ENODEV;
    }
    if (!stream(direction).isRunning) return 0;
    return direction == Direction::Capture ? capturePosition(cardFrame) : playbackPosition(cardFrame);
}

std::int64_t VirtualCard::capturePosition(std::int64_t cardFrame) {
    const std::int64_t captured = (cardFrame - capture_.startFrame) / kPeriod * kPeriod;
    if (takeFault(Fault::Kind::XrunCapture, capture_.startFrame + captured))
        return fail(capture_, captureXruns_);
    if (takeFault(Fault::Kind::ShortRead, capture_.startFrame + captured))
        shortReadEnd_ = captured - kPeriod / 2;
    if (shortReadEnd_ != kNoFrame)
        return capture_.moved >= shortReadEnd_ ? fail(capture_, captureXruns_) : shortReadEnd_;
    if (captured - capture_.moved >= static_cast<std::int64_t>(capture_.bufferFrames)) {
        noteWake(capture_.startFrame + capture_.moved + kPeriod);
        return fail(capture_, captureXruns_);
    }
    return captured;
}

std::int64_t VirtualCard::playbackPosition(std::int64_t cardFrame) {
    const std::int64_t played = (cardFrame - playback_.startFrame) / kPeriod * kPeriod;
    if (takeFault(Fault::Kind::XrunPlayback, playback_.startFrame + played))
        return fail(playback_, playbackXruns_);
    if (played >= playback_.moved) return fail(playback_, playbackXruns_);
    return played;
}

float VirtualCard::guitarAt(int which, std::int64_t transportFrame) const {
    const auto& guitar = settings_.guitars[static_cast<std::size_t>(which)];
    if (transportFrame < 0 || guitar.empty()) return 0.0f;
    const auto frame = static_cast<std::size_t>(transportFrame);
    if (frame < guitar.size()) return guitar[frame];
    return settings_.loop ? guitar[frame % guitar.size()] : 0.0f;
}

int VirtualCard::capture(float* interleaved, std::size_t frames) {
    if (!capture_.isRunning) return -EPIPE;
    const std::int64_t first = capture_.startFrame + capture_.moved;
    noteWake(first + static_cast<std::int64_t>(frames));
    const std::int64_t firstOfTransport = origin_ == kNoFrame ? kBeforeTransport : first - origin_;
    isInTransport_.store(
        firstOfTransport >= 0 && static_cast<std::uint64_t>(firstOfTransport) < settings_.transportFrames,
        std::memory_order_relaxed);
    for (std::size_t i = 0; i < frames; ++i) {
        const std::int64_t transportFrame = firstOfTransport + static_cast<std::int64_t>(i);
        const float normal = guitarAt(0, transportFrame);
        const float vibrato = guitarAt(1, transportFrame);
        float* const frame = interleaved + i * kChannels;
        frame[0] = std::clamp(vibrato * sensitiveGain_, -1.0f, 1.0f);
        frame[1] = vibrato;
        frame[2] = std::clamp(normal * sensitiveGain_, -1.0f, 1.0f);
        frame[3] = normal;
        frame[4] = frame[5] = 0.0f;
    }
    capture_.moved += static_cast<std::int64_t>(frames);
    capturedFrames_.fetch_add(frames, std::memory_order_relaxed);
    return 0;
}

void VirtualCard::noteWake(std::int64_t awaitedFrame) {
    if (settings_.clock == ClockMode::Real) wakeLateness_.add(now() - timeOf(awaitedFrame));
}

int VirtualCard::play(const float* interleaved, std::size_t frames) {
    if (!playback_.isPrepared) return isGone(frameNow()) ? -ENODEV : -EPIPE;
    for (std::size_t i = 0; i < frames; ++i) {
        const auto at = static_cast<std::size_t>(playback_.moved) + i;
        playbackBuffer_[at % playbackBuffer_.size()] = {interleaved[i * kChannels],
                                                        interleaved[i * kChannels + 1]};
    }
    playback_.moved += static_cast<std::int64_t>(frames);
    return 0;
}

void VirtualCard::playOut(std::int64_t cardFrame) {
    for (; playedUpTo_ < cardFrame; ++playedUpTo_) {
        FrameRing::Frame frame{0.0f, 0.0f};
        const std::int64_t position = playedUpTo_ - playback_.startFrame;
        if (playback_.isRunning && position >= 0 && position < playback_.moved)
            frame = playbackBuffer_[static_cast<std::size_t>(position) % playbackBuffer_.size()];
        if (origin_ != kNoFrame && playedUpTo_ >= origin_) emit(playedUpTo_, frame);
    }
}

void VirtualCard::emit(std::int64_t cardFrame, FrameRing::Frame frame) {
    const auto index = static_cast<std::uint64_t>(cardFrame - origin_);
    if (index < settings_.transportFrames) push(frame);
    if (index + 1 != settings_.transportFrames) return;
    finished_.store(true, std::memory_order_release);
    if (settings_.transportEnds) settings_.transportEnds();
}

void VirtualCard::push(FrameRing::Frame frame) {
    while (isOutputWanted_.load(std::memory_order_relaxed)) {
        if (output_.push(frame)) return;
        if (settings_.clock == ClockMode::Real) {
            lostFrames_.fetch_add(1, std::memory_order_relaxed);
            return;
        }
        // Under the virtual clock the disk may take its time: nothing is late.
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

std::chrono::nanoseconds VirtualCard::nextProgress(Direction direction) {
    const Stream& which = stream(direction);
    const std::int64_t moved = (frameNow() - which.startFrame) / kPeriod * kPeriod;
    return timeOf(which.startFrame + moved + kPeriod);
}

void VirtualCard::awaitProgress(Direction direction) {
    virtualTime_.waitUntil(nextProgress(direction));
}

void VirtualCard::drainPlayback() {
    if (!playback_.isRunning) return;
    const std::chrono::nanoseconds end = timeOf(playback_.startFrame + playback_.moved);
    if (settings_.clock == ClockMode::Virtual)
        virtualTime_.waitUntil(end);
    else if (const auto left = end - now(); left > std::chrono::nanoseconds::zero())
        std::this_thread::sleep_for(left);
    playOut(frameNow());
}

}  // namespace tvk::desk
