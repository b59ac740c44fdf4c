// What every second-order filter does with a q or a sample rate that no filter can be designed for.
#pragma once

// Returns the rate; at or below 0 logs "NAME Invalid Fs Argument: ..." and returns 44100.
double checkedSampleRate(const char* className, double sampleRate);

// Returns q; at or below 0 logs "NAME Invalid Q Argument: ..." and returns the fallback.
double checkedQ(const char* className, double q, double fallback);
