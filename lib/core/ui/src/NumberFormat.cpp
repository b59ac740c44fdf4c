#include "NumberFormat.h"

#include <cstdio>
#include <cstring>

namespace {

// Skips plain text and "%%" up to a conversion or the end.
const char* skipText(const char* at) {
    while (*at && (*at != '%' || at[1] == '%'))
        at += *at == '%' ? 2 : 1;
    return at;
}

const char* skipDigits(const char* at, int limit) {
    for (int i = 0; i < limit && *at >= '0' && *at <= '9'; ++i)
        ++at;
    return at;
}

bool isNumberFormat(const std::string& format) {
    const char* at = skipText(format.c_str());
    if (*at++ != '%') return false;
    while (*at && std::strchr("-+ 0#", *at))
        ++at;
    at = skipDigits(at, 2);
    if (*at == '.') at = skipDigits(at + 1, 2);
    if (!*at || !std::strchr("fFeEgG", *at)) return false;
    return *skipText(at + 1) == '\0';
}

}  // namespace

std::string formatNumber(const std::string& format, float value) {
    const char* const pattern = isNumberFormat(format) ? format.c_str() : "%0.1f";
    char text[128];
    std::snprintf(text, sizeof text, pattern, static_cast<double>(value));
    return text;
}
