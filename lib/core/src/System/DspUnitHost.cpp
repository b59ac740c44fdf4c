#include "core/System/DspUnitHost.h"

#include <stdexcept>

#include "core/DspUnitBypassStereo/DspUnitBypassStereo.h"
#include "utility/Exception.h"
#include "utility/Log.h"

namespace {

constexpr char kTag[] = "DspUnitHost";
constexpr float kMuteSeconds = 0.001f;
constexpr int kLargestSuffix = 999;

const DspUnitBypassStereo* findActive(const Runlist::Units& units) {
    for (IDspUnit* unit : units) {
        const auto* stereo = dynamic_cast<DspUnitBypassStereo*>(unit);
        if (!stereo) continue;
        auto* bypass = dynamic_cast<Parameter<bool>*>(unit->getParameter("bypass"));
        if (bypass && !bypass->get()) return stereo;
    }
    return nullptr;
}

}  // namespace

DspUnitHost::DspUnitHost(const std::string& nodeId, int blockLength, int numInputs, int numOutputs,
                         const DspUnitDatabase* database, float sampleRate)
    : DspUnitHost(nodeId, blockLength, numInputs, numOutputs, database, sampleRate,
                  ProcessorUtilizationManager()) {}

DspUnitHost::DspUnitHost(const std::string& nodeId, int blockLength, int numInputs, int numOutputs,
                         const DspUnitDatabase* database, float sampleRate,
                         const std::string& utilizationFilename)
    : DspUnitHost(nodeId, blockLength, numInputs, numOutputs, database, sampleRate,
                  ProcessorUtilizationManager(utilizationFilename)) {}

DspUnitHost::DspUnitHost(const std::string& nodeId, int blockLength, int numInputs, int numOutputs,
                         const DspUnitDatabase* database, float sampleRate,
                         const ProcessorUtilizationManager& utilization)
    : DspUnit(nodeId, numInputs, numOutputs, blockLength),
      sampleRate_(sampleRate),
      database_(database),
      terminal_(nodeId, numInputs, numOutputs, blockLength),
      muteInputRamp_(kMuteSeconds, sampleRate),
      muteOutputRamp_(kMuteSeconds, sampleRate),
      presetInputs_(numInputs),
      presetOutputs_(numOutputs),
      muteInput_("muteInput", PropertySlot(this, &DspUnitHost::getMuteInput, &DspUnitHost::setMuteInput,
                                           &DspUnitHost::initMuteInput)),
      muteOutput_("muteOutput", PropertySlot(this, &DspUnitHost::getMuteOutput, &DspUnitHost::setMuteOutput,
                                             &DspUnitHost::initMuteOutput)),
      utilization_(utilization),
      muteInputGain_(static_cast<std::size_t>(blockLength)),
      muteOutputGain_(static_cast<std::size_t>(blockLength)) {
    muteInputRamp_.setTarget(1.0f);
    muteOutputRamp_.setTarget(1.0f);
    addReservedParameter(&muteInput_);
    addReservedParameter(&muteOutput_);
    DspUnit::setNodeId(nodeId);
    enterTerminal();
}

DspUnitHost::~DspUnitHost() = default;

void DspUnitHost::process() {
    const BlockEpoch::Block block(runlist().epoch());
    const std::size_t length = muteInputGain_.size();
    for (std::size_t n = 0; n < length; ++n) {
        muteInputGain_[n] = muteInputRamp_.tick();
        muteOutputGain_[n] = muteOutputRamp_.tick();
    }
    for (int c = 0; c < getNumInputs(); ++c) {
        const float* const in = getInputAddr(c);
        float* const out = terminal_.getOutputAddr(c);
        for (std::size_t n = 0; n < length; ++n)
            out[n] = in[n] * muteInputGain_[n];
    }
    terminal_.process();
    for (int c = 0; c < getNumOutputs(); ++c) {
        const float* const in = terminal_.getInputAddr(c);
        float* const out = getOutputAddr(c);
        for (std::size_t n = 0; n < length; ++n)
            out[n] = in[n] * muteOutputGain_[n];
    }
}

void DspUnitHost::setMuteInput(bool muted) {
    tvk::log::debug(kTag, "MuteInput set, %d", muted);
    muteInputState_.store(muted, std::memory_order_relaxed);
    muteInputRamp_.setTarget(muted ? 0.0f : 1.0f);
}

