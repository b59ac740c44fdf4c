// Any bytes into the amplifier's end of the serial link, and what must hold after them:
//
//   - it takes the frames that the control processor's program takes, a coder that shares nothing with it;
//   - each of them changes the variable of its name and type, and nothing else is changed;
//   - built again it is the same, by both coders;
//   - the next good frame is accepted, unless the bytes end in an escape, which takes a start with it: then
//     the one behind it is;
//   - after that the receiver holds nothing but this frame, and bytes outside of frames do nothing.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "core/comm/FrameBuilder.h"
#include "core/comm/FrameReceiver.h"
#include "core/comm/VariableFrame.h"
#include "core/comm/VariableTable.h"
#include "panel/Crc16.h"
#include "panel/Frame.h"
#include "panel/FrameScanner.h"

class UartReceiverLaws {
public:
    UartReceiverLaws() {
        for (Variable& variable : variables_) {
            bind<0>(variable);
            bind<1>(variable);
            bind<2>(variable);
            bind<3>(variable);
            bind<4>(variable);
            bind<5>(variable);
            bind<6>(variable);
            bind<7>(variable);
        }
    }
    UartReceiverLaws(const UartReceiverLaws&) = delete;
    UartReceiverLaws& operator=(const UartReceiverLaws&) = delete;

    // The bytes as they are, or, with an odd first byte, what the others say: contents under a good CRC, each
    // behind a byte with its length.
    static std::string streamOf(std::string_view input) {
        if (input.empty()) return {};
        const bool isRaw = input.front() % 2 == 0;
        input.remove_prefix(1);
        if (isRaw) return std::string(input);
        std::string stream;
        while (!input.empty()) {
            const auto length = static_cast<std::uint8_t>(input.front());
            const std::string covered(input.substr(1, length));
            input.remove_prefix(std::min(input.size(), covered.size() + 1));
            const unsigned crc = tvk::panel::crc16(covered);
            stream +=
                tvk::panel::enclose(covered + static_cast<char>(crc & 0xFF) + static_cast<char>(crc >> 8));
        }
        return stream;
    }

    // The law that a stream breaks, or null. The receiver goes from one stream to the next as it is.
    const char* brokenBy(std::string_view stream) {
        const std::vector<tvk::panel::Frame> frames = take(stream);
        if (frames != takenByPanel(stream)) return "both ends take the same frames";
        if (!isStored(frames)) return "a frame changes its variable and no other";
        for (const tvk::panel::Frame& frame : frames)
            if (!isBuiltAgain(frame)) return "a frame that was taken is built again as it was";

        const std::string good = *tvk::panel::encode(kGood);
        const bool endsInEscape = !stream.empty() && stream.back() == tvk::panel::kEscape;
        const bool isTaken =
            take(good) == std::vector{kGood} || (endsInEscape && take(good) == std::vector{kGood});
        if (!isTaken) return "the next good frame is accepted";
        takenByPanel("\x7F" + good);
        const auto content = receiver_.content();
        if (std::string(content.begin(), content.end()) != tvk::panel::contentOf(kGood))
            return "nothing is left but the last frame";
        if (!take("\x7F\x7D}outside\x7D\x7F").empty()) return "bytes outside of frames do nothing";
        return isStored({kGood}) ? nullptr : "the good frame is stored";
    }

    unsigned long framesTaken() const { return framesTaken_; }

private:
    using Targets = std::tuple<float, std::uint8_t, std::uint16_t, std::uint32_t, std::int8_t, std::int16_t,
                               std::int32_t, std::string>;
    struct Variable {
        const char* name;
        Targets targets;
    };

    static inline const tvk::panel::Frame kGood = tvk::panel::intFrame("PF_4", 0x7D7FF7);

    template <std::size_t type>
    void bind(Variable& variable) {
        table_.bind(variable.name, &std::get<type>(variable.targets));
    }

    std::vector<tvk::panel::Frame> take(std::string_view stream) {
        std::vector<tvk::panel::Frame> frames;
        for (const char byte : stream) {
            if (!receiver_.receive(static_cast<std::uint8_t>(byte))) continue;
            const auto frame = tvk::comm::decodeFrame(receiver_.content());
            if (!frame) continue;
            frames.push_back({static_cast<int>(frame->type), std::string(frame->name),
                              std::string(frame->value.begin(), frame->value.end())});
            table_.store(*frame);
            ++framesTaken_;
        }
        return frames;
    }

    std::vector<tvk::panel::Frame> takenByPanel(std::string_view stream) {
        std::vector<tvk::panel::Frame> frames;
        for (tvk::panel::Received& received : panel_.take(stream))
            if (auto* const frame = std::get_if<tvk::panel::Frame>(&received))
                frames.push_back(std::move(*frame));
        return frames;
    }

    // Keeps the last value of every name and type, as bytes, and compares.
    bool isStored(const std::vector<tvk::panel::Frame>& frames) {
        for (const tvk::panel::Frame& frame : frames)
            for (std::size_t n = 0; n < variables_.size(); ++n)
                if (variables_[n].name == frame.name)
                    expected_[n][static_cast<std::size_t>(frame.type)] = frame.value;
        for (std::size_t n = 0; n < variables_.size(); ++n)
            if (bytesOf(variables_[n].targets, std::make_index_sequence<8>()) != expected_[n]) return false;
        return true;
    }
    template <std::size_t... types>
    static std::array<std::string, 8> bytesOf(const Targets& targets, std::index_sequence<types...>) {
        return {bytesOf(std::get<types>(targets))...};
    }
    static std::string bytesOf(const std::string& text) { return text; }
    // The test's machines are little-endian, as the link is.
    template <typename Number>
    static std::string bytesOf(const Number& number) {
        return {reinterpret_cast<const char*>(&number), sizeof number};
    }

    bool isBuiltAgain(const tvk::panel::Frame& frame) {
        const std::vector<std::uint8_t> value(frame.value.begin(), frame.value.end());
        const auto built =
            builder_.build(static_cast<tvk::comm::VariableType>(frame.type), frame.name, value);
        const std::string bytes(built.begin(), built.end());
        if (bytes != tvk::panel::encode(frame).value_or("")) return false;
        tvk::panel::FrameScanner scanner;
        if (bytes.empty()) return tvk::panel::enclose(tvk::panel::contentOf(frame)).size() > 128;
        const std::vector<tvk::panel::Received> again = scanner.take(bytes);
        return again.size() == 1 && std::get_if<tvk::panel::Frame>(&again[0]) != nullptr &&
               std::get<tvk::panel::Frame>(again[0]) == frame;
    }

    std::array<Variable, 3> variables_ = {{{"PA_4", {}}, {"PF_4", {}}, {"V", {}}}};
    std::array<std::array<std::string, 8>, 3> expected_ = {bytesOf(Targets(), std::make_index_sequence<8>()),
                                                           bytesOf(Targets(), std::make_index_sequence<8>()),
                                                           bytesOf(Targets(), std::make_index_sequence<8>())};
    tvk::comm::FrameReceiver receiver_;
    tvk::comm::FrameBuilder builder_;
    tvk::comm::VariableTable table_;
    tvk::panel::FrameScanner panel_;
    unsigned long framesTaken_ = 0;
};
