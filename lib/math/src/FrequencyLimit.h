// The highest frequency that a digital filter can be designed for.
#pragma once

// Returns freqHz if half the rate lies above it; otherwise warns "truncating freqHz=...Hz to ...Hz" and
// returns sampleRate * 0.495. A not-a-number counts as too high. Control side only, since it logs.
double truncatedFrequencyHz(double freqHz, double sampleRate);
