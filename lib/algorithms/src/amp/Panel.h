// The number printed beside a knob, 1 to 10, for a position 0 to 1.
#pragma once

inline float panelNumber(float knob) {
    return 1.0f + knob * 9.0f;
}
