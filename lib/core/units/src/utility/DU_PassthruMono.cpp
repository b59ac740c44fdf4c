#include "core/units/utility/DU_PassthruMono.h"

#include <algorithm>
#include <utility>

DU_PassthruMono::DU_PassthruMono(std::string tarvekId, int blockLength)
    : DspUnit(std::move(tarvekId), 1, 1, blockLength) {}

void DU_PassthruMono::process() {
    std::copy_n(getInputAddr(0), getBlockLength(), getOutputAddr(0));
}
