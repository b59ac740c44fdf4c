#include "core/units/utility/DU_Sum2.h"

#include <utility>

DU_Sum2::DU_Sum2(std::string tarvekId, int blockLength) : DspUnit(std::move(tarvekId), 2, 1, blockLength) {}

void DU_Sum2::process() {
    const float* const in0 = getInputAddr(0);
    const float* const in1 = getInputAddr(1);
    float* const out = getOutputAddr(0);
    for (int n = 0; n < getBlockLength(); ++n)
        out[n] = in0[n] + in1[n];
}
