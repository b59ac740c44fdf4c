#include "desk/ControlProcessor.h"

#include <array>
#include <bit>
#include <cmath>
#include <utility>

#include "core/comm/VariableFrame.h"

namespace tvk::desk {

namespace {

void append(ControlProcessor::Bytes& bytes, const ControlProcessor::Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

}  // namespace

ControlProcessor::ControlProcessor(std::optional<int> product, PanelPins pins)
    : product_(product), pins_(std::move(pins)) {}

ControlProcessor::Bytes ControlProcessor::hear(std::span<const std::uint8_t> sent) {
    Bytes answers;
    for (const std::uint8_t byte : sent) {
        if (!receiver_.receive(byte)) continue;
        const std::optional<comm::VariableFrame> request = comm::decodeFrame(receiver_.content());
        if (request) append(answers, answer(request->name));
    }
    return answers;
}

ControlProcessor::Bytes ControlProcessor::move(const std::string& pin, float value) {
    pins_[pin] = value;
    return frame(pin, value);
}

ControlProcessor::Bytes ControlProcessor::answer(std::string_view request) {
    Bytes bytes;
    if (request == "GET_PRODUCT_ID" && product_) bytes = frame("PF0_AND_PF1", static_cast<float>(*product_));
    if (request == "GET_CURRENT_VALUES")
        for (const auto& [pin, value] : pins_)
            append(bytes, frame(pin, value));
    return bytes;
}

ControlProcessor::Bytes ControlProcessor::frame(const std::string& pin, float value) {
    if (isWholeNumber(pin)) {
        const std::span<const std::uint8_t> bytes =
            builder_.build(pin, static_cast<std::int32_t>(std::lround(value)));
        return {bytes.begin(), bytes.end()};
    }
    const auto word = std::bit_cast<std::uint32_t>(value);
    std::array<std::uint8_t, sizeof word> littleEndian{};
    for (std::size_t n = 0; n < littleEndian.size(); ++n)
        littleEndian[n] = static_cast<std::uint8_t>(word >> (8 * n));
    const std::span<const std::uint8_t> bytes = builder_.build(comm::VariableType::Float, pin, littleEndian);
    return {bytes.begin(), bytes.end()};
}

}  // namespace tvk::desk
