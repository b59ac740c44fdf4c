#include "desk/PanelLine.h"

namespace tvk::desk {

namespace {

constexpr std::size_t kMostAtOnce = 4096;

}  // namespace

void PanelLine::exchange() {
    const std::vector<std::uint8_t> requests = amplifier_.read(kMostAtOnce);
    program_.write(requests);
    if (simulated_) amplifier_.write(simulated_->hear(requests));
    amplifier_.write(program_.read(kMostAtOnce));
}

void PanelLine::move(const std::string& pin, float value) {
    if (simulated_) amplifier_.write(simulated_->move(pin, value));
}

}  // namespace tvk::desk
