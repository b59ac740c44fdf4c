#include "render/PresetText.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>

#include "Quiet.h"
#include "core/Parameter/IParameter.h"
#include "core/System/DspArchive.h"
#include "shared/Presets/BuiltInPresets.h"
#include "utility/Exception.h"

namespace tvk::render {

namespace {

using Json = nlohmann::ordered_json;

// A unit that only answers what it has and makes no sound; what its constructor warns of, the load will say.
std::unique_ptr<IDspUnit> createProbe(const DspUnitDatabase& database, const std::string& tarvekId) {
    constexpr int kBlock = 32;
    constexpr float kRateHz = 44100.0f;
    const Quiet quiet;
    return database.createDspUnit(tarvekId, kBlock, kRateHz);
}

Json edge(const std::string& source, int sourceIndex, const std::string& destination, int destinationIndex) {
    return {{"input", {{"nodeId", source}, {"index", sourceIndex}}},
            {"output", {{"nodeId", destination}, {"index", destinationIndex}}}};
}

Json& findNode(Json& preset, const std::string& id) {
    Json* const nodes = preset.contains("audioGraph") && preset["audioGraph"].contains("nodes")
                            ? &preset["audioGraph"]["nodes"]
                            : nullptr;
    if (nodes && nodes->is_array()) {
        for (Json& node : *nodes)
            if (node.is_object() && (id.empty() || node.value("nodeId", "") == id)) return node;
    }
    if (id.empty()) TVK_THROW("the preset has no node");
    TVK_THROW("the preset has no node '%s'", id.c_str());
}

Json& findParameters(Json& node) {
    for (const char* key : {"dspUnitParameters", "defaultDspUnitParameters", "parameters"})
        if (node.contains(key) && node[key].is_object()) return node[key];
    return node["dspUnitParameters"] = Json::object();
}

bool isStored(IDspUnit& unit, const std::string& parameter) {
    DspArchive archive;
    unit.getArchive(archive);
    return Json::parse(archive.toString()).contains(parameter);
}

// One for each type: an amp is dear to build.
using Probes = std::map<std::string, std::unique_ptr<IDspUnit>>;

void apply(Json& preset, const ParameterSetting& setting, const DspUnitDatabase& database, Probes& probes) {
    Json& node = findNode(preset, setting.node);
    const std::string tarvekId = node.value("TarvekId", "");
    std::unique_ptr<IDspUnit>& probe = probes[tarvekId];
    if (!probe) probe = createProbe(database, tarvekId);
    const auto parameters = probe->getParameters();
    const auto found = std::find_if(parameters.begin(), parameters.end(),
                                    [&](const auto& entry) { return entry.first == setting.parameter; });
    if (found == parameters.end())
        TVK_THROW("unit '%s' has no parameter '%s'", tarvekId.c_str(), setting.parameter.c_str());
    if (!isStored(*probe, setting.parameter))
        TVK_THROW("parameter '%s' is not part of a preset; set it with --at 0", setting.parameter.c_str());
    checkValue(setting, *found->second);

    Json& value = findParameters(node)[setting.parameter];
    const std::type_info& type = found->second->getType();
    if (type == typeid(float))
        value = floatValue(setting);
    else if (type == typeid(int))
        value = intValue(setting);
    else if (type == typeid(bool))
        value = boolValue(setting);
    else
        value = setting.value;
}

}  // namespace

std::string presetOfSlot(int slot) {
    const char* const text = builtInPreset(slot);
    if (!text) TVK_THROW("there is no slot %d; slots are 0 to %d", slot, kBuiltInPresets - 1);
    return text;
}

std::string presetOfFile(const std::string& path) {
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    if (!file) TVK_THROW("cannot read preset file '%s'", path.c_str());
    const Json preset = Json::parse(text.str(), nullptr, false);
    if (!preset.is_object()) TVK_THROW("preset file '%s' holds no JSON object", path.c_str());
    return text.str();
}

std::string presetOfUnit(const DspUnitDatabase& database, const std::string& tarvekId) {
    if (!database.contains(tarvekId)) TVK_THROW("unknown unit '%s'; --list shows all", tarvekId.c_str());
    const std::unique_ptr<IDspUnit> probe = createProbe(database, tarvekId);
    const Json definition = Json::parse(database.getDefinition(tarvekId));

    Json node{{"nodeId", tarvekId}, {"nodeType", "dspUnit"}, {"TarvekId", tarvekId}};
    node["defaultDspUnitParameters"] = definition.at("defaultDspUnitParameters");
    Json edges = Json::array();
    for (int i = 0; i < probe->getNumInputs(); ++i)
        edges.push_back(edge("preset", i % 2, tarvekId, i));
    for (int i = 0; i < 2; ++i)
        edges.push_back(edge(tarvekId, std::min(i, probe->getNumOutputs() - 1), "preset", i));

    Json info{{"displayName", definition.at("info").at("displayName")}};
    for (const char* key : {"preset_id", "author", "source_id"})
        info[key] = "";
    info["timestamp"] = 0;
    info["created_at"] = 0;
    info["product_id"] = "norvane";
    info["is_factory_default"] = false;
    info["bpm"] = 0;
    const Json preset{{"nodeType", "preset"},
                      {"nodeId", "preset"},
                      {"version", "1.1"},
                      {"numInputs", 2},
                      {"numOutputs", 2},
                      {"info", info},
                      {"audioGraph", {{"nodes", Json::array({node})}, {"connections", edges}}}};
    return preset.dump();
}

std::string withSettings(const std::string& presetText, const std::vector<ParameterSetting>& settings,
                         const DspUnitDatabase& database) {
    if (settings.empty()) return presetText;
    Json preset = Json::parse(presetText);
    Probes probes;
    for (const ParameterSetting& setting : settings)
        apply(preset, setting, database, probes);
    return preset.dump();
}

}  // namespace tvk::render
