// One signal for each control of the front panel, by kind and index.
//
// An emission runs the slots on the emitter's thread: ControlMsgRx, or updateButtonRx for the button.
#pragma once

#include <array>

#include "utility/Signal.h"

enum class Pot {
    VibratoReverb = 0,
    VibratoBass = 1,
    VibratoMiddle = 2,
    VibratoTreble = 3,
    VibratoVolume = 4,
    NormalBass = 5,
    NormalMiddle = 6,
    NormalTreble = 7,
    NormalVolume = 8,
    VibratoIntensity = 9,
    VibratoSpeed = 10
};

enum class OnOffSwitch {
    FootswitchReverb = 0,
    FootswitchVibrato = 1,
    Standby = 2,
    VibratoBright = 3,
    NormalBright = 4
};

enum class MultiPositionSwitch { Cabsim = 0, ProductId = 1 };

enum class Button { FirmwareUpdate = 0 };

class FrontPanelSignals {
public:
    nod::signal_type<float>& of(Pot pot) { return pots_[static_cast<std::size_t>(pot)]; }
    nod::signal_type<bool>& of(OnOffSwitch onOff) { return onOffSwitches_[static_cast<std::size_t>(onOff)]; }
    nod::signal_type<int>& of(MultiPositionSwitch multi) {
        return multiPositionSwitches_[static_cast<std::size_t>(multi)];
    }
    nod::signal_type<>& of(Button button) { return buttons_[static_cast<std::size_t>(button)]; }

private:
    std::array<nod::signal_type<float>, 11> pots_;
    std::array<nod::signal_type<bool>, 5> onOffSwitches_;
    std::array<nod::signal_type<int>, 2> multiPositionSwitches_;
    std::array<nod::signal_type<>, 1> buttons_;
};
