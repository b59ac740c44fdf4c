#include "math/NoteDivisionAndBPM.h"

#include <algorithm>

#include "utility/Log.h"

namespace {

constexpr const char* kTag = "NoteDivisionAndBPM";
constexpr float kTriplet = 2.0f / 3.0f;

// Null for an unknown name.
const NoteDivisionAndBPM::Division* find(const std::string& name) {
    const auto& all = NoteDivisionAndBPM::kDivisions;
    const auto found = std::find_if(all.begin(), all.end(), [&](const auto& d) { return name == d.name; });
    return found == all.end() ? nullptr : &*found;
}

}  // namespace

const std::array<NoteDivisionAndBPM::Division, 20> NoteDivisionAndBPM::kDivisions = {{
    {"off", 0.0f},
    {"whole", 4.0f},
    {"half", 2.0f},
    {"dottedHalf", 2.0f * 1.5f},
    {"halfNoteTriplet", 2.0f * kTriplet},
    {"dottedQuarter", 1.5f},
    {"quarter", 1.0f},
    {"quarterNoteTriplet", kTriplet},
    {"eighth", 0.5f},
    {"dottedEighth", 0.5f * 1.5f},
    {"eighthNoteTriplet", 0.5f * kTriplet},
    {"sixteenthNote", 0.25f},
    {"dottedSixteenthNote", 0.25f * 1.5f},
    {"sixteenthNoteTriplet", 0.25f * kTriplet},
    {"thirtySecondsNote", 0.125f},
    {"dottedThirtySecondsNote", 0.125f * 1.5f},
    {"thirtySecondsNoteTriplet", 0.125f * kTriplet},
    {"sixtyFourthsNode", 0.0625f},
    {"dottedSixtyFourthsNote", 0.0625f * 1.5f},
    {"sixtyFourthsNoteTriplet", 0.0625f * kTriplet},
}};

void NoteDivisionAndBPM::setBpm(float bpm) {
    tvk::log::debug(kTag, "bpm set, %f", bpm);
    bpm_ = bpm > 0.0f ? bpm : 0.0f;
    update();
}

void NoteDivisionAndBPM::setTime(float seconds) {
    tvk::log::debug(kTag, "time set, %f", seconds);
    time_ = seconds;
    update();
}

void NoteDivisionAndBPM::setDivision(const std::string& name) {
    if (!find(name)) TVK_ERROR("unknown note division %s", name.c_str());
    division_ = name;
    update();
}

void NoteDivisionAndBPM::update() {
    const Division* const division = find(division_);
    const float beats = division ? division->beats : 0.0f;
    timeInSeconds_ = beats > 0.0f && bpm_ > 0.0f ? 60.0f / bpm_ * beats : time_;
}
