// A switch that fades between two filters of the same input.
//
//   y = off(x) (1 - s) + on(x) s,   s a one-pole ramp of 0.01 s towards 0 or 1
//
// Both filters run all the time.
#pragma once

#include <atomic>
#include <vector>

#include "math/OnePoleRamp.h"

class PushbuttonFilters {
public:
    class IFilter {
    public:
        virtual ~IFilter() = default;
        // Audio thread. One block of input through the two filters; the three buffers are distinct.
        virtual void process(const float* input, float* offOutput, float* onOutput) = 0;
    };

    // length: samples in a block. filter: not owned, outlives the switch's last process.
    PushbuttonFilters(int length, float sampleRate, IFilter* filter);
    virtual ~PushbuttonFilters() = default;

    PushbuttonFilters(const PushbuttonFilters&) = delete;
    PushbuttonFilters& operator=(const PushbuttonFilters&) = delete;

    // Ends a fade that is under way.
    virtual void reset();

    // Audio thread. One block in place.
    void process(float* buffer);

    // Control side: fade to the new state, or be there now.
    void setSwitch(bool on);
    void initSwitch(bool on);

    bool isOn() const { return state_.load(std::memory_order_relaxed) != 0; }

private:
    const int length_;
    std::atomic<int> state_{0};
    OnePoleRamp ramp_;
    IFilter* const filter_;
    std::vector<float> offWet_;
    std::vector<float> onWet_;
    std::vector<float> gain_;
};
