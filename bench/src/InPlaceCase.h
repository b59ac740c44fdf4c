// A case that works in place on a copy of the guitar's block.
#pragma once

#include <memory>
#include <utility>

#include "Cases.h"

namespace bench {

struct NoControl {
    template <typename Unit>
    void operator()(Unit&, int) const {}
};

template <typename Unit, typename Process, typename Control>
class InPlaceCase : public Case {
public:
    InPlaceCase(std::unique_ptr<Unit> unit, float gain, Process process, Control control)
        : unit_(std::move(unit)), gain_(gain), process_(process), control_(control) {}

    void process(const float* in) override {
        for (int n = 0; n < kBlockLength; ++n)
            block_[n] = in[n] * gain_;
        process_(*unit_, block_);
    }
    void control(int turn) override { control_(*unit_, turn); }

private:
    std::unique_ptr<Unit> unit_;
    float gain_;
    Process process_;
    Control control_;
    alignas(64) float block_[kBlockLength];
};

// gain: of the guitar's samples at the unit's input. process: (unit, block). control: (unit, turn).
template <typename Unit, typename Process, typename Control = NoControl>
std::unique_ptr<Case> inPlace(std::unique_ptr<Unit> unit, float gain, Process process, Control control = {}) {
    return std::make_unique<InPlaceCase<Unit, Process, Control>>(std::move(unit), gain, process, control);
}

// Units with process(buffer).
template <typename Unit>
std::unique_ptr<Case> block(std::unique_ptr<Unit> unit, float gain) {
    return inPlace(std::move(unit), gain, [](Unit& u, float* samples) { u.process(samples); });
}

// Units with process(buffer, length).
template <typename Unit>
std::unique_ptr<Case> samples(std::unique_ptr<Unit> unit, float gain) {
    return inPlace(std::move(unit), gain, [](Unit& u, float* buffer) { u.process(buffer, kBlockLength); });
}

}  // namespace bench
