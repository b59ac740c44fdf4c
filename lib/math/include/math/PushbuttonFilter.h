// A switch that fades a filter in and out.
//
//   y = x (1 - s) + filter(x) s,   s a one-pole ramp of 0.02 s towards 0 or 1
//
// The gains sum to 1 throughout, so a filter that passes the signal is never heard to switch. The filter runs
// whether it is in or out: its state is right at the moment it fades in.
//
// A concrete switch derives from this class and has a nested Filter derived from IFilter.
#pragma once

#include <atomic>
#include <vector>

#include "math/OnePoleRamp.h"

class PushbuttonFilter {
public:
    class IFilter {
    public:
        virtual ~IFilter() = default;
        // Audio thread. One block in place.
        virtual void process(float* buffer) = 0;
    };

    // length: samples in a block. filter: not owned, outlives the switch's last process.
    PushbuttonFilter(int length, float sampleRate, IFilter* filter);
    virtual ~PushbuttonFilter() = default;

    PushbuttonFilter(const PushbuttonFilter&) = delete;
    PushbuttonFilter& operator=(const PushbuttonFilter&) = delete;

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
    std::vector<float> wet_;
    std::vector<float> gain_;
};
