#include "algorithms/reverb/DampedComb.h"

#include <algorithm>

#include "math/OnePoleScan.h"

namespace rvb {

DampedComb::DampedComb(int lengthSamples) : line_(static_cast<std::size_t>(std::max(lengthSamples, 1))) {}

void DampedComb::addTo(float* sum, const float* in, int n, float d, float feedback) {
    const OnePoleScan scan(d);
    const float passed = 1.0f - d;
    float store = store_;
    while (n > 0) {
        const int run = std::min(n, length() - k_);
        float* line = line_.data() + k_;
        int i = 0;
        for (; i + 4 <= run; i += 4) {
            const OnePoleScan::Lanes out = OnePoleScan::load(line + i);
            const OnePoleScan::Lanes stores = scan.step(passed * out, store);
            store = stores[3];
            OnePoleScan::store(line + i, OnePoleScan::load(in + i) + feedback * stores);
            OnePoleScan::store(sum + i, OnePoleScan::load(sum + i) + out);
        }
        for (; i < run; ++i) {
            const float out = line[i];
            store = out * passed + store * d;
            line[i] = in[i] + store * feedback;
            sum[i] += out;
        }
        k_ = k_ + run == length() ? 0 : k_ + run;
        in += run;
        sum += run;
        n -= run;
    }
    store_ = store;
}

void DampedComb::clear() {
    std::fill(line_.begin(), line_.end(), 0.0f);
    store_ = 0.0f;
}

}  // namespace rvb
