// Text of strangers, fit for a log line or a terminal: control bytes, the backslash and what is not
// well-formed UTF-8 come out as \xNN, everything else as it is.
#pragma once

#include <string>
#include <string_view>

namespace tvk {

std::string escaped(std::string_view text);

// Whether all of the bytes are well-formed UTF-8 (RFC 3629): shortest forms, no surrogates, up to U+10FFFF.
bool isUtf8(std::string_view text);

}  // namespace tvk
