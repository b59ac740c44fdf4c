#include "blackbox/support/HeldDesk.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sstream>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

std::vector<std::string> held(std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--clock", "virtual", "--hold"});
    return arguments;
}

void writeAll(int descriptor, const std::string& bytes) {
    if (write(descriptor, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
        throw std::runtime_error(std::string("the desk took less than was written: ") + std::strerror(errno));
}

int connectTo(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "%s", path.c_str());
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == -1)
        throw std::runtime_error(path + ": " + std::strerror(errno));
    return descriptor;
}

}  // namespace

HeldDesk::HeldDesk(const std::filesystem::path& folder, const std::vector<std::string>& arguments)
    : process_(folder, held(arguments)) {
    if (!process_.waitForLine("ready root=")) {
        const auto lines = process_.errorLines();
        throw std::runtime_error(lines.empty() ? "the desk ended" : lines.back());
    }
    std::istringstream words(
        process_.outputLines()[static_cast<std::size_t>(process_.findLine("ready root="))]);
    for (std::string word; words >> word;)
        if (const std::size_t equals = word.find('='); equals != std::string::npos)
            readyTexts_.emplace_back(word.substr(0, equals), word.substr(equals + 1));
    uart_ = open(readyText("uart").c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    button_ = open(readyText("button").c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    clock_ = connectTo(readyText("clock"));
}

HeldDesk::~HeldDesk() {
    for (const int descriptor : {uart_, button_, clock_})
        if (descriptor != -1) close(descriptor);
}

void HeldDesk::request(double seconds) const {
    char text[64];
    std::snprintf(text, sizeof text, "run %.9f\n", seconds);
    writeAll(clock_, text);
}

void HeldDesk::runAndKill(double seconds) {
    request(seconds);
    process_.signal(SIGKILL);
    process_.wait();
}

void HeldDesk::run(double seconds) {
    request(seconds);
    std::string answer;
    for (char byte = 0; read(clock_, &byte, 1) == 1 && byte != '\n';)
        answer += byte;
    if (answer.rfind("at ", 0) != 0) throw std::runtime_error("the clock answered '" + answer + "'");
    time_ = std::stod(answer.substr(3));
}

void HeldDesk::lendClock() {
    close(clock_);
    clock_ = -1;
}

void HeldDesk::takeClockBack() {
    clock_ = connectTo(readyText("clock"));
    run(0.0);
}

void HeldDesk::sendToAmplifier(const std::string& bytes) const {
    writeAll(uart_, bytes);
}

void HeldDesk::turn(const std::string& pin, float value) const {
    sendToAmplifier(*tvk::panel::encode(tvk::panel::floatFrame(pin, value)));
}

void HeldDesk::move(const std::string& pin, std::int32_t value) const {
    sendToAmplifier(*tvk::panel::encode(tvk::panel::intFrame(pin, value)));
}

std::string HeldDesk::sentToPanel() const {
    std::string bytes(4096, '\0');
    const ssize_t count = read(uart_, bytes.data(), bytes.size());
    bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return bytes;
}

void HeldDesk::press(bool isDown) const {
    writeAll(button_, isDown ? "1\n" : "0\n");
}

const std::string& HeldDesk::readyText(const std::string& name) const {
    for (const auto& [key, value] : readyTexts_)
        if (key == name) return value;
    throw std::runtime_error("the ready line names no " + name);
}

void HeldDesk::stop() {
    process_.signal(SIGUSR1);
    if (process_.wait() != 0) throw std::runtime_error("the desk did not end in order");
}
