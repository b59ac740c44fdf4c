// The last value of every control of the front panel, kept so that a new preset can be given all of them.
//
// Every value is one relaxed atomic word: one thread writes it, any thread reads it. Knobs are the panel's
// normalised positions, 0 to 1. All start at zero. Storing a value does nothing else.
#pragma once

#include <atomic>

template <typename T>
class PanelValue {
public:
    T get() const { return value_.load(std::memory_order_relaxed); }
    void set(T value) { value_.store(value, std::memory_order_relaxed); }

private:
    std::atomic<T> value_{};
};

struct PanelState {
    PanelValue<float> vibratoReverb;
    PanelValue<float> vibratoBass;
    PanelValue<float> vibratoMiddle;
    PanelValue<float> vibratoTreble;
    PanelValue<float> vibratoVolume;
    PanelValue<float> normalBass;
    PanelValue<float> normalMiddle;
    PanelValue<float> normalTreble;
    PanelValue<float> normalVolume;
    PanelValue<bool> footswitchReverb;
    PanelValue<bool> footswitchVibrato;
    PanelValue<int> cabsim;  // position of the cabinet switch, 0 to 2
    PanelValue<float> vibratoIntensity;
    PanelValue<float> vibratoSpeed;
    PanelValue<int> standby;
    PanelValue<int> productId;  // which amplifier the hardware is
    PanelValue<bool> vibratoBright;
    PanelValue<bool> normalBright;
};
