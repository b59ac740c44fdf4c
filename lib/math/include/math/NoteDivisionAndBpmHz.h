// NoteDivisionAndBPM for controls that are rates: a rate in Hz is kept as its period.
//
// A rate of 0.001 Hz or less is 0.001 Hz. Control threads, one at a time.
#pragma once

#include <string>

#include "math/NoteDivisionAndBPM.h"

class NoteDivisionAndBpmHz {
public:
    void setHz(float hz) { note_.setTime(1.0f / (hz > kLowestHz ? hz : kLowestHz)); }
    // The rate as set, or that of the note.
    float getHz() const { return 1.0f / note_.getTimeInSeconds(); }

    void setBpm(float bpm) { note_.setBpm(bpm); }
    void setTime(float seconds) { note_.setTime(seconds); }
    void setDivision(const std::string& name) { note_.setDivision(name); }
    float getBpm() const { return note_.getBpm(); }
    float getTime() const { return note_.getTime(); }
    const std::string& getDivision() const { return note_.getDivision(); }
    float getTimeInSeconds() const { return note_.getTimeInSeconds(); }

private:
    static constexpr float kLowestHz = 0.001f;

    NoteDivisionAndBPM note_;
};
