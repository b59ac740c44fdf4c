#include "core/units/utility/DU_Fanout2.h"

#include <algorithm>
#include <utility>

DU_Fanout2::DU_Fanout2(std::string tarvekId, int blockLength)
    : DspUnit(std::move(tarvekId), 1, 2, blockLength) {}

void DU_Fanout2::process() {
    for (int channel = 0; channel < 2; ++channel) {
        std::copy_n(getInputAddr(0), getBlockLength(), getOutputAddr(channel));
    }
}
