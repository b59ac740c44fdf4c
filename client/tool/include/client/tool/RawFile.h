// Messages as a person writes them down: the text form of protobuf, one TarvekMessage after another, with a
// line "---" between them. Comments begin with "#".
#pragma once

#include <string>
#include <vector>

#include "TarvekMessage.pb.h"

namespace tvk::client {

// name: of the text, for errors. Throws ClientError (BadUse) with line and column of what is not understood,
// or with the message that is too large or empty.
std::vector<TarvekMessage> parseMessages(const std::string& text, const std::string& name);

}  // namespace tvk::client
