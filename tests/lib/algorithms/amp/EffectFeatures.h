// What reverb and vibrato of the two-channel reverb amp do to a soft 1 kHz tone of the vibrato channel, heard
// at the speaker. The golden tables hold these features; the laws that hold among them are tests of their
// own.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <string>
#include <vector>

#include "algorithms/amp/ArvelReverb65.h"
#include "utility/BackgroundJobs.h"

namespace flagship {

constexpr int kEffectBlock = 32;
constexpr double kEffectRateHz = 44100.0;
constexpr double kToneHz = 1000.0;
constexpr double kToneVolts = 0.01;  // clean

struct ReverbCase {
    float knob;
    int taper;
};
// Level of the tail, volts RMS, in three windows after a burst of 20 ms.
struct ReverbFeatures {
    double early, middle, late;
};

struct VibratoCase {
    float speed, intensity;
};
// The envelope of a steady tone: its highest and lowest level, volts RMS, and its rate.
struct VibratoFeatures {
    double most, least, rateHz;
};

inline std::vector<ReverbCase> reverbCases() {
    std::vector<ReverbCase> all;
    for (const int taper : {0, 1})
        for (const float knob : {0.25f, 0.5f, 0.75f, 1.0f})
            all.push_back({knob, taper});
    return all;
}

inline std::vector<VibratoCase> vibratoCases() {
    std::vector<VibratoCase> all;
    for (const float speed : {0.0f, 0.5f, 1.0f})
        for (const float intensity : {0.3f, 0.6f, 1.0f})
            all.push_back({speed, intensity});
    return all;
}

inline std::string nameOf(const ReverbCase& c) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f,%d", double(c.knob), c.taper);
    return text;
}
inline std::string nameOf(const VibratoCase& c) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f,%.1f", double(c.speed), double(c.intensity));
    return text;
}

// The speaker's volts for a tone that ends after toneSeconds, with all knobs in the middle.
template <typename Setting>
std::vector<double> speakerVolts(Setting setting, double seconds, double toneSeconds) {
    ArvelReverb65 amp(kEffectBlock, static_cast<float>(kEffectRateHz), 1.0f, false);
    amp.setGain(0.5f, true);
    amp.setBass(0.5f, true);
    amp.setMid(0.5f, true);
    amp.setTreb(0.5f, true);
    setting(amp);
    std::vector<double> volts;
    const int samples = static_cast<int>(seconds * kEffectRateHz);
    for (int start = 0; start < samples; start += kEffectBlock) {
        float normal[kEffectBlock] = {};
        float vibrato[kEffectBlock] = {};
        float line[kEffectBlock];
        for (int n = 0; n < kEffectBlock; ++n) {
            const double t = (start + n) / kEffectRateHz;
            if (t < toneSeconds)
                vibrato[n] = static_cast<float>(kToneVolts * std::sin(2.0 * std::numbers::pi * kToneHz * t));
        }
        amp.process(normal, vibrato, normal, line);
        for (const float x : normal)
            volts.push_back(double(x) * double(ArvelReverb65::kFullPowerVolts));
        tvk::BackgroundJobs::waitUntilIdle();
    }
    return volts;
}

inline double rmsBetween(const std::vector<double>& x, double fromSeconds, double toSeconds) {
    const auto from = static_cast<std::size_t>(fromSeconds * kEffectRateHz);
    const auto to = static_cast<std::size_t>(toSeconds * kEffectRateHz);
    double sum = 0.0;
    for (std::size_t n = from; n < to; ++n)
        sum += x[n] * x[n];
    return std::sqrt(sum / double(to - from));
}

// SpringTankResponse is set to the response to measure with.
inline ReverbFeatures measure(const ReverbCase& c) {
    const std::vector<double> volts = speakerVolts(
        [&](ArvelReverb65& amp) {
            amp.setReverbTaper(c.taper);
            amp.setReverb(c.knob, true);
        },
        1.2, 0.02);
    return {rmsBetween(volts, 0.05, 0.15), rmsBetween(volts, 0.4, 0.6), rmsBetween(volts, 1.0, 1.2)};
}

// Windows of 5 ms, five whole periods; a crossing of the middle upwards is a cycle's start.
inline VibratoFeatures measure(const VibratoCase& c) {
    constexpr double kSettle = 0.5, kWindow = 0.005, kEnd = 2.5;
    const std::vector<double> volts = speakerVolts(
        [&](ArvelReverb65& amp) {
            amp.setSpeed(c.speed, true);
            amp.setIntensity(c.intensity, true);
        },
        kEnd, kEnd);
    std::vector<double> envelope;
    for (int window = 0; window < int((kEnd - kSettle) / kWindow) - 1; ++window)
        envelope.push_back(rmsBetween(volts, kSettle + window * kWindow, kSettle + (window + 1) * kWindow));
    const auto [least, most] = std::minmax_element(envelope.begin(), envelope.end());
    const double middle = std::sqrt(*least * *most);
    std::vector<double> starts;
    for (std::size_t n = 1; n < envelope.size(); ++n)
        if (envelope[n - 1] < middle && envelope[n] >= middle)
            starts.push_back(double(n) - (envelope[n] - middle) / (envelope[n] - envelope[n - 1]));
    const double cycles = double(starts.size()) - 1.0;
    return {*most, *least, starts.size() < 2 ? 0.0 : cycles / ((starts.back() - starts.front()) * kWindow)};
}

}  // namespace flagship
