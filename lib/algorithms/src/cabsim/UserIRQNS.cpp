#include "algorithms/cabsim/UserIRQNS.h"

#include <utility>

#include "algorithms/cabsim/IRProcessor.h"
#include "algorithms/cabsim/IRProcessorPool.h"
#include "utility/Log.h"

namespace {

std::shared_ptr<IRProcessor> takeShare() {
    if (!IRProcessorPool::isThere()) {
        TVK_WARN("UserIRQNS: pointer not available");
        return nullptr;
    }
    std::shared_ptr<IRProcessor> share = IRProcessorPool::take();
    if (!share) TVK_WARN("UserIRQNS: Failed to create IRProcessor object");
    return share;
}

}  // namespace

UserIRQNS::UserIRQNS(int blockLength, float sampleRate) : UserIRQNS(blockLength, sampleRate, takeShare()) {}

UserIRQNS::UserIRQNS(int blockLength, float sampleRate, std::shared_ptr<IRProcessor> share)
    : IRBase(blockLength, sampleRate, share.get()),
      share_(std::move(share)),
      impedance_(blockLength, sampleRate) {}

UserIRQNS::~UserIRQNS() {
    if (!share_) TVK_WARN("UserIRQNS: Tried to release null IRProcessor object");
    detachIRProcessor();
    IRProcessorPool::giveBack(std::move(share_));
}

void UserIRQNS::process(const float* inL, const float* inR, float* outL, float* outR) {
    if (processCabinet(inL, inR, outL))
        impedance_.process(outL, outL, outL, outR);
    else
        passDry(inL, inR, outL, outR);
}
