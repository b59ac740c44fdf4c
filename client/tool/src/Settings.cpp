#include "Settings.h"

#include <charconv>
#include <cstdint>

#include "client/ClientError.h"
#include "client/Requests.h"
#include "client/tool/Conversation.h"
#include "utility/EscapedText.h"

namespace tvk::client {

namespace {

[[noreturn]] void refuse(const std::string& text) {
    throw ClientError(Failure::BadUse, "settings: " + text);
}

TarvekMessage reverbTaper(const std::string& value) {
    std::uint32_t number = 0;
    const char* const end = value.data() + value.size();
    const auto [last, error] = std::from_chars(value.data(), end, number);
    if (error != std::errc() || last != end)
        refuse("reverb-taper takes a whole number from 0 on, not \"" + escaped(value) + "\"");
    return requests::setReverbTaperType(number);
}

TarvekMessage vibratoBright(const std::string& value) {
    if (value != "on" && value != "off")
        refuse("vibrato-bright takes on or off, not \"" + escaped(value) + "\"");
    return requests::setVibratoChannelBright(value == "on");
}

TarvekMessage setting(const std::string& name, const std::string& value) {
    if (name == "reverb-taper") return reverbTaper(value);
    if (name == "vibrato-bright") return vibratoBright(value);
    refuse("there is no \"" + escaped(name) + "\"; there are reverb-taper and vibrato-bright");
}

}  // namespace

std::function<void(Conversation&)> settingsOf(const std::vector<std::string>& words) {
    if (words.size() % 2 != 0) refuse("every setting takes a value behind its name");
    std::vector<TarvekMessage> requests;
    for (std::size_t i = 0; i < words.size(); i += 2)
        requests.push_back(setting(words[i], words[i + 1]));
    if (requests.empty()) requests = {requests::reverbTaperType(), requests::vibratoChannelBright()};
    return [requests = std::move(requests)](Conversation& conversation) {
        for (const TarvekMessage& request : requests)
            conversation.ask(request);
    };
}

}  // namespace tvk::client
