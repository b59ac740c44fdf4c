#include "algorithms/amp/ArvelReverb65VolumeBrightCap.h"

#include <iterator>

#include "Panel.h"
#include "utility/Log.h"

namespace {

using Tables = ArvelReverb65VolumeBrightCap::Tables;

constexpr Tables kNormalTables = {
    {14.0f, 11.5f, 12.0f, 13.75f, 15.5f, 16.0f, 11.0f, 6.0f, 0.0f, 0.0f},
    {3000.0f, 3000.0f, 4500.0f, 6500.0f, 9000.0f, 11000.0f, 13000.0f, 16000.0f, 16000.0f, 16000.0f}};
constexpr Tables kVibratoTables = {
    {16.0f, 13.8f, 10.6f, 10.0f, 10.0f, 10.0f, 9.0f, 4.0f, 0.0f, 0.0f},
    {4000.0f, 4000.0f, 4000.0f, 5000.0f, 7000.0f, 9500.0f, 11000.0f, 11000.0f, 16000.0f, 16000.0f}};

}  // namespace

ArvelReverb65VolumeBrightCap::ArvelReverb65VolumeBrightCap(const char* tag, int length, float sampleRate,
                                                           const Tables& tables)
    : FirstOrderShelf(length, sampleRate, 0.0f, 0.0f, 7250.0f),
      tag_(tag),
      highGainDb_({std::begin(tables.highGainDb), std::end(tables.highGainDb)}),
      cornerHz_({std::begin(tables.cornerHz), std::end(tables.cornerHz)}) {}

void ArvelReverb65VolumeBrightCap::setVolume(float knob) {
    const float gainDb = highGainDb_.calc(knob);
    const float cornerHz = cornerHz_.calc(knob);
    setAllParameters(0.0f, gainDb, cornerHz);
    tvk::log::debug(tag_, "knob=%0.3f, gain=%0.1fdB, freq=%0.0fHz, panel=%0.2f", knob, gainDb, cornerHz,
                    panelNumber(knob));
}

ArvelReverb65NormalPreampVolumeBrightCap::ArvelReverb65NormalPreampVolumeBrightCap(int length,
                                                                                   float sampleRate)
    : ArvelReverb65VolumeBrightCap("ArvelReverb65NormalPreampVolumeBrightCap", length, sampleRate,
                                   kNormalTables) {}

ArvelReverb65VibratoPreampVolumeBrightCap::ArvelReverb65VibratoPreampVolumeBrightCap(int length,
                                                                                     float sampleRate)
    : ArvelReverb65VolumeBrightCap("ArvelReverb65VibratoPreampVolumeBrightCap", length, sampleRate,
                                   kVibratoTables) {}
