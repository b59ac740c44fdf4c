// A message of the amplifier in words.
#pragma once

#include <string>

#include "TarvekMessage.pb.h"

namespace tvk::client {

// One or more lines for a person, without the last line's end. Texts in it are escaped.
std::string wordsOf(const TarvekMessage& message);

}  // namespace tvk::client
