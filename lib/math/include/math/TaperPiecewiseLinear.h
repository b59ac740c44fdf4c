// A knob law drawn as points at equal distances over the travel, joined by straight lines. The values are
// whatever the knob stands for; unlike the other tapers they need not lie in 0 to 1.
//
// Control side only: it logs.
#pragma once

#include <utility>
#include <vector>

class TaperPiecewiseLinear {
public:
    TaperPiecewiseLinear() = default;
    explicit TaperPiecewiseLinear(const std::vector<float>& endpoints) { addSegments(endpoints); }

    // Each neighbouring pair of endpoints becomes a segment behind those already there. Fewer than two
    // endpoints are an error line and change nothing.
    void addSegments(const std::vector<float>& endpoints);

    // knob is limited to 0 to 1. Without segments an error line and 0.
    float calc(float knob) const;

private:
    std::vector<std::pair<float, float>> segments_;
    bool initialised_ = false;
};
