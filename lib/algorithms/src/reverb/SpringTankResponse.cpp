#include "algorithms/reverb/SpringTankResponse.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <vector>

#include "utility/AudioFileReader.h"
#include "utility/Log.h"
#include "utility/ProductPaths.h"

namespace {

struct Holder {
    std::mutex mutex;
    std::string path = SpringTankResponse::kFile;
    int sampleRateHz = 0;
    std::shared_ptr<const PreparedResponse> response;
};

Holder& holder() {
    static Holder instance;
    return instance;
}

std::shared_ptr<const PreparedResponse> load(const std::string& path, int sampleRateHz) {
    AudioFileReader reader(sampleRateHz, 1);
    if (path.empty() || !reader.load(tvk::ProductPaths::resolve(path))) {
        TVK_ERROR("no spring tank response, the tank is silent: '%s'", path.c_str());
        return nullptr;
    }
    std::vector<float> samples(
        static_cast<std::size_t>(std::min(reader.getNumSamplesPerChannel(), SpringTankResponse::kSamples)));
    const int count = reader.getSamples(samples.data(), static_cast<int>(samples.size()));
    return std::make_shared<const PreparedResponse>(samples.data(), count, SpringTankResponse::kSmallBlock,
                                                    SpringTankResponse::kHeadLength);
}

}  // namespace

void SpringTankResponse::setFile(const std::string& path) {
    Holder& held = holder();
    const std::lock_guard lock(held.mutex);
    if (held.path == path) return;
    held.path = path;
    held.response.reset();
}

std::shared_ptr<const PreparedResponse> SpringTankResponse::get(float sampleRate) {
    Holder& held = holder();
    const int sampleRateHz = static_cast<int>(std::lround(sampleRate));
    const std::lock_guard lock(held.mutex);
    if (!held.response || held.sampleRateHz != sampleRateHz) {
        held.response = load(held.path, sampleRateHz);
        held.sampleRateHz = sampleRateHz;
    }
    return held.response;
}
