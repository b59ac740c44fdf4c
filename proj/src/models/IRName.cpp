#include "proj/models/IRName.h"

#include <algorithm>
#include <climits>

#include "utility/EscapedText.h"

namespace tvk {

namespace {

// A directory entry holds the name, the extension and that of the temporary file of a save.
constexpr std::size_t kMaxNameBytes =
    NAME_MAX - std::string_view(".wav").size() - std::string_view(".tmp").size();

bool mayStandInAName(char byte) {
    return static_cast<unsigned char>(byte) >= 0x20 && byte != 0x7F && byte != '/';
}

}  // namespace

bool isNoIR(std::string_view name) {
    return name == kNoIR || name == "none";
}

bool isValidIRName(std::string_view name) {
    return !name.empty() && name.size() <= kMaxNameBytes && name != "." && name != ".." &&
           std::all_of(name.begin(), name.end(), mayStandInAName) && isUtf8(name);
}

bool isValidUserIRName(std::string_view name) {
    return isValidIRName(name) && !isNoIR(name);
}

}  // namespace tvk
