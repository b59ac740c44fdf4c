// A measured cabinet from a response file that ships with the amplifier.
#pragma once

#include <memory>
#include <vector>

#include "algorithms/cabsim/CabSimQNSBase.h"

class FactoryCabinet final : public CabSimQNSBase {
public:
    // response: path on the amplifier, without extension. Null, after the reader's line in the log, when the
    // file cannot be used at sampleRate (Hz). Blocks for the disk.
    static std::unique_ptr<CabSimQNSBase> load(const char* response, float sampleRate);

    std::span<const float> getImpulseResponse() const override { return samples_; }

private:
    explicit FactoryCabinet(std::vector<float> samples) : samples_(std::move(samples)) {}

    const std::vector<float> samples_;
};
