// Loads bytes as a preset into the system device and runs what came of it.
//
// Laws: a text that does not parse throws and leaves the graph as it was; a load that throws leaves an empty
// graph; a graph that was loaded is written to a preset that loads to the same preset; whatever the bytes,
// the device can run, be edited and take the next preset.
#include <cstdint>
#include <exception>
#include <string>
#include <vector>

#include "Require.h"
#include "core/DspUnitSystem/SFAD_LoadPreset.h"
#include "core/System/DspUnitInputVoltageMappingConfig.h"
#include "shared/DspUnitInfo/DefaultDspUnitDatabase.h"
#include "utility/Clock.h"

namespace {

constexpr int kBlock = 16;
constexpr float kRate = 44100.0f;
constexpr int kBlocks = 3;

// Waits take no time: no audio thread is waited for.
class NoWait : public tvk::Clock {
public:
    NoWait() { tvk::Clock::install(this); }
    std::chrono::nanoseconds now() override { return {}; }
    void sleepFor(std::chrono::nanoseconds) override {}
    int poll(pollfd*, nfds_t, std::chrono::milliseconds) override { return 0; }
};

struct Engine {
    Engine() {
        DspUnitInputVoltageMappingConfig::set(1.0f);
        device.connectInput(0, input.data(), 0);
        device.connectInput(1, input.data(), 0);
    }
    void run() {
        for (int i = 0; i < kBlocks; ++i)
            device.process();
    }
    std::string archived() {
        DspArchive archive("{}");
        device.getArchive(archive);
        return archive.toString();
    }

    QuietLog quiet;
    NoWait clock;
    DefaultDspUnitDatabase database;
    std::vector<float> input = std::vector<float>(kBlock, 0.25f);
    SFAD_LoadPreset device{2, 2, &database, kBlock, kRate};
};

bool load(Engine& engine, const std::string& json) {
    const std::string before = engine.archived();
    try {
        engine.device.loadPreset(json);
        return true;
    } catch (const std::exception& error) {
        const bool isParseError = std::string(error.what()).rfind("[json.exception.parse_error", 0) == 0;
        if (isParseError)
            REQUIRE(engine.archived() == before);
        else
            REQUIRE(engine.device.getNodeIds().empty());
        return false;
    }
}

void edit(Engine& engine) {
    DspArchive node(engine.database.getDefinition("DUBS_Passthru"));
    const std::vector<std::string> ids = engine.device.getNodeIds();
    const std::string added = engine.device.addDspUnit(node);
    engine.device.connectAll(added, "preset");
    if (ids.empty()) return;
    engine.device.insertDspUnit(ids.front(), node);
    engine.device.moveDspUnit(added, ids.front());
    engine.run();
    engine.device.replaceDspUnit(ids.back(), node);
    engine.device.removeDspUnitAndBridge(added);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Engine engine;
    const std::string json(reinterpret_cast<const char*>(data), size);
    if (!load(engine, json)) {
        engine.run();
        return 0;
    }
    engine.run();
    const std::string text = engine.archived();
    REQUIRE(load(engine, text));
    REQUIRE(engine.archived() == text);
    edit(engine);
    engine.run();
    return 0;
}
