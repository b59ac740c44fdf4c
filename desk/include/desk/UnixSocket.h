// Unix sockets by path.
#pragma once

#include <filesystem>

namespace tvk::desk {

// Makes a socket of that type (SOCK_STREAM, SOCK_SEQPACKET) that listens at the path, for this user alone.
// Throws Refusal when it cannot.
int listenAt(const std::filesystem::path& path, int type);

}  // namespace tvk::desk
