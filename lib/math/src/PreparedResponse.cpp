#include "math/PreparedResponse.h"

#include <algorithm>
#include <stdexcept>

namespace {

int checkedHead(int smallBlock, int headLength) {
    if (smallBlock < 1 || headLength < smallBlock || headLength % smallBlock != 0)
        throw std::invalid_argument("PreparedResponse: the head is not a multiple of the small block");
    return headLength;
}

}  // namespace

PreparedResponse::PreparedResponse(const float* ir, int irLength, int blockOfMiddle, int tapsOfHead)
    : smallBlock(blockOfMiddle),
      headLength(checkedHead(blockOfMiddle, tapsOfHead)),
      head(std::make_shared<const DirectFirCoefficients>(ir, std::min(irLength, headLength))) {
    const int middleLength = std::min(irLength - headLength, headLength);
    if (middleLength > 0)
        middle = std::make_shared<const PartitionSpectra>(smallBlock, ir + headLength, middleLength);
    const int tailLength = irLength - 2 * headLength;
    if (tailLength > 0)
        tail = std::make_shared<const PartitionSpectra>(headLength, ir + 2 * headLength, tailLength);
}
