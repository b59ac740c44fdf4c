#include "desk/DeskSession.h"

#include <chrono>
#include <cstdio>

#include "proj/models/Model.h"
#include "proj/platform/StopSignal.h"
#include "utility/Clock.h"

namespace tvk::desk {

namespace {

// How long a stop may go unseen.
constexpr std::chrono::milliseconds kLook{10};

}  // namespace

void DeskSession::run(Model& model, StopSignal& stop) {
    writer_.start([&model] { return model.getXrunCount(); });
    if (options_.isHeld && options_.isPanelExternal) card_.virtualTime().hold();
    printReady();
    const bool isPanelSilent = !options_.isPanelExternal && !options_.product;
    if (isPanelSilent) start();
    // In the machine's time: a signal is to be seen also while the card's time stands.
    while (!card_.transportFinished() && !stop.arrived() && !writer_.hasFailed())
        Clock::current().nap(kLook);
    card_.endTransport();
    writer_.finish();
}

void DeskSession::start() {
    if (hasStarted_.exchange(true)) return;
    card_.beginTransport();
    peers_.startScript();
    if (options_.isHeld && !options_.isPanelExternal) card_.virtualTime().hold();
}

void DeskSession::printReady() const {
    const bool isVirtual = options_.clock == VirtualCard::ClockMode::Virtual;
    std::string product = options_.product ? std::to_string(*options_.product) : "none";
    if (options_.isPanelExternal) product = "external";
    std::printf("ready root=%s product=%s clock-mode=%s uart=%s hid=%s button=%s", options_.root.c_str(),
                product.c_str(), isVirtual ? "virtual" : "real", endpoints_.uart().c_str(),
                endpoints_.hid().c_str(), endpoints_.button().c_str());
    if (options_.isHeld) std::printf(" clock=%s", endpoints_.clock().c_str());
    std::printf("\n");
}

}  // namespace tvk::desk
