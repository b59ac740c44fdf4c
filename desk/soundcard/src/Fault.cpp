#include "desk/soundcard/Fault.h"

#include <regex>
#include <stdexcept>

namespace tvk::desk {

Fault Fault::parse(const std::string& text) {
    // Ten digits hold four months of periods and cannot overflow.
    static const std::regex form(
        R"((xrun-capture|xrun-playback|short-read)@(\d{1,10})|gone@(\d{1,10})\+(\d{1,10}))");
    std::smatch match;
    if (!std::regex_match(text, match, form))
        throw std::invalid_argument("unknown fault '" + text +
                                    "', use xrun-capture@N, xrun-playback@N, short-read@N or gone@N+M");
    Fault fault;
    if (match[3].matched) {
        fault.kind = Kind::Gone;
        fault.period = std::stoull(match[3]);
        fault.periods = std::stoull(match[4]);
        return fault;
    }
    fault.kind = match[1] == "xrun-capture"    ? Kind::XrunCapture
                 : match[1] == "xrun-playback" ? Kind::XrunPlayback
                                               : Kind::ShortRead;
    fault.period = std::stoull(match[2]);
    return fault;
}

}  // namespace tvk::desk
