#include "core/units/utility/DU_StereoAdder.h"

#include <utility>

DU_StereoAdder::DU_StereoAdder(std::string tarvekId, int blockLength)
    : DspUnit(std::move(tarvekId), 4, 2, blockLength) {}

void DU_StereoAdder::process() {
    for (int channel = 0; channel < 2; ++channel) {
        const float* const first = getInputAddr(channel);
        const float* const second = getInputAddr(channel + 2);
        float* const out = getOutputAddr(channel);
        for (int n = 0; n < getBlockLength(); ++n)
            out[n] = first[n] + second[n];
    }
}
