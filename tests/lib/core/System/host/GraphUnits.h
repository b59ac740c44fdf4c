// Small units and a catalogue of them, for tests of the graph.
#pragma once

#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>

#include "core/DspUnit/DspUnit.h"
#include "core/DspUnitBypassStereo/DspUnitBypassStereo.h"
#include "core/Parameter/Parameter.h"
#include "core/System/DspArchive.h"
#include "core/System/DspUnitDatabase.h"

// out = in + value on two channels. Knows how many of its kind live, and whether one was freed while it ran.
class OffsetUnit : public DspUnit {
public:
    OffsetUnit(const std::string& id, int blockLength, float, int channels = 2)
        : DspUnit(id, channels, channels, blockLength),
          value_("value", PropertySlot(this, &OffsetUnit::get, &OffsetUnit::set, &OffsetUnit::set)) {
        addParameter(&value_);
        ++living;
    }
    ~OffsetUnit() override {
        if (isRunning_.load()) freedWhileRunning.store(true);
        --living;
    }

    void reset() override {}
    void process() override {
        isRunning_.store(true);
        const float value = stored_.load(std::memory_order_relaxed);
        for (int c = 0; c < getNumOutputs(); ++c)
            for (int n = 0; n < getBlockLength(); ++n)
                getOutputAddr(c)[n] = getInputAddr(c)[n] + value;
        isRunning_.store(false);
    }
    void init(DspArchive& archive) override {
        float value = get();
        archive.get("value", value);
        value_.init(value);
    }
    void getArchive(DspArchive& archive) override { archive.set("value", get()); }

    static inline std::atomic<int> living{0};
    static inline std::atomic<bool> freedWhileRunning{false};

private:
    float get() const { return stored_.load(std::memory_order_relaxed); }
    void set(float value) { stored_.store(value, std::memory_order_relaxed); }

    std::atomic<float> stored_{0.0f};
    std::atomic<bool> isRunning_{false};
    Parameter<float> value_;
};

// A stereo effect without an effect, with all that surrounds one.
class PlainEffect : public DspUnitBypassStereo {
public:
    using DspUnitBypassStereo::DspUnitBypassStereo;
    using DspUnitBypassStereo::process;
    void process(float*, float*, float*, float*) override {}
    void initDerived(DspArchive&) override {}
    void getArchiveDerived(DspArchive&) override {}
    float getDspUnitImpedance(int) const override { return 8.0f; }
    float getDspUnitCapacitance() const override { return 0.5f; }
};

inline std::unique_ptr<IDspUnit> createMonoOffset(const std::string& id, int blockLength, float sampleRate) {
    return std::make_unique<OffsetUnit>(id, blockLength, sampleRate, 1);
}
inline std::unique_ptr<IDspUnit> createFailing(const std::string&, int, float) {
    throw std::runtime_error("dryGuitar not initialized");
}
inline std::unique_ptr<IDspUnit> createNull(const std::string&, int, float) {
    return nullptr;
}

// Default, Offset, MonoOffset, Effect; Failing throws, Null gives none.
class GraphDatabase : public DspUnitDatabase {
public:
    GraphDatabase() : DspUnitDatabase(defaultEntry()) {
        static const DspUnitDatabaseEntry entries[] = {
            {"Offset", createUnit<OffsetUnit>, "{}"},
            {"MonoOffset", createMonoOffset, "{}"},
            {"Effect", createUnit<PlainEffect>, "{}"},
            {"Failing", createFailing, "{}"},
            {"Null", createNull, "{}"},
        };
        for (const auto& entry : entries)
            add(entry);
    }

private:
    static const DspUnitDatabaseEntry& defaultEntry() {
        static const DspUnitDatabaseEntry entry{"Default", createUnit<OffsetUnit>, "{}"};
        return entry;
    }
};
