// tarvek-panel: the amplifier's control processor as a program.
#include <csignal>
#include <cstdint>
#include <iostream>
#include <sys/eventfd.h>
#include <unistd.h>

#include "panel/Program.h"

namespace {

int stopDescriptor = -1;

void requestStop(int) {
    const std::uint64_t one = 1;
    // There is nobody to tell of a failure, and an eventfd has none at this count.
    [[maybe_unused]] const ssize_t written = write(stopDescriptor, &one, sizeof one);
}

}  // namespace

int main(int argc, char** argv) {
    stopDescriptor = eventfd(0, EFD_CLOEXEC);
    std::signal(SIGINT, requestStop);
    std::signal(SIGTERM, requestStop);
    return tvk::panel::runProgram(argc, argv, std::cout, std::cerr, stopDescriptor);
}
