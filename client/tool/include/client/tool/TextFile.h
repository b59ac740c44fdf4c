// A text that the person names.
#pragma once

#include <string>

namespace tvk::client {

// The whole file, or of "-" the standard input to its end; at most 16 MiB. Throws ClientError (BadUse).
std::string readText(const std::string& path);

}  // namespace tvk::client
