#include "FactoryCabinet.h"

#include <cmath>
#include <string>

#include "utility/AudioFileReader.h"
#include "utility/ProductPaths.h"

namespace {

constexpr int kMaxChannels = 2;

}  // namespace

std::unique_ptr<CabSimQNSBase> FactoryCabinet::load(const char* response, float sampleRate) {
    AudioFileReader reader(static_cast<int>(std::lround(sampleRate)), kMaxChannels);
    if (!reader.load(tvk::ProductPaths::resolve(std::string(response) + ".wav"))) return nullptr;
    std::vector<float> samples(static_cast<std::size_t>(reader.getNumSamplesPerChannel()));
    reader.getSamples(samples.data(), static_cast<int>(samples.size()));
    return std::unique_ptr<CabSimQNSBase>(new FactoryCabinet(std::move(samples)));
}
