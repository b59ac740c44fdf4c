#include "desk/Endpoints.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "desk/Refusal.h"

namespace tvk::desk {

namespace fs = std::filesystem;

namespace {

// What a shell returns for a file that cannot be written.
constexpr int kShellFailed = 1 << 8;

int openLock(const fs::path& root) {
    const fs::path file = root / "endpoints.lock";
    const int lock = open(file.c_str(), O_CREAT | O_RDWR | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    if (lock == -1) throw Refusal(file.string() + ": " + std::strerror(errno));
    if (flock(lock, LOCK_EX | LOCK_NB) == -1) {
        close(lock);
        throw Refusal("--root " + root.string() +
                      ": another tarvek-desk is playing there; end it or give another root");
    }
    return lock;
}

void makeFile(const fs::path& file) {
    fs::create_directories(file.parent_path());
    std::ofstream stream(file);
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
}

}  // namespace

Endpoints::Endpoints(const fs::path& root)
    : folder_(fs::absolute(root) / "endpoints"), lock_(openLock(root)) {
    try {
        fs::remove_all(folder_);
        if (mkdir(folder_.c_str(), S_IRWXU) == -1)
            throw fs::filesystem_error("", std::error_code(errno, std::generic_category()));
        makeGpio();
        fs::create_symlink("gpio/gpio110/value", button());
    } catch (const fs::filesystem_error& error) {
        close(lock_);
        throw Refusal(folder_.string() + ": " + error.code().message());
    }
    // For both directions, so that the amplifier never finds the line closed.
    button_ = open(button().c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK);
}

Endpoints::~Endpoints() {
    close(button_);
    close(lock_);
}

void Endpoints::makeGpio() const {
    makeFile(gpio() / "export");
    for (const char* const line : {"gpio3", "gpio6", "gpio92"})
        makeFile(gpio() / line / "direction");
    for (const char* const setting : {"direction", "edge", "active_low"})
        makeFile(gpio() / "gpio110" / setting);
    const fs::path value = gpio() / "gpio110" / "value";
    if (mkfifo(value.c_str(), S_IRUSR | S_IWUSR) == -1)
        throw fs::filesystem_error("", std::error_code(errno, std::generic_category()));
}

void Endpoints::press(bool isDown) const {
    // Nobody reads when it is full of presses that nobody has read.
    [[maybe_unused]] const ssize_t count = write(button_, isDown ? "1\n" : "0\n", 2);
}

int Endpoints::runShell(const std::string& command) {
    constexpr const char* kEcho = "echo ";
    constexpr const char* kInto = " > ";
    const std::size_t into = command.find(kInto);
    if (command.rfind(kEcho, 0) != 0 || into == std::string::npos) return kShellFailed;
    const std::size_t text = std::strlen(kEcho);
    std::ofstream file(command.substr(into + std::strlen(kInto)));
    file << command.substr(text, into - text) << '\n';
    file.flush();
    return file ? 0 : kShellFailed;
}

}  // namespace tvk::desk
