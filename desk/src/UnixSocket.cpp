#include "desk/UnixSocket.h"

#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "desk/Refusal.h"

namespace tvk::desk {

int listenAt(const std::filesystem::path& path, int type) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string text = path.string();
    if (text.size() >= sizeof address.sun_path)
        throw Refusal(text + ": too long for a socket's path (" +
                      std::to_string(sizeof address.sun_path - 1) +
                      " bytes at most); give --root a shorter one");
    std::memcpy(address.sun_path, text.data(), text.size());
    const int listener = socket(AF_UNIX, type | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const bool isListening =
        listener != -1 && bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
        chmod(text.c_str(), S_IRUSR | S_IWUSR) == 0 && listen(listener, 4) == 0;
    if (!isListening) {
        const std::string reason = std::strerror(errno);
        if (listener != -1) close(listener);
        throw Refusal(text + ": " + reason);
    }
    return listener;
}

}  // namespace tvk::desk
