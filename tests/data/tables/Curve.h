// A stored curve as the valve stages evaluate it, in double precision, between its limits in volts.
#pragma once

#include <algorithm>

#include "tables/ValveCurve.h"

struct Curve {
    const char* name;
    const tables::ValveCurve& table;
    double inputRange, outputMin, outputMax;

    double half() const { return 0.5 * (outputMax - outputMin); }
    double middle() const { return 0.5 * (outputMax + outputMin); }

    // A value on a breakpoint belongs to the lower segment.
    int segmentOf(double x) const {
        int segment = 0;
        while (segment < 7 && static_cast<double>(table.breakpoints[segment]) < x)
            ++segment;
        return segment;
    }

    double valueIn(int segment, double x) const {
        const float* s = table.segments[segment];
        return ((static_cast<double>(s[0]) * x + s[1]) * x + s[2]) * x + s[3];
    }

    double slopeIn(int segment, double x) const {
        const float* s = table.segments[segment];
        return (3.0 * s[0] * x + 2.0 * s[1]) * x + s[2];
    }

    double normalised(double x) const {
        x = std::clamp(x, -1.0, 1.0);
        return valueIn(segmentOf(x), x);
    }

    double volts(double input) const { return middle() + half() * normalised(input / inputRange); }

    // Volts out per volt in at rest.
    double gainAtRest() const { return slopeIn(segmentOf(0.0), 0.0) * half() / inputRange; }
};
