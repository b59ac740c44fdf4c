#include "proj/models/audio/InputStage.h"

InputStage::InputStage(float sampleRateHz, float deltaDb)
    : dcTrackers_{DcTracker(sampleRateHz), DcTracker(sampleRateHz), DcTracker(sampleRateHz),
                  DcTracker(sampleRateHz)},
      rangeCombiner0_(sampleRateHz, deltaDb),
      rangeCombiner1_(sampleRateHz, deltaDb) {}

void InputStage::process(const float* frames, std::size_t channels, std::size_t count, float* input0,
                         float* input1, float* sum) {
    bool isLoud = isLoud_;
    for (std::size_t i = 0; i < count; ++i) {
        const float* const x = frames + i * channels;
        const float h0 = dcTrackers_[0].process(x[0]);
        const float h1 = dcTrackers_[1].process(x[1]);
        const float h2 = dcTrackers_[2].process(x[2]);
        const float h3 = dcTrackers_[3].process(x[3]);
        input1[i] = rangeCombiner0_.process(h0, h1, isLoud);
        input0[i] = rangeCombiner1_.process(h2, h3, isLoud);
        sum[i] = input0[i] + input1[i];
    }
    isLoud_ = isLoud;
}
