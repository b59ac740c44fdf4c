// An engine over the test's card, and the periods that go through it.
#pragma once

#include <cmath>
#include <cstdint>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "core/ProductProfile/ProductProfile.h"
#include "proj/models/audio/AudioProcessor.h"
#include "support/AudioWhileWaiting.h"
#include "support/LogRecorder.h"
#include "support/RealtimeGuard.h"
#include "support/TemporaryFolder.h"
#include "support/card/TestCard.h"
#include "utility/RealtimeThread.h"

using Lines = std::vector<std::string>;

inline constexpr double kRate = 44100.0;
inline constexpr double kDeltaDb = 12.0;
inline constexpr std::size_t kPeriodWords = 32 * 6;

inline constexpr const char* kPassthruPreset =
    R"({"nodeType":"preset","nodeId":"preset","version":"1.1","numInputs":2,
    "numOutputs":2,"info":{},"audioGraph":{"nodes":[{"nodeId":"DUBS_LinearGain_1","nodeType":"dspUnit",
    "TarvekId":"PassthruStereo","dspUnitParameters":{}}],"connections":[
    {"input":{"nodeId":"preset","index":0},"output":{"nodeId":"DUBS_LinearGain_1","index":0}},
    {"input":{"nodeId":"preset","index":1},"output":{"nodeId":"DUBS_LinearGain_1","index":1}},
    {"input":{"nodeId":"DUBS_LinearGain_1","index":0},"output":{"nodeId":"preset","index":0}},
    {"input":{"nodeId":"DUBS_LinearGain_1","index":1},"output":{"nodeId":"preset","index":1}}]}})";

inline constexpr const char* kEmptyPreset =
    R"({"nodeType":"preset","nodeId":"preset","version":"1.1","numInputs":2,
    "numOutputs":2,"info":{},"audioGraph":{"nodes":[],"connections":[]}})";

inline std::int32_t word(double sample) {
    return static_cast<std::int32_t>(std::lround(sample * 0x1p23));
}

inline double sample(std::int32_t raw) {
    return raw / 0x1p23;
}

class AudioProcessorTest : public testing::Test {
protected:
    AudioProcessorTest() {
        std::ofstream(folder.file("profile.json"))
            << R"({"inputVoltageMapping": 1.2, "dreGainDeltaDb": )" << kDeltaDb << "}";
        profile = std::make_unique<ProductProfile>(folder.file("profile.json"));
    }
    ~AudioProcessorTest() override { tvk::log::drainRealtimeRing(); }

    AudioProcessorSettings settings(int format = 6) const {
        return {"hw:0,0", "hw:0,0", 32, format, 44100.0f, "no such file"};
    }
    void build(int format = 6) { processor = std::make_unique<AudioProcessor>(settings(format), *profile); }
    // As the audio thread does it.
    void cycle() {
        const tvk::RealtimeThreadScope realtime;
        processor->process();
    }
    void cycles(int count) {
        for (int i = 0; i < count; ++i)
            cycle();
    }
    // Audio goes on in the waits of the load.
    void load(const char* preset) {
        isLoading = true;
        processor->loadPreset(preset);
        isLoading = false;
    }
    std::vector<std::int32_t> lastPeriodWritten() const {
        return {card.written.end() - static_cast<std::ptrdiff_t>(kPeriodWords), card.written.end()};
    }

    TemporaryFolder folder;
    CardScope scope;
    TestCard& card = scope.card;
    LogRecorder log;
    std::unique_ptr<ProductProfile> profile;
    bool isLoading = false;
    // Stands longer than the threads of a loaded amplifier.
    AudioWhileWaiting clock{32.0 / kRate, [this] {
                                if (isLoading) cycle();
                            }};
    std::unique_ptr<AudioProcessor> processor;
};
