#include "core/units/control/TempoUnit.h"

#include <algorithm>
#include <utility>

#include "utility/Log.h"

namespace {

// For a log line only.
int wholeBpm(float beatsPerMinute) {
    return static_cast<int>(std::clamp(beatsPerMinute, 0.0f, 1e6f));
}

}  // namespace

void TempoUnit::addRateControl(const char* parameterName, const char* logName, float initialHz,
                               ApplyRate applyRate) {
    applyRate_ = std::move(applyRate);
    rate_ = &addControl(parameterName, logName, initialHz, [this](float hz, bool isInit) {
        tempo_.setHz(hz);
        passOn(isInit);
    });
    addControl("noteDivision", "Note Division", std::string("off"),
               [this](const std::string& division, bool isInit) {
                   tempo_.setDivision(division);
                   passOn(isInit);
               });
}

void TempoUnit::setTapTime(float seconds) {
    tvk::log::debug(tag(), "Tap Time set, %f", seconds);
    tap(seconds, false);
}

void TempoUnit::initTapTime(float seconds) {
    tvk::log::debug(tag(), "Tap Time init, %f", seconds);
    tap(seconds, true);
}

void TempoUnit::tap(float seconds, bool isInit) {
    if (!(seconds > 0.0f)) {
        TVK_ERROR("tap time %f", seconds);
        return;
    }
    tempo_.setHz(1.0f / seconds);
    passOn(isInit);
    rate_->adopt(1.0f / seconds);
}

void TempoUnit::setTapTimeBPM(float beatsPerMinute) {
    tvk::log::debug(tag(), "Tap Time BPM set, %d", wholeBpm(beatsPerMinute));
    tempo_.setBpm(beatsPerMinute);
    passOn(false);
}

void TempoUnit::initTapTimeBPM(float beatsPerMinute) {
    tvk::log::debug(tag(), "Tap Time BPM init, %d", wholeBpm(beatsPerMinute));
    tempo_.setBpm(beatsPerMinute);
    passOn(true);
}
