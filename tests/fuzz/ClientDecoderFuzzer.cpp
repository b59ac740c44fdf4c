// Reads bytes as what an amplifier sends to a desktop client: packets, each a length byte and so many bytes.
//
// Laws: whatever comes, the session takes no more than it is given, a message in words is text that a
// terminal shows as it is and in JSON one line that parses, an expectation answers; and the next good message
// behind all of it is taken.
#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <vector>

#include "Require.h"
#include "TarvekMessage.pb.h"
#include "client/Expectation.h"
#include "client/FrameCodec.h"
#include "client/MessageCodec.h"
#include "client/MessageJson.h"
#include "client/MessageWords.h"
#include "client/Requests.h"
#include "utility/EscapedText.h"

namespace {

using namespace tvk::client;

bool isShownAsItIs(const std::string& text) {
    return tvk::isUtf8(text) && std::ranges::none_of(text, [](char character) {
               return (static_cast<unsigned char>(character) < 0x20 && character != '\n') ||
                      character == 0x7F;
           });
}

void judge(const TarvekMessage& message) {
    REQUIRE(isShownAsItIs(wordsOf(message)));
    const std::string json = jsonOf(message);
    REQUIRE(json.find('\n') == std::string::npos);
    REQUIRE(nlohmann::json::accept(json));
    for (const TarvekMessage& request :
         {requests::currentAmplifier(), requests::setCabsimHpf(0, 1.0f), requests::addUserIR("a", "b"),
          requests::connection(), requests::factoryRestore(), requests::heartbeat()})
        Expectation(request).consider(message);
    // A hostile message is no request that an expectation could not be made for.
    Expectation(message).consider(message);
}

// A frame, or what a report of 64 bytes carries.
std::optional<Bytes> take(FrameAssembler& assembler, std::span<const std::uint8_t> packet) {
    if (packet.size() != kReportBytes) return assembler.add(packet);
    Report report{};
    std::ranges::copy(packet, report.begin());
    const std::optional<Frame> frame = frameOf(report);
    REQUIRE(frame.has_value() == (packet[0] == 0));
    return frame ? assembler.add(*frame) : std::nullopt;
}

void requireGoodMessageIsTaken(FrameAssembler& assembler) {
    // Ends what may be under way.
    assembler.add(Frame{});
    TarvekMessage sent = requests::addUserIR("good", std::string(200, 'x'));
    std::optional<Bytes> bytes;
    for (const Frame& frame : framesOf(*encode(sent)))
        bytes = assembler.add(frame);
    TarvekMessage received;
    REQUIRE(bytes && decode(*bytes, received));
    REQUIRE(received.adduserir().name() == "good");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static QuietLog quiet;
    FrameAssembler assembler;
    std::span<const std::uint8_t> rest(data, size);
    std::size_t taken = 0;
    while (!rest.empty()) {
        const std::size_t length = std::min<std::size_t>(rest[0], rest.size() - 1);
        const std::optional<Bytes> bytes = take(assembler, rest.subspan(1, length));
        rest = rest.subspan(1 + length);
        if (!bytes) continue;
        taken += bytes->size();
        REQUIRE(!bytes->empty() && bytes->size() <= kMaxMessageBytes);
        TarvekMessage message;
        if (decode(*bytes, message)) judge(message);
    }
    REQUIRE(taken <= size);
    requireGoodMessageIsTaken(assembler);

    // Mutations seldom make frames; the same bytes as a message.
    TarvekMessage message;
    if (decode({data, size}, message)) judge(message);
    return 0;
}
