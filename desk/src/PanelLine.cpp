#include "desk/PanelLine.h"

namespace tvk::desk {

namespace {

constexpr std::size_t kMostAtOnce = 4096;

}  // namespace

bool PanelLine::exchange() {
    const std::vector<std::uint8_t> bytes = amplifier_.read(kMostAtOnce);
    program_.write(bytes);
    for (const panel::Received& received : requests_.take(std::string(bytes.begin(), bytes.end())))
        if (const auto* const request = std::get_if<panel::Frame>(&received); request && simulated_)
            for (const panel::Frame& frame : simulated_->answer(*request))
                send(frame);
    const std::vector<std::uint8_t> answers = program_.read(kMostAtOnce);
    amplifier_.write(answers);
    return !bytes.empty() || !answers.empty();
}

void PanelLine::move(const panel::Frame& frame) {
    if (!simulated_) return;
    simulated_->move(frame);
    send(frame);
}

void PanelLine::send(const panel::Frame& frame) {
    const std::optional<std::string> text = panel::encode(frame);
    if (!text) return;
    const std::vector<std::uint8_t> bytes(text->begin(), text->end());
    amplifier_.write(bytes);
}

}  // namespace tvk::desk
