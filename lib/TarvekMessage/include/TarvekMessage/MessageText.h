// A message as a line of text, for logs.
#pragma once

#include <cstddef>
#include <string>

namespace google::protobuf {
class Message;
}

namespace tvk {

// The text form of protobuf on one line, cut to that many characters. Bytes outside printable ASCII stand as
// escapes, so that what a peer put in a name or in its data stays one line. Takes no longer for large data.
std::string messageText(const google::protobuf::Message& message, std::size_t maxCharacters = 150);

}  // namespace tvk
