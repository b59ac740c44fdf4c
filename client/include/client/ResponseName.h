// Names of impulse responses.
#pragma once

#include <string>
#include <string_view>

namespace tvk::client {

// Why the amplifier takes no response under that name, in words that follow "a name"; empty when it does. A
// name is 1 to 247 bytes of UTF-8 without "/" and control bytes, and not ".", "..", "None" or "none".
std::string faultOfName(std::string_view name);

// The same for what is put in a cabinet slot, where "None" stands for no response.
std::string faultOfSlotName(std::string_view name);

}  // namespace tvk::client
