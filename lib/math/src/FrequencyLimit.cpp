#include "FrequencyLimit.h"

#include "utility/Log.h"

double truncatedFrequencyHz(double freqHz, double sampleRate) {
    if (sampleRate * 0.5 > freqHz) return freqHz;
    const double limit = sampleRate * 0.495;
    TVK_WARN("truncating freqHz=%fHz to %fHz", freqHz, limit);
    return limit;
}
