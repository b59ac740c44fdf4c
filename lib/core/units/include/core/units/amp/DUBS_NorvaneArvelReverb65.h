// The two-channel reverb amp as a unit.
//
//   in 0 (normal), in 1 (vibrato) -> ArvelReverb65 -+-> x 101 / 42.65 -> soft clip at full scale -> out 0,
//   speaker
//                                                   +--------------------------------------------> out 1,
//                                                   line
//
// A sample of 1.0 at the speaker output means 42.65 V at the product's speaker; the amp gives more than that,
// and the clipper keeps the output in range.
//
// Parameters (knobs 0 to 1, default 0.5 for those of the channels, 0 for effects): id{Normal,Vibrato} Vol,
// Treb, Mid, Bass and Bright (bool); idReverb, idReverbMute (bool), idReverbTaper (int: 0 t20, else t30),
// idSpeed, idIntensity, idTremoloMute (bool); idCabinet (path or "none"), idCabinetHPF and idCabinetLPF (Hz),
// idCabinetLevel (dB).
#pragma once

#include <string>

#include "algorithms/amp/ArvelReverb65.h"
#include "algorithms/amp/OutputSoftClipper.h"
#include "core/units/control/ControlledUnit.h"

class DUBS_NorvaneArvelReverb65 final : public ControlledUnit {
public:
    // blockLength in samples, sampleRate in Hz. sysFloatToVolts: volts at the input jack of a full-scale
    // sample.
    DUBS_NorvaneArvelReverb65(std::string tarvekId, int blockLength, float sampleRate, float sysFloatToVolts);

    using ControlledUnit::process;
    void process(float* inLeft, float* inRight, float* outLeft, float* outRight) override;

private:
    template <typename T, typename Operation>
    void addAmpControl(const char* parameterName, const char* logName, const T& initial, Operation operation);

    ArvelReverb65 amp_;
    const float speakerVolts_ = 42.65f;
    const float speakerVoltageScaling_;
    OutputSoftClipper outputClipper_;
};
