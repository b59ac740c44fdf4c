#include "render/OfflineEngine.h"

#include <chrono>

#include "core/System/DspUnitAudioBufferStorage.h"
#include "utility/BackgroundJobs.h"
#include "utility/Clock.h"
#include "utility/Log.h"
#include "utility/RealtimeThread.h"

namespace tvk::render {

namespace {

// Blocks beyond its head are more than the convolver can take: then cabinets stay dry, with a warning.
std::shared_ptr<IRProcessor> cabSim(int blockLength, int rateHz) {
    if (blockLength > kLongestCabinetBlock) return nullptr;
    return makeCabSim(blockLength, static_cast<float>(rateHz));
}

}  // namespace

OfflineEngine::OfflineEngine(const DspUnitDatabase& database, int blockLength, int rateHz,
                             const std::string& processorUtilizationFilename)
    : dryGuitar_(static_cast<std::size_t>(blockLength)),
      device_(kChannels, kChannels, &database, blockLength, processorUtilizationFilename,
              cabSim(blockLength, rateHz), static_cast<float>(rateHz)) {
    for (auto& input : inputs_)
        input.resize(static_cast<std::size_t>(blockLength));
    for (int c = 0; c < kChannels; ++c)
        device_.connectInput(c, input(c), 0);
    DspUnitAudioBufferStorage::setAddr(DspUnitAudioBufferStorage::kDryGuitar, dryGuitar_.data());
}

OfflineEngine::~OfflineEngine() {
    DspUnitAudioBufferStorage::setAddr(DspUnitAudioBufferStorage::kDryGuitar, nullptr);
}

double OfflineEngine::process() {
    for (std::size_t n = 0; n < dryGuitar_.size(); ++n)
        dryGuitar_[n] = inputs_[0][n] + inputs_[1][n];
    std::chrono::nanoseconds taken{};
    {
        const RealtimeThreadScope realtime;
        Clock& clock = Clock::current();
        const std::chrono::nanoseconds start = clock.now();
        device_.process();
        taken = clock.now() - start;
    }
    // In real time the helpers have a block for a block's job and longer for a tail's.
    BackgroundJobs::waitUntilIdle();
    log::drainRealtimeRing();
    return std::chrono::duration<double>(taken).count();
}

}  // namespace tvk::render
