#include "client/UnixSocket.h"

#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <system_error>

#include "client/ClientError.h"
#include "utility/EscapedText.h"

namespace tvk::client {

namespace {

[[noreturn]] void throwUnreachable(const std::string& path, const std::string& reason) {
    throw ClientError(Failure::NoLink, escaped(path) + ": " + reason +
                                           "; is the amplifier (or tarvek-desk) running, and is this the "
                                           "path that its ready line names?");
}

}  // namespace

Descriptor connectUnixSocket(const std::string& path, int type) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        throwUnreachable(path, "the path is longer than " + std::to_string(sizeof address.sun_path - 1) +
                                   " bytes, which no socket can have");
    std::memcpy(address.sun_path, path.data(), path.size());
    Descriptor descriptor(::socket(AF_UNIX, type | SOCK_CLOEXEC, 0));
    if (descriptor.get() == -1 ||
        ::connect(descriptor.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == -1)
        throwUnreachable(path, std::generic_category().message(errno));
    return descriptor;
}

}  // namespace tvk::client
