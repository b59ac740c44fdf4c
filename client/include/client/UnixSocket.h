// Connecting to a Unix socket by its path.
#pragma once

#include <string>

#include "client/Descriptor.h"

namespace tvk::client {

// type: SOCK_STREAM or SOCK_SEQPACKET, with flags. Throws ClientError (NoLink), with the path and the reason.
Descriptor connectUnixSocket(const std::string& path, int type);

}  // namespace tvk::client
