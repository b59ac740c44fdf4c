#include "algorithms/amp/ArvelReverb65Tonestack.h"

#include <algorithm>
#include <iterator>

#include "Panel.h"
#include "utility/Log.h"

namespace {

using Tables = ArvelReverb65Tonestack::Tables;

constexpr Tables kNormalTables = {
    {0.0f, 0.016f, 0.025f, 0.055f, 0.086f, 0.13f, 0.183f, 0.44f, 0.76f, 1.0f},
    {0.0f, 0.017f, 0.037f, 0.063f, 0.083f, 0.112f, 0.158f, 0.316f, 0.595f, 1.0f},
    {0.0f, 0.022f, 0.033f, 0.109f, 0.223f, 0.319f, 0.431f, 0.527f, 0.69f, 0.85f},
    {0.0f, 0.016f, 0.03f, 0.084f, 0.189f, 0.285f, 0.405f, 0.569f, 0.78f, 1.0f}};
constexpr Tables kVibratoTables = {
    {0.0f, 0.018f, 0.031f, 0.055f, 0.098f, 0.131f, 0.185f, 0.346f, 0.456f, 0.6f},
    {0.0f, 0.017f, 0.037f, 0.063f, 0.083f, 0.112f, 0.132f, 0.28f, 0.55f, 1.0f},
    {0.0f, 0.012f, 0.026f, 0.083f, 0.158f, 0.256f, 0.361f, 0.476f, 0.595f, 0.751f},
    {0.0f, 0.014f, 0.026f, 0.064f, 0.161f, 0.255f, 0.367f, 0.569f, 0.78f, 1.0f}};

TaperPiecewiseLinear makeTaper(const float (&points)[10]) {
    return TaperPiecewiseLinear({std::begin(points), std::end(points)});
}

}  // namespace

ArvelReverb65Tonestack::ArvelReverb65Tonestack(const char* tag, int blockLength, float sampleRate,
                                               const Tables& tables)
    : tag_(tag),
      blockLength_(blockLength),
      bassTaper_(makeTaper(tables.bass)),
      midTaper_(makeTaper(tables.mid)),
      trebleTaper_(makeTaper(tables.treble)),
      volumeTaper_(makeTaper(tables.volume)),
      circuit_(sampleRate) {}

void ArvelReverb65Tonestack::setBass(float knob, bool isInit) {
    circuit_.setBass(potPosition("Bass", bassTaper_, knob), isInit);
}

void ArvelReverb65Tonestack::setMid(float knob, bool isInit) {
    circuit_.setMid(potPosition("Middle", midTaper_, knob), isInit);
}

void ArvelReverb65Tonestack::setTreble(float knob, bool isInit) {
    circuit_.setTreble(potPosition("Treble", trebleTaper_, knob), isInit);
}

void ArvelReverb65Tonestack::setVolume(float knob, bool isInit) {
    circuit_.setVolume(potPosition("Volume", volumeTaper_, knob), isInit);
    brightCap().setVolume(knob);
}

void ArvelReverb65Tonestack::setBrightSw(bool on, bool isInit) {
    tvk::log::debug(tag_, "setBrightSw(%d, %d)", on, isInit);
    if (isInit) {
        brightSwitch().initSwitch(on);
    } else {
        brightSwitch().setSwitch(on);
    }
}

void ArvelReverb65Tonestack::process(float* buffer) {
    brightSwitch().process(buffer);
    circuit_.process(buffer, blockLength_);
}

float ArvelReverb65Tonestack::potPosition(const char* name, const TaperPiecewiseLinear& taper,
                                          float knob) const {
    const float value = std::clamp(taper.calc(knob), 0.0001f, 0.999f);
    tvk::log::debug(tag_, "%s: knob=%0.3f, value=%0.3f, panel=%0.2f", name, knob, value, panelNumber(knob));
    return value;
}

ArvelReverb65NormalTonestack::ArvelReverb65NormalTonestack(int blockLength, float sampleRate)
    : ArvelReverb65Tonestack("ArvelReverb65NormalTonestack", blockLength, sampleRate, kNormalTables),
      brightSwitch_(blockLength, sampleRate) {}

ArvelReverb65VibratoTonestack::ArvelReverb65VibratoTonestack(int blockLength, float sampleRate)
    : ArvelReverb65Tonestack("ArvelReverb65VibratoTonestack", blockLength, sampleRate, kVibratoTables),
      brightSwitch_(blockLength, sampleRate) {}
