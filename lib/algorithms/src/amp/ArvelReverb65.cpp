#include "algorithms/amp/ArvelReverb65.h"

#include "Scale.h"
#include "algorithms/cabsim/CabinetLimits.h"
#include "utility/Log.h"

namespace {

constexpr const char* kTag = "ArvelReverb65";

}  // namespace

ArvelReverb65::ArvelReverb65(int blockLength, float sampleRate, float sysFloatToVolts,
                             bool isSpeakerImpedanceCurveEnabled)
    : blockLength_(blockLength),
      sysFloatToVolts_(sysFloatToVolts),
      isSpeakerImpedanceCurveEnabled_(isSpeakerImpedanceCurveEnabled),
      normalPreamp_(blockLength, sampleRate),
      vibratoPreamp_(blockLength, sampleRate),
      normalHighPass_(30.0f, sampleRate),
      vibratoHighPass_(55.0f, sampleRate),
      mixShelf_(6.0f, 9000.0f, 4.0f, sampleRate),
      powerAmp_(blockLength, sampleRate),
      powerSupply_(blockLength, kFullPowerVolts, sampleRate),
      impedanceCurve_(blockLength, sampleRate),
      cabinet_(blockLength, sampleRate),
      normal_(static_cast<std::size_t>(blockLength)),
      vibrato_(normal_.size()) {
    tvk::log::debug(kTag, "sysFloatToVolts = %f", sysFloatToVolts_);
    tvk::log::debug(kTag, "isSpeakerImpedanceCurveEnabled = %d", isSpeakerImpedanceCurveEnabled_);
    setCabinet("none");
}

void ArvelReverb65::process(const float* inNormal, const float* inVibrato, float* outSpeaker,
                            float* outLine) {
    float* const a = normal_.data();
    float* const b = vibrato_.data();
    for (int n = 0; n < blockLength_; ++n) {
        a[n] = inNormal[n] * sysFloatToVolts_;
        b[n] = inVibrato[n] * sysFloatToVolts_;
    }
    normalPreamp_.process(a);
    vibratoPreamp_.process(b);
    normalHighPass_.process(a, blockLength_);
    vibratoHighPass_.process(b, blockLength_);

    float* const c = outSpeaker;
    for (int n = 0; n < blockLength_; ++n)
        c[n] = a[n] + b[n];
    mixShelf_.process(c, blockLength_);
    powerAmp_.process(c);
    powerSupply_.process(c);
    if (isSpeakerImpedanceCurveEnabled_) impedanceCurve_.process(c);

    cabinet_.process(c, c, outLine, outLine);

    scale(c, 1.0f / kFullPowerVolts, blockLength_);
    scale(outLine, 1.0f / kFullPowerVolts, blockLength_);
}

void ArvelReverb65::setGain(float knob, bool isInit) {
    setNormalVolume(knob, isInit);
    setVibratoVolume(knob, isInit);
}

void ArvelReverb65::setBass(float knob, bool isInit) {
    setNormalBass(knob, isInit);
    setVibratoBass(knob, isInit);
}

void ArvelReverb65::setMid(float knob, bool isInit) {
    setNormalMid(knob, isInit);
    setVibratoMid(knob, isInit);
}

void ArvelReverb65::setTreb(float knob, bool isInit) {
    setNormalTreb(knob, isInit);
    setVibratoTreb(knob, isInit);
}

void ArvelReverb65::setBrightSw(bool on, bool isInit) {
    setNormalBright(on, isInit);
    setVibratoBright(on, isInit);
}

void ArvelReverb65::setBias(float, bool) {}

void ArvelReverb65::setSag(int index, bool) {
    powerSupply_.setSag(index);
}

void ArvelReverb65::setCabinet(const std::string& name) {
    tvk::log::debug(kTag, "cabinet = %s", name.c_str());
    cabinet_.setFile(name);
}

void ArvelReverb65::setCabinetHPF(float hz, bool isInit) {
    tvk::log::debug(kTag, "cabinet HPF = %f", hz);
    cabinet_.setHPF(cabinet::limitHpfHz(hz), isInit);
}

void ArvelReverb65::setCabinetLPF(float hz, bool isInit) {
    tvk::log::debug(kTag, "cabinet LPF = %f", hz);
    cabinet_.setLPF(cabinet::limitLpfHz(hz), isInit);
}

void ArvelReverb65::setCabinetLevel(float db, bool isInit) {
    tvk::log::debug(kTag, "cabinet level = %f", db);
    cabinet_.setOutputLevel(cabinet::limitLevelDb(db), isInit);
}
