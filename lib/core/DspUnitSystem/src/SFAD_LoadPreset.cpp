#include "core/DspUnitSystem/SFAD_LoadPreset.h"

#include <chrono>
#include <sstream>

#include "utility/Clock.h"

namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr milliseconds kFadeTime{5};
// A block that comes late delays the fade; it is waited for this long.
constexpr milliseconds kGraceTime{5};
constexpr microseconds kNap{500};
constexpr float kInaudible = 0.01f;

void waitForSilence(const DspUnitHost& host) {
    tvk::Clock& clock = tvk::Clock::current();
    clock.sleepFor(kFadeTime);
    for (microseconds waited{0}; host.getMuteOutputGain() >= kInaudible && waited < kGraceTime;
         waited += kNap)
        clock.sleepFor(kNap);
}

}  // namespace

void SFAD_LoadPreset::connectInput(int channel, float* address, int connectionId) {
    current().connectInput(channel, address, connectionId);
}

float* SFAD_LoadPreset::getOutputAddr(int channel) {
    return current().getOutputAddr(channel);
}

void SFAD_LoadPreset::process() {
    current().process();
}

void SFAD_LoadPreset::setMuteOutput(bool muted) {
    current().setMuteOutput(muted);
    if (muted)
        waitForSilence(current());
    else
        tvk::Clock::current().sleepFor(kFadeTime);
}

void SFAD_LoadPreset::loadArchive(DspArchive& archive) {
    setMuteOutput(true);
    current().init(archive);
    current().setMuteOutput(false);
}

void SFAD_LoadPreset::setGlobalFxBypass(bool bypassed) {
    current().setGlobalFxBypass(bypassed);
}

void SFAD_LoadPreset::loadPreset(const std::string& text) {
    std::istringstream stream(text);
    DspArchive archive;
    archive.read(stream);
    loadArchive(archive);
}
