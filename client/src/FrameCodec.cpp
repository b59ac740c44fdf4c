#include "client/FrameCodec.h"

#include <algorithm>
#include <utility>

namespace tvk::client {

namespace {

enum Tag : std::uint8_t { kFirst = '3', kBetween = '4', kLast = '5' };

constexpr std::size_t kHeadBytes = 3;
constexpr std::size_t kRoom = kFrameBytes - kHeadBytes;

Frame frameWith(Tag tag, std::span<const std::uint8_t> part) {
    Frame frame{};
    frame[0] = tag;
    frame[1] = static_cast<std::uint8_t>(part.size() / 256);
    frame[2] = static_cast<std::uint8_t>(part.size() % 256);
    std::ranges::copy(part, frame.begin() + kHeadBytes);
    return frame;
}

}  // namespace

std::vector<Frame> framesOf(std::span<const std::uint8_t> message) {
    std::vector<Frame> frames;
    if (message.empty() || message.size() > kMaxMessageBytes) return frames;
    while (message.size() > kRoom) {
        frames.push_back(frameWith(frames.empty() ? kFirst : kBetween, message.first(kRoom)));
        message = message.subspan(kRoom);
    }
    frames.push_back(frameWith(kLast, message));
    return frames;
}

struct FrameAssembler::Part {
    std::uint8_t tag;
    std::span<const std::uint8_t> bytes;
};

// What can be told of a frame without knowing what came before.
std::optional<FrameAssembler::Part> FrameAssembler::parse(std::span<const std::uint8_t> frame) {
    if (frame.size() <= kHeadBytes || frame.size() > kFrameBytes) return std::nullopt;
    const std::uint8_t tag = frame[0];
    const std::size_t size = std::size_t{256} * frame[1] + frame[2];
    const std::span<const std::uint8_t> behindHead = frame.subspan(kHeadBytes);
    const bool isTag = tag == kFirst || tag == kBetween || tag == kLast;
    if (!isTag || size == 0 || size > behindHead.size()) return std::nullopt;
    return Part{tag, behindHead.first(size)};
}

bool FrameAssembler::fits(const Part& part) const {
    const bool isUnderWay = !message_.empty();
    if (part.tag == kFirst && isUnderWay) return false;
    if (part.tag == kBetween && !isUnderWay) return false;
    return part.bytes.size() <= kMaxMessageBytes - message_.size();
}

std::optional<Bytes> FrameAssembler::add(std::span<const std::uint8_t> frame) {
    const std::optional<Part> part = parse(frame);
    if (!part || !fits(*part)) {
        ++dropped_;
        message_.clear();
        return std::nullopt;
    }
    message_.insert(message_.end(), part->bytes.begin(), part->bytes.end());
    if (part->tag != kLast) return std::nullopt;
    return std::exchange(message_, {});
}

Report reportOf(const Frame& frame) {
    Report report{};
    std::ranges::copy(frame, report.begin());
    return report;
}

std::optional<Frame> frameOf(const Report& report) {
    if (report[0] != 0) return std::nullopt;
    Frame frame{};
    std::copy(report.begin() + 1, report.end(), frame.begin());
    return frame;
}

}  // namespace tvk::client