void DspUnitHost::setMuteOutput(bool muted) {
    tvk::log::debug(kTag, "MuteOutput set, %d", muted);
    muteOutputState_.store(muted, std::memory_order_relaxed);
    muteOutputRamp_.setTarget(muted ? 0.0f : 1.0f);
}

void DspUnitHost::initMuteInput(bool muted) {
    setMuteInput(muted);
    muteInputRamp_.snap(muteInputRamp_.target());
}

void DspUnitHost::initMuteOutput(bool muted) {
    setMuteOutput(muted);
    muteOutputRamp_.snap(muteOutputRamp_.target());
}

bool DspUnitHost::getMuteInput() const {
    return muteInputState_.load(std::memory_order_relaxed);
}

bool DspUnitHost::getMuteOutput() const {
    return muteOutputState_.load(std::memory_order_relaxed);
}

void DspUnitHost::setGlobalFxBypass(bool bypassed) {
    tvk::log::debug(kTag, "setGlobalFxBypass(%d)", bypassed);
    globalFxBypass_.store(bypassed, std::memory_order_relaxed);
    for (auto& [id, node] : nodes_)
        node->setGlobalFxBypass(bypassed);
}

void DspUnitHost::setNodeId(const std::string& id) {
    const std::string before = getNodeId();
    if (id == before) return;
    // Only a node inside the graph can have the name already; the host's name comes from outside and stands.
    if (hasNode(id)) rename(id, makeUnique(id));
    rename(before, id);
}

void DspUnitHost::enterTerminal() {
    terminal_.setNodeId(getNodeId());
    nodes_.emplace(getNodeId(), Node(&terminal_, NodeDeleter{false}));
}

std::string DspUnitHost::makeUnique(const std::string& wantedId) const {
    if (!hasNode(wantedId)) return wantedId;
    for (int k = 1; k <= kLargestSuffix; ++k) {
        std::string id = wantedId + "_" + std::to_string(k);
        if (!hasNode(id)) return id;
    }
    TVK_THROW("no free node id for %s", wantedId.c_str());
}

void DspUnitHost::rename(const std::string& oldId, const std::string& newId) {
    if (hasNode(newId)) throw std::out_of_range("newId is not unique");
    auto entry = nodes_.extract(oldId);
    if (entry.empty()) throw std::out_of_range("oldId doesn't exist");
    if (isOwnId(oldId)) DspUnit::setNodeId(newId);
    entry.key() = newId;
    entry.mapped()->setNodeId(newId);
    nodes_.insert(std::move(entry));
    for (auto& [id, connection] : connections_) {
        if (connection.inputNodeId == oldId) connection.inputNodeId = newId;
        if (connection.outputNodeId == oldId) connection.outputNodeId = newId;
    }
}

std::vector<std::string> DspUnitHost::getNodeIds() const {
    std::vector<std::string> ids;
    for (const IDspUnit* unit : terminal_.runlist().pending())
        ids.push_back(unit->getNodeId());
    return ids;
}

IDspUnit* DspUnitHost::getDspUnit(const std::string& id) const {
    const auto found = nodes_.find(id);
    return found == nodes_.end() ? nullptr : found->second.get();
}

bool DspUnitHost::isAnyUnitActive() const {
    return findActive(terminal_.runlist().pending()) != nullptr;
}

std::pair<float, float> DspUnitHost::getFirstActiveImpedance() const {
    const DspUnitBypassStereo* const unit = findActive(terminal_.runlist().pending());
    if (!unit) return {1000000.0f, 0.01f};
    return {unit->getDspUnitImpedance(0), unit->getDspUnitCapacitance()};
}

void DspUnitHost::printGraph() const {
    for (const IDspUnit* unit : terminal_.runlist().pending()) {
        const std::string id = unit->getNodeId();
        if (getDspUnit(id) == unit)
            tvk::log::debug(kTag, "%s (%s)", id.c_str(), unit->getTarvekId().c_str());
        else
            TVK_WARN("Problem with printing node \"%s\".", id.c_str());
    }
    for (const auto& [id, edge] : connections_)
        tvk::log::debug(kTag, "%s %d -> %s %d", edge.inputNodeId.c_str(), edge.inputIndex,
                        edge.outputNodeId.c_str(), edge.outputIndex);
}
