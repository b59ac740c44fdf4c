#include "algorithms/reverb/SpringVoicing.h"

namespace rvb {
namespace {

struct AllpassRow {
    float a1;
    float a2;
};

// a1 and a2 of the dispersion's sections as they were measured, in the order of the chain. Their numerators
// are 0.5 z^-2 + a1 z^-1 + a2.
constexpr float kDispersionB2 = 0.5f;
constexpr AllpassRow kDispersion[30] = {
    {-0.9916155f, 0.491702f},  {-0.991179f, 0.4913665f},  {-0.9907685f, 0.4911135f},
    {-0.990398f, 0.4909595f},  {-0.990071f, 0.490909f},   {-0.989782f, 0.4909545f},
    {-0.989518f, 0.4910785f},  {-0.9892625f, 0.4912605f}, {-0.9890005f, 0.491479f},
    {-0.9884125f, 0.491962f},  {-0.9876995f, 0.4924355f}, {-0.986848f, 0.492861f},
    {-0.985865f, 0.493227f},   {-0.984762f, 0.4935355f},  {-0.9835525f, 0.4937925f},
    {-0.9822455f, 0.4940045f}, {-0.980848f, 0.494178f},   {-0.979365f, 0.4943185f},
    {-0.977799f, 0.49443f},    {-0.9761505f, 0.494515f},  {-0.9744185f, 0.4945775f},
    {-0.9726005f, 0.494618f},  {-0.9706925f, 0.494638f},  {-0.968689f, 0.4946385f},
    {-0.966584f, 0.4946195f},  {-0.9643685f, 0.4945815f}, {-0.9620325f, 0.4945225f},
    {-0.9595635f, 0.4944425f}, {-0.9569465f, 0.4943385f}, {-0.954164f, 0.494209f},
};

// What the voicings have in common. The dispersion's rows are divided by their b2, which turns each into an
// allpass: numerator and denominator mirror each other.
constexpr SpringVoicing common() {
    SpringVoicing voicing{};
    voicing.levelMinDb = -60.0f;
    voicing.levelMaxDb = 0.0f;
    voicing.outputWeights = {0.9999f, 0.99f};
    voicing.rampSeconds = 0.02f;
    voicing.combInputGain = 0.015f;
    constexpr BiquadCoefficients<float> kFixed[4] = {
        {-1.6011f, 0.66837f, 0.0056007f, 0.0112014f, 0.0056007f},
        {-1.5905f, 0.9441f, 0.9669f, -1.5889f, 0.97527f},
        {-1.3921f, 0.87447f, 0.93315f, -1.3907f, 0.93944f},
        {-1.2309f, 0.97427f, 0.94761f, -1.2297f, 1.0247f},
    };
    for (int i = 0; i < 4; ++i)
        voicing.fixedFilters[i] = kFixed[i];
    voicing.loopFeedback = 0.873f;
    for (int i = 0; i < 30; ++i) {
        const float a1 = kDispersion[i].a1 / kDispersionB2;
        const float a2 = kDispersion[i].a2 / kDispersionB2;
        voicing.dispersion[i] = {a1, a2, 1.0f, a1, a2};
    }
    constexpr float kEarlyTapMs[6] = {1.9501f, 4.7166f, 6.4399f, 6.7574f, 21.361f, 23.084f};
    for (int i = 0; i < 6; ++i)
        voicing.earlyTapMs[i] = kEarlyTapMs[i];
    voicing.earlyMaxMs = 23.084f;
    voicing.loopTapMs = voicing.loopMaxMs = 43.401f;
    voicing.loopTapGain = 1.0f;
    voicing.loopDelayFeedback = 0.0f;
    constexpr float kCombMs[8] = {25.306f, 26.939f, 28.957f, 30.748f, 32.245f, 33.81f, 35.306f, 36.667f};
    for (int i = 0; i < 8; ++i)
        voicing.combs[i] = {kCombMs[i], 3590.0f, 0.945f};
    constexpr float kAllpassMs[4] = {12.608f, 10.0f, 7.7324f, 5.102f};
    for (int i = 0; i < 4; ++i)
        voicing.allpasses[i] = {kAllpassMs[i], -0.99999f, 0.5f};
    return voicing;
}

constexpr void setEarlyGains(SpringVoicing& voicing, const float (&gains)[6]) {
    for (int i = 0; i < 6; ++i)
        voicing.earlyTapGains[i] = gains[i];
}

constexpr SpringVoicing voicing65() {
    SpringVoicing voicing = common();
    voicing.earlyWeights = {0.98855f, 0.794328f};
    voicing.lateWeights = {0.501187f, 0.98855f};
    voicing.dwellMin = 0.707f, voicing.dwellMax = 0.95f;
    voicing.diffuseMin = 0.88f, voicing.diffuseMax = 0.95f;
    setEarlyGains(voicing, {0.1439657f, 0.1424322f, 0.1463416f, 0.1490154f, 0.147646f, 0.148868f});
    voicing.earlyFeedback = 0.3f;
    voicing.decayMinHz = 3585.0f, voicing.decayMaxHz = 8450.0f;
    voicing.toneMinHz = 4000.0f, voicing.toneMaxHz = 9000.0f;
    voicing.inputPeak = {-0.5f, 1500.0f, 0.2f};
    voicing.firstShelf = {-6.0f, 0.0f, 2500.0f};
    voicing.secondShelf = {-0.01f, -3.0f, 2700.0f};
    return voicing;
}

constexpr SpringVoicing voicing63() {
    SpringVoicing voicing = common();
    voicing.earlyWeights = {0.98855f, 0.501187f};
    voicing.lateWeights = {0.44668f, 0.9988f};
    voicing.dwellMin = 0.1f, voicing.dwellMax = 0.95f;
    voicing.diffuseMin = 0.87f, voicing.diffuseMax = 0.94f;
    setEarlyGains(voicing, {0.146552f, 0.141441f, 0.154472f, 0.163385f, 0.15882f, 0.16289f});
    voicing.earlyFeedback = 0.55f;
    voicing.decayMinHz = 17727.0f, voicing.decayMaxHz = 22592.0f;
    voicing.toneMinHz = 500.0f, voicing.toneMaxHz = 6000.0f;
    voicing.inputPeak = {15.0f, 3550.0f, 0.19f};
    voicing.firstShelf = {-6.0f, -0.01f, 1100.0f};
    voicing.secondShelf = {-0.1f, -20.0f, 6000.0f};
    return voicing;
}

}  // namespace

constexpr SpringVoicing kSpringVoicing65 = voicing65();
constexpr SpringVoicing kSpringVoicing63 = voicing63();
constexpr SpringVoicingOstrel kSpringVoicing63Ostrel = {voicing63(), 1.0f, {1.0f, 1.0f}, {1.0f, 1.0f}};

}  // namespace rvb
