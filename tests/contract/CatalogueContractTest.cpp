// What every unit of the catalogue owes, whatever it does: one set of tests for each type id.

#include <algorithm>
#include <atomic>
#include <cmath>
#include <gtest/gtest.h>
#include <memory>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "core/Parameter/Parameter.h"
#include "core/System/DspArchive.h"
#include "core/System/DspUnitAudioBufferStorage.h"
#include "core/System/DspUnitInputVoltageMappingConfig.h"
#include "shared/DspUnitInfo/DefaultDspUnitDatabase.h"
#include "support/LogRecorder.h"
#include "support/RealtimeGuard.h"
#include "utility/BackgroundJobs.h"
#include "utility/RealtimeThread.h"

namespace {

using Json = nlohmann::ordered_json;

constexpr int kBlock = 32;
constexpr float kRate = 44100.0f;
// A guitar far too loud still comes out of an amplifier within its supply.
constexpr float kLoudest = 100.0f;

const DefaultDspUnitDatabase& catalogue() {
    static const DefaultDspUnitDatabase database;
    return database;
}

class CatalogueContract : public testing::TestWithParam<std::string> {
protected:
    CatalogueContract() {
        DspUnitInputVoltageMappingConfig::set(1.0f);
        DspUnitAudioBufferStorage::setAddr(0, dryGuitar_.data());
        unit = catalogue().createDspUnit(GetParam(), kBlock, kRate);
        for (int c = 0; c < unit->getNumInputs(); ++c) {
            inputs_.emplace_back(kBlock, 0.0f);
            unit->connectInput(c, inputs_.back().data(), c + 1);
        }
    }
    ~CatalogueContract() override {
        unit.reset();
        DspUnitAudioBufferStorage::setAddr(0, nullptr);
    }

    Json definition() const { return Json::parse(catalogue().getDefinition(GetParam())); }

    // One block as the audio thread runs it. The inputs are a unit's to scale, so they are filled each time.
    template <typename Source>
    void run(Source source) {
        for (auto& input : inputs_)
            for (float& sample : input)
                sample = source();
        {
            const tvk::RealtimeThreadScope realtime;
            unit->process();
        }
        // In real time a unit's helper threads have a block's time or more for their share.
        tvk::BackgroundJobs::waitUntilIdle();
    }
    float loudest() const {
        float most = 0.0f;
        for (int c = 0; c < unit->getNumOutputs(); ++c)
            for (int n = 0; n < kBlock; ++n) {
                const float x = std::fabs(unit->getOutputAddr(c)[n]);
                most = x <= most ? most : x;  // also keeps what is not a number
            }
        return most;
    }
    std::string archived() {
        DspArchive archive("{}");
        unit->getArchive(archive);
        return archive.toString();
    }
    // Sets every parameter to some value of its range: of its control's, else of the knob's 0 to 1.
    void shake(std::mt19937& random, const Json& controls) {
        for (const auto& [name, parameter] : unit->getParameters()) {
            if (name == "muteInput" || name == "muteOutput" || name == "clipState") continue;
            float least = 0.0f;
            float most = 1.0f;
            for (const Json& control : controls)
                if (control["controlId"] == name && control.contains("min")) {
                    least = control["min"];
                    most = control["max"];
                }
            const float share = std::uniform_real_distribution<float>(0.0f, 1.0f)(random);
            if (auto* number = dynamic_cast<Parameter<float>*>(parameter))
                number->set(least + share * (most - least));
            else if (auto* whole = dynamic_cast<Parameter<int>*>(parameter))
                whole->set(static_cast<int>(std::lround(least + share * (most - least))));
            else if (auto* flag = dynamic_cast<Parameter<bool>*>(parameter))
                flag->set(share < 0.5f);
        }
    }

