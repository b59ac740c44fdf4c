#include "FilterArguments.h"

#include "utility/Log.h"

double checkedSampleRate(const char* className, double sampleRate) {
    if (sampleRate > 0.0) return sampleRate;
    TVK_ERROR("%s Invalid Fs Argument: %f\n", className, sampleRate);
    return 44100.0;
}

double checkedQ(const char* className, double q, double fallback) {
    if (q > 0.0) return q;
    TVK_ERROR("%s Invalid Q Argument: %f\n", className, q);
    return fallback;
}
