// A time out of a tempo and a note value, or as it was set.
//
//   division "off", or a tempo of 0    the time as it was set
//   else                               60 / bpm * beats
//
// beats: 4 for whole, 2 for half, 1 for quarter, halving downward; 1.5 times that for a dotted note, 2/3 for
// one of a triplet. "sixtyFourthsNode" is spelt as presets have it.
//
// Control threads, one at a time.
#pragma once

#include <array>
#include <string>

class NoteDivisionAndBPM {
public:
    struct Division {
        const char* name;
        float beats;  // 0 for off
    };

    NoteDivisionAndBPM() = default;

    // Beats a minute; below 0, or no number, is 0.
    void setBpm(float bpm);
    // Seconds.
    void setTime(float seconds);
    // One of the names of kDivisions; another is an error in the log and off.
    void setDivision(const std::string& name);

    float getBpm() const { return bpm_; }
    // As it was set.
    float getTime() const { return time_; }
    const std::string& getDivision() const { return division_; }
    float getTimeInSeconds() const { return timeInSeconds_; }

    // All divisions, in the order of their list on the panel.
    static const std::array<Division, 20> kDivisions;

private:
    void update();

    float bpm_ = 0.0f;
    float time_ = 0.0f;
    std::string division_ = "off";
    float timeInSeconds_ = 0.0f;
};