    const LogRecorder log_;
    std::unique_ptr<IDspUnit> unit;

private:
    std::vector<float> dryGuitar_ = std::vector<float>(kBlock);
    std::vector<std::vector<float>> inputs_;
};

TEST_P(CatalogueContract, BuildsUnderItsOwnId) {
    ASSERT_NE(unit, nullptr);
    EXPECT_EQ(unit->getTarvekId(), GetParam());
    EXPECT_EQ(unit->getNodeType(), "dspUnit");
}

TEST_P(CatalogueContract, TheDefinitionParsesAndFitsTheUnit) {
    const Json d = definition();
    EXPECT_EQ(d.at("nodeType"), "dspUnit");
    EXPECT_EQ(d.at("TarvekId"), GetParam());
    for (const char* key : {"displayName", "audioGuiObjectNameMinimized", "audioGuiObjectNameMaximized",
                            "category", "subcategory"})
        EXPECT_TRUE(d.at("info").at(key).is_string()) << key;
    EXPECT_EQ(d.at("ui").at("inputs").size(), static_cast<size_t>(unit->getNumInputs()));
    EXPECT_EQ(d.at("ui").at("outputs").size(), static_cast<size_t>(unit->getNumOutputs()));
}

TEST_P(CatalogueContract, EveryControlResolvesToAParameterOfItsType) {
    const Json d = definition();
    for (const Json& control : d["ui"]["uiParameters"]) {
        const std::string id = control.at("controlId");
        const IParameter* parameter = nullptr;
        ASSERT_NO_THROW(parameter = unit->getParameter(id)) << id;
        const std::string type = control.at("controlType");
        if (type == "continuous") {
            EXPECT_EQ(parameter->getType(), typeid(float)) << id;
            EXPECT_LT(control.at("min"), control.at("max")) << id;
        } else if (type == "discrete") {
            EXPECT_EQ(parameter->getType(), typeid(int)) << id;
        } else if (type == "list") {
            EXPECT_EQ(parameter->getType(), typeid(std::string)) << id;
        } else {
            EXPECT_EQ(type, "listBool") << id;
            EXPECT_EQ(parameter->getType(), typeid(bool)) << id;
            EXPECT_EQ(control.at("listItems").size(), 2u) << id;
        }
    }
    EXPECT_EQ(d["ui"].value("hasBypass", false), [&] {
        const auto all = unit->getParameters();
        return std::any_of(all.begin(), all.end(), [](const auto& p) { return p.first == "bypass"; });
    }());
}

TEST_P(CatalogueContract, TheDefaultsOfTheDefinitionAreWhatAPresetStores) {
    const Json defaults = definition().at("defaultDspUnitParameters");
    const Json stored = Json::parse(archived());
    ASSERT_EQ(defaults.size(), stored.size());
    for (const auto& [name, value] : defaults.items()) {
        ASSERT_TRUE(stored.contains(name)) << name;
        EXPECT_EQ(value.is_number(), stored[name].is_number()) << name;
        EXPECT_EQ(value.is_boolean(), stored[name].is_boolean()) << name;
        EXPECT_EQ(value.is_string(), stored[name].is_string()) << name;
    }
}

TEST_P(CatalogueContract, AnArchiveComesBackAsItWas) {
    DspArchive defaults(definition().at("defaultDspUnitParameters").dump());
    unit->init(defaults);
    std::mt19937 random(1);
    shake(random, definition()["ui"]["uiParameters"]);
    const std::string first = archived();
    const auto other = catalogue().createDspUnit(GetParam(), kBlock, kRate);
    DspArchive stored(first);
    other->init(stored);
    DspArchive second("{}");
    other->getArchive(second);
    EXPECT_EQ(second.toString(), first);
}

TEST_P(CatalogueContract, SilenceInGivesSilenceOut) {
    DspArchive defaults(definition().at("defaultDspUnitParameters").dump());
    unit->init(defaults);
    // Long enough for every high-pass of the chain to have forgotten the start.
    for (int block = 0; block < 2 * 44100 / kBlock; ++block)
        run([] { return 0.0f; });
    EXPECT_LT(loudest(), 1e-5f);
}

TEST_P(CatalogueContract, NoiseWithJumpingParametersStaysFiniteAndBounded) {
    std::mt19937 random(7);
    const Json controls = definition()["ui"]["uiParameters"];
    std::uniform_real_distribution<float> noise(-1.0f, 1.0f);
    for (int block = 0; block < 2000; ++block) {
        if (block % 5 == 0) shake(random, controls);
        // Bursts far beyond full scale, then silence, then an ordinary level.
        const float level = block % 300 < 20 ? 20.0f : block % 300 < 40 ? 0.0f : 1.0f;
        run([&] { return level * noise(random); });
        const float most = loudest();
        ASSERT_TRUE(std::isfinite(most)) << "block " << block;
        ASSERT_LE(most, kLoudest) << "block " << block;
    }
}

TEST_P(CatalogueContract, ProcessNeitherAllocatesNorLocksNorLogs) {
    std::mt19937 random(11);
    const Json controls = definition()["ui"]["uiParameters"];
    std::uniform_real_distribution<float> noise(-1.0f, 1.0f);
    run([&] { return noise(random); });
    tvk::log::drainRealtimeRing();
    const RealtimeGuard guard;
    for (int block = 0; block < 300; ++block) {
        if (block % 10 == 0) shake(random, controls);
        run([&] { return noise(random); });
    }
    EXPECT_EQ(guard.violations(), RealtimeGuard::Violations{});
    EXPECT_EQ(tvk::log::drainRealtimeRing(), 0) << "lines were logged";
}

TEST_P(CatalogueContract, ParametersMayChangeWhileTheUnitRuns) {
    std::atomic<bool> running{true};
    std::atomic<bool> isFinite{true};
    std::thread audio([&] {
        while (running.load(std::memory_order_relaxed)) {
            run([] { return 0.25f; });
            if (!std::isfinite(loudest())) isFinite.store(false);
        }
    });
    std::mt19937 random(13);
    const Json controls = definition()["ui"]["uiParameters"];
    for (int i = 0; i < 200; ++i)
        shake(random, controls);
    running.store(false);
    audio.join();
    EXPECT_TRUE(isFinite);
}

TEST_P(CatalogueContract, EveryBlockLengthAndRateIsServed) {
    std::mt19937 random(17);
    std::uniform_real_distribution<float> noise(-1.0f, 1.0f);
    for (const float rate : {44100.0f, 48000.0f, 96000.0f}) {
        for (const int block : {1, 7, 32, 100}) {
            const auto other = catalogue().createDspUnit(GetParam(), block, rate);
            std::vector<float> input(static_cast<size_t>(block));
            for (int c = 0; c < other->getNumInputs(); ++c)
                other->connectInput(c, input.data(), c + 1);
            for (int n = 0; n < 4000; n += block) {
                for (float& sample : input)
                    sample = noise(random);
                other->process();
                for (int c = 0; c < other->getNumOutputs(); ++c)
                    for (int i = 0; i < block; ++i)
                        ASSERT_TRUE(std::fabs(other->getOutputAddr(c)[i]) <= kLoudest)
                            << "rate " << rate << ", block " << block << ", sample " << n + i;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EveryUnit, CatalogueContract, testing::ValuesIn(catalogue().getIds()),
                         [](const auto& instance) { return instance.param; });

}  // namespace
