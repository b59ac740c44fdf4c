#include "core/units/amp/DUBS_NorvaneArvelReverb65.h"

#include <type_traits>
#include <utility>

#include "utility/Log.h"

namespace {

constexpr const char* kTag = "DUBS_NorvaneArvelReverb65";

}  // namespace

DUBS_NorvaneArvelReverb65::DUBS_NorvaneArvelReverb65(std::string tarvekId, int blockLength, float sampleRate,
                                                     float sysFloatToVolts)
    : ControlledUnit(std::move(tarvekId), blockLength, sampleRate, kTag, ControlLog::Call),
      amp_(blockLength, sampleRate, sysFloatToVolts, true),
      speakerVoltageScaling_(ArvelReverb65::kFullPowerVolts / speakerVolts_),
      outputClipper_(blockLength, 0.0f, sampleRate) {
    tvk::log::debug(kTag, "inputVoltageMapping=%0.3f", sysFloatToVolts);
    if (speakerVoltageScaling_ > 1.0f) {
        TVK_WARN("speakerVoltageScaling > 1.0, %f", speakerVoltageScaling_);
    } else {
        tvk::log::debug(kTag, "speakerVoltageScaling is %f", speakerVoltageScaling_);
    }

    addAmpControl("idNormalVol", "NormalVol", 0.5f, &ArvelReverb65::setNormalVolume);
    addAmpControl("idNormalTreb", "NormalTreb", 0.5f, &ArvelReverb65::setNormalTreb);
    addAmpControl("idNormalMid", "NormalMid", 0.5f, &ArvelReverb65::setNormalMid);
    addAmpControl("idNormalBass", "NormalBass", 0.5f, &ArvelReverb65::setNormalBass);
    addAmpControl("idNormalBright", "NormalBright", false, &ArvelReverb65::setNormalBright);
    addAmpControl("idVibratoVol", "VibratoVol", 0.5f, &ArvelReverb65::setVibratoVolume);
    addAmpControl("idVibratoTreb", "VibratoTreb", 0.5f, &ArvelReverb65::setVibratoTreb);
    addAmpControl("idVibratoMid", "VibratoMid", 0.5f, &ArvelReverb65::setVibratoMid);
    addAmpControl("idVibratoBass", "VibratoBass", 0.5f, &ArvelReverb65::setVibratoBass);
    addAmpControl("idVibratoBright", "VibratoBright", false, &ArvelReverb65::setVibratoBright);
    addAmpControl("idReverb", "Reverb", 0.0f, &ArvelReverb65::setReverb);
    addAmpControl("idReverbMute", "ReverbMute", false, &ArvelReverb65::setReverbMute);
    addAmpControl("idReverbTaper", "ReverbTaper", 0, &ArvelReverb65::setReverbTaper);
    addAmpControl("idSpeed", "Speed", 0.0f, &ArvelReverb65::setSpeed);
    addAmpControl("idIntensity", "Intensity", 0.0f, &ArvelReverb65::setIntensity);
    addAmpControl("idTremoloMute", "TremoloMute", false, &ArvelReverb65::setTremoloMute);
    addAmpControl("idCabinet", "Cabinet", std::string("none"), &ArvelReverb65::setCabinet);
    addAmpControl("idCabinetHPF", "CabinetHPF", 20.0f, &ArvelReverb65::setCabinetHPF);
    addAmpControl("idCabinetLPF", "CabinetLPF", 20000.0f, &ArvelReverb65::setCabinetLPF);
    addAmpControl("idCabinetLevel", "CabinetLevel", -12.0f, &ArvelReverb65::setCabinetLevel);
}

template <typename T, typename Operation>
void DUBS_NorvaneArvelReverb65::addAmpControl(const char* parameterName, const char* logName,
                                              const T& initial, Operation operation) {
    addControl(parameterName, logName, initial, [this, operation](const T& value, bool isInit) {
        if constexpr (std::is_invocable_v<Operation, ArvelReverb65&, const T&, bool>) {
            (amp_.*operation)(value, isInit);
        } else {
            (amp_.*operation)(value);
        }
    });
}

void DUBS_NorvaneArvelReverb65::process(float* inLeft, float* inRight, float* outLeft, float* outRight) {
    amp_.process(inLeft, inRight, outLeft, outRight);
    for (int n = 0; n < getBlockLength(); ++n)
        outLeft[n] *= speakerVoltageScaling_;
    outputClipper_.process(outLeft);
}
