// Messages from their text form, for tests.
#pragma once

#include <google/protobuf/text_format.h>
#include <stdexcept>
#include <string>

#include "TarvekMessage.pb.h"

// With the padding that every message has.
inline TarvekMessage messageOf(const std::string& text) {
    TarvekMessage message;
    if (!google::protobuf::TextFormat::ParseFromString(text, &message)) throw std::invalid_argument(text);
    message.set_ignore_this_padding(true);
    return message;
}

inline std::string textOf(const TarvekMessage& message) {
    return message.ShortDebugString();
}
