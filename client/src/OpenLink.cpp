#include "client/OpenLink.h"

#include <cerrno>
#include <sys/stat.h>
#include <system_error>

#include "client/ClientError.h"
#include "client/HidrawLink.h"
#include "client/SocketLink.h"
#include "utility/EscapedText.h"

namespace tvk::client {

std::unique_ptr<Link> openLink(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) == -1)
        throw ClientError(Failure::NoLink,
                          escaped(path) + ": " + std::generic_category().message(errno) +
                              "; name the socket of tarvek-desk's ready line (hid=PATH) or a /dev/hidrawN");
    if (S_ISSOCK(status.st_mode)) return std::make_unique<SocketLink>(path);
    if (S_ISCHR(status.st_mode)) return std::make_unique<HidrawLink>(path);
    throw ClientError(Failure::NoLink, escaped(path) + ": neither a socket nor a character device");
}

}  // namespace tvk::client
