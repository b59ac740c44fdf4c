#include "core/System/DspUnitAudioBufferStorage.h"

#include "utility/Log.h"

namespace {

float* addresses[DspUnitAudioBufferStorage::kBuffers] = {};

bool isBuffer(int index) {
    return index >= 0 && index < DspUnitAudioBufferStorage::kBuffers;
}

}  // namespace

void DspUnitAudioBufferStorage::setAddr(int index, float* address) {
    if (!isBuffer(index)) {
        TVK_ERROR("setAddr index %d doesn't exist", index);
        return;
    }
    addresses[index] = address;
}

float* DspUnitAudioBufferStorage::getAddr(int index) {
    if (!isBuffer(index)) {
        TVK_ERROR("getAddr index %d doesn't exist", index);
        return nullptr;
    }
    return addresses[index];
}
