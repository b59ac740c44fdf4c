#include "core/units/amp/DUBS_NorvaneArvelReverb65.h"

#include <type_traits>
#include <utility>

#include "utility/Log.h"

namespace {

constexpr const char* kTag = "DUBS_NorvaneArvelReverb65";

}  // namespace

DUBS_NorvaneArvelReverb65::DUBS_NorvaneArvelReverb65(std::string tarvekId, int blockLength, float sampleRate,
                                                     float sysFloatToVolts)
    : DspUnitBypassStereo(std::move(tarvekId), blockLength, sampleRate),
      amp_(blockLength, sampleRate, sysFloatToVolts, true),
      speakerVoltageScaling_(ArvelReverb65::kFullPowerVolts / speakerVolts_),
      outputClipper_(blockLength, 0.0f, sampleRate) {
    tvk::log::debug(kTag, "inputVoltageMapping=%0.3f", sysFloatToVolts);
    if (speakerVoltageScaling_ > 1.0f) {
        TVK_WARN("speakerVoltageScaling > 1.0, %f", speakerVoltageScaling_);
    } else {
        tvk::log::debug(kTag, "speakerVoltageScaling is %f", speakerVoltageScaling_);
    }

    addControl("idNormalVol", "NormalVol", 0.5f, &ArvelReverb65::setNormalVolume);
    addControl("idNormalTreb", "NormalTreb", 0.5f, &ArvelReverb65::setNormalTreb);
    addControl("idNormalMid", "NormalMid", 0.5f, &ArvelReverb65::setNormalMid);
    addControl("idNormalBass", "NormalBass", 0.5f, &ArvelReverb65::setNormalBass);
    addControl("idNormalBright", "NormalBright", false, &ArvelReverb65::setNormalBright);
    addControl("idVibratoVol", "VibratoVol", 0.5f, &ArvelReverb65::setVibratoVolume);
    addControl("idVibratoTreb", "VibratoTreb", 0.5f, &ArvelReverb65::setVibratoTreb);
    addControl("idVibratoMid", "VibratoMid", 0.5f, &ArvelReverb65::setVibratoMid);
    addControl("idVibratoBass", "VibratoBass", 0.5f, &ArvelReverb65::setVibratoBass);
    addControl("idVibratoBright", "VibratoBright", false, &ArvelReverb65::setVibratoBright);
    addControl("idReverb", "Reverb", 0.0f, &ArvelReverb65::setReverb);
    addControl("idReverbMute", "ReverbMute", false, &ArvelReverb65::setReverbMute);
    addControl("idReverbTaper", "ReverbTaper", 0, &ArvelReverb65::setReverbTaper);
    addControl("idSpeed", "Speed", 0.0f, &ArvelReverb65::setSpeed);
    addControl("idIntensity", "Intensity", 0.0f, &ArvelReverb65::setIntensity);
    addControl("idTremoloMute", "TremoloMute", false, &ArvelReverb65::setTremoloMute);
    addControl("idCabinet", "Cabinet", std::string("none"), &ArvelReverb65::setCabinet);
    addControl("idCabinetHPF", "CabinetHPF", 20.0f, &ArvelReverb65::setCabinetHPF);
    addControl("idCabinetLPF", "CabinetLPF", 20000.0f, &ArvelReverb65::setCabinetLPF);
    addControl("idCabinetLevel", "CabinetLevel", -12.0f, &ArvelReverb65::setCabinetLevel);
}

template <typename T, typename Operation>
void DUBS_NorvaneArvelReverb65::addControl(const char* parameterName, const char* logName, const T& initial,
                                           Operation operation) {
    auto apply = [this, operation](const T& value, bool isInit) {
        if constexpr (std::is_invocable_v<Operation, ArvelReverb65&, const T&, bool>) {
            (amp_.*operation)(value, isInit);
        } else {
            (amp_.*operation)(value);
        }
    };
    controls_.push_back(std::make_unique<ModelControl<T>>(kTag, parameterName, logName, initial, apply));
    addParameter(controls_.back()->parameter());
}

void DUBS_NorvaneArvelReverb65::process(float* inLeft, float* inRight, float* outLeft, float* outRight) {
    amp_.process(inLeft, inRight, outLeft, outRight);
    for (int n = 0; n < getBlockLength(); ++n)
        outLeft[n] *= speakerVoltageScaling_;
    outputClipper_.process(outLeft);
}

void DUBS_NorvaneArvelReverb65::initDerived(DspArchive& archive) {
    for (const auto& control : controls_)
        control->read(archive);
}

void DUBS_NorvaneArvelReverb65::getArchiveDerived(DspArchive& archive) {
    for (const auto& control : controls_)
        control->write(archive);
}
