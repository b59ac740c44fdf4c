#include "desk/DeskSession.h"

#include <chrono>
#include <cstdio>
#include <unistd.h>

#include "proj/models/Model.h"
#include "proj/platform/StopSignal.h"
#include "utility/Clock.h"

namespace tvk::desk {

namespace {

// How long a stop may go unseen.
constexpr std::chrono::milliseconds kLook{10};
// As loud as without a cabinet; a preset's own -12 dB is for those that are uploaded.
constexpr float kCabinetLevelDb = 0.0f;

}  // namespace

void DeskSession::run(Model& model, StopSignal& stop) {
    const bool isVirtual = options_.clock == VirtualCard::ClockMode::Virtual;
    std::printf("ready root=%s slot=%s clock=%s pid=%d\n", options_.root.c_str(),
                options_.slot ? std::to_string(*options_.slot).c_str() : "none",
                isVirtual ? "virtual" : "real", static_cast<int>(getpid()));
    if (options_.slot) model.setAudioProcessingPreset(*options_.slot);
    turnKnobs(options_.knobs, model);
    model.setCabsimLevel(kCabinetLevelDb);
    model.setCabsim(options_.cabinet.value_or(demonstrationCabinet()));

    writer_.start([&model] { return model.getXrunCount(); });
    card_.beginTransport();
    while (!card_.transportFinished() && !stop.arrived() && !writer_.hasFailed())
        Clock::current().nap(kLook);
    card_.endTransport();
    writer_.finish();
}

}  // namespace tvk::desk
