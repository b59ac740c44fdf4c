// The base of effects with a rate that a tap tempo and a note division can drive.
//
//   rate control x Hz ------------------> time = 1 / x --+
//   tap time T s, above 0 --> rate = 1/T --> time = T ---+--> NoteDivisionAndBpmHz --> core, in Hz
//   tempo in BPM, note division -------------------------'
//
// With the division off, or without a tempo, the core gets the rate as it was set or tapped; else the rate
// of that note at that tempo. A tap moves the rate control too. A tap of 0 or less is an error in the log and
// changes nothing.
//
// Control threads, one at a time.
#pragma once

#include <functional>
#include <string>

#include "core/units/control/ControlledUnit.h"
#include "math/NoteDivisionAndBpmHz.h"

class TempoUnit : public ControlledUnit {
public:
    void setTapTime(float seconds) override;
    void initTapTime(float seconds) override;
    float getTapTime() const override { return tempo_.getTime(); }
    void setTapTimeBPM(float beatsPerMinute) override;
    void initTapTimeBPM(float beatsPerMinute) override;
    float getTapTimeBPM() const override { return tempo_.getBpm(); }

protected:
    using ControlledUnit::ControlledUnit;
    using ApplyRate = std::function<void(float hz, bool isInit)>;

    // Adds the rate control and, behind it, "noteDivision". applyRate takes the rate to the core.
    void addRateControl(const char* parameterName, const char* logName, float initialHz, ApplyRate applyRate);

private:
    void tap(float seconds, bool isInit);
    void passOn(bool isInit) { applyRate_(tempo_.getHz(), isInit); }

    NoteDivisionAndBpmHz tempo_;
    ApplyRate applyRate_;
    ModelControl<float>* rate_ = nullptr;
};
