// A message as JSON.
#pragma once

#include <string>

#include "TarvekMessage.pb.h"

namespace tvk::client {

// One line: an object whose only key is the message's field in TarvekMessage; in it keys named as its fields,
// all of them, also where they hold their defaults. Bytes are base64, numbers that JSON has not are the texts
// "NaN", "Infinity" and "-Infinity". A message without a type is {}.
std::string jsonOf(const TarvekMessage& message);

// A text as a JSON string, quotes included. Invalid UTF-8 is replaced.
std::string jsonString(const std::string& text);

}  // namespace tvk::client
