#include "core/units/utility/DU_PassthruStereo.h"

#include <algorithm>
#include <utility>

DU_PassthruStereo::DU_PassthruStereo(std::string tarvekId, int blockLength)
    : DspUnit(std::move(tarvekId), 2, 2, blockLength) {}

void DU_PassthruStereo::process() {
    for (int channel = 0; channel < 2; ++channel) {
        std::copy_n(getInputAddr(channel), getBlockLength(), getOutputAddr(channel));
    }
}
