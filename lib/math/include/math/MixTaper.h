// The law of a dry/wet control.
#pragma once

#include "math/StandardTaper.h"

class MixTaper {
public:
    virtual ~MixTaper() = default;
    // mix: 0 (dry) to 1 (wet). The gains are linear, 0 to 1.
    virtual void calc(float& dryGain, float& wetGain, float mix) const = 0;
};

// Both gains are 1 over the middle of the travel; on each side of it one of them falls to 0 by a taper.
//   limit = 1 - m,  wet(x) = 1 for x >= limit, else taper(x / limit),  dry(x) = wet(1 - x)
class MNTaper : public MixTaper {
public:
    // name: a StandardTaper's. m: 0 to below 1.
    MNTaper(const std::string& name, float m) : taper_(name), limit_(1.0f - m), scale_(1.0f / limit_) {}
    void calc(float& dryGain, float& wetGain, float mix) const override;

private:
    float gain(float x) const;

    StandardTaper taper_;
    float limit_;
    float scale_;
};

// dry^2 + wet^2 = 1: constant power for signals that have nothing in common.
class EqualPowerMixTaper : public MixTaper {
public:
    void calc(float& dryGain, float& wetGain, float mix) const override;
};
