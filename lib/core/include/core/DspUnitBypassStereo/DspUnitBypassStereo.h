// The base of every effect and amp: a stereo unit with a bypass that fades.
//
// With w the wet gain, a one-pole ramp of 1 ms that goes to 0 when the unit's own or the global bypass holds:
//
//   bypassType       into the algorithm    out
//   "Pre"            w * in                algorithm + (1 - w) * in          tails ring on after bypass
//   "Post"           w * in                w * algorithm + (1 - w) * in
//   "PostNoPreKill"  in                    w * algorithm + (1 - w) * in      warm when it comes back
//
// The global bypass cuts the tails of "Pre" too. An unknown type acts as "Post" and is stored as it came. The
// algorithm runs on while bypassed, in every mode, so that the load does not depend on the switch; its
// process(wetLeft, wetRight, wetLeft, wetRight) is in place.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "core/DspUnit/DspUnitStereo.h"

class DspUnitBypassStereo : public DspUnitStereo {
public:
    // blockLength in samples, sampleRate in Hz.
    DspUnitBypassStereo(std::string tarvekId, int blockLength, float sampleRate);

    using DspUnitStereo::process;
    void process() override;
    // bypass and bypassType, then the derived unit's parameters. Mutes and the clip latch are never stored.
    void init(DspArchive& archive) override;
    void getArchive(DspArchive& archive) override;
    void setGlobalFxBypass(bool bypassed) override;

    virtual void setBypass(bool bypassed);
    // At once, without a fade.
    virtual void initBypass(bool bypassed);

    // What the speaker simulation sees of the unit: 1 megohm and a capacitance of 0.01 unless overridden.
    virtual float getDspUnitImpedance(int channel) const;
    virtual float getDspUnitCapacitance() const;

    bool getBypass() const { return bypassState_.load(std::memory_order_relaxed); }

private:
    enum BypassMode { kPre = 0, kPost = 1, kPostNoPreKill = 2 };

    bool isGloballyBypassed() const { return globalFxBypass_.load(std::memory_order_relaxed); }
    void setBypassType(const std::string& name);
    void initBypassType(const std::string& name);
    const std::string& getBypassType() const { return bypassTypeName_; }
    void applyBypassType(const std::string& name);

    std::atomic<bool> bypassState_{false};
    std::atomic<bool> globalFxBypass_{false};
    std::atomic<int> bypassMode_{kPost};
    std::string bypassTypeName_ = "Post";  // control threads only
    OnePoleRamp bypassRamp_;               // the wet gain
    Parameter<bool> bypass_;
    Parameter<std::string> bypassType_;
    std::vector<float> wetLeft_, wetRight_, wetGain_, dryGain_;
};
