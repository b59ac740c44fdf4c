#include "desk/soundcard/Fault.h"

#include <charconv>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace tvk::desk {

namespace {

// Holds four months of periods, and cannot overflow.
constexpr std::size_t kMostDigits = 10;

std::optional<std::uint64_t> readCount(std::string_view text) {
    std::uint64_t count = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), count);
    if (fault != std::errc() || end != text.data() + text.size() || text.size() > kMostDigits)
        return std::nullopt;
    return count;
}

std::optional<Fault::Kind> kindNamed(std::string_view name) {
    if (name == "xrun-capture") return Fault::Kind::XrunCapture;
    if (name == "xrun-playback") return Fault::Kind::XrunPlayback;
    if (name == "short-read") return Fault::Kind::ShortRead;
    if (name == "gone") return Fault::Kind::Gone;
    return std::nullopt;
}

std::optional<Fault> readFault(std::string_view text) {
    const std::size_t at = text.find('@');
    const std::optional<Fault::Kind> kind = kindNamed(text.substr(0, at));
    if (at == std::string_view::npos || !kind) return std::nullopt;
    std::string_view count = text.substr(at + 1);
    std::optional<std::uint64_t> periods = 0;
    if (*kind == Fault::Kind::Gone) {
        const std::size_t plus = count.find('+');
        if (plus == std::string_view::npos) return std::nullopt;
        periods = readCount(count.substr(plus + 1));
        count = count.substr(0, plus);
    }
    const std::optional<std::uint64_t> period = readCount(count);
    if (!period || !periods) return std::nullopt;
    return Fault{*kind, *period, *periods};
}

}  // namespace

Fault Fault::parse(const std::string& text) {
    const std::optional<Fault> fault = readFault(text);
    if (!fault)
        throw std::invalid_argument("unknown fault '" + text +
                                    "', use xrun-capture@N, xrun-playback@N, short-read@N or gone@N+M");
    return *fault;
}

}  // namespace tvk::desk
