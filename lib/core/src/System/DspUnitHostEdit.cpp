// Live edits of a host's graph.

#include <chrono>
#include <exception>
#include <stdexcept>

#include "core/System/DspArchive.h"
#include "core/System/DspUnitHost.h"
#include "utility/Clock.h"
#include "utility/Exception.h"
#include "utility/Log.h"

namespace {

constexpr char kCpuTag[] = "DspUnitHost-CPU";
// Covers the unit's mute ramp and a block.
constexpr std::chrono::milliseconds kMuteTime{5};

}  // namespace

void DspUnitHost::logCost(const char* what, const std::string& tarvekId) const {
    tvk::log::debug(kCpuTag, "%s %s, %3.1f%%, %3.1f%% left", what, tarvekId.c_str(),
                    static_cast<double>(utilization_.getCost(tarvekId)),
                    static_cast<double>(utilization_.getRemaining()));
}

void DspUnitHost::charge(const std::string& tarvekId) {
    if (!utilization_.tryAdd(tarvekId)) TVK_ERROR("over cpu budget");
    logCost("added", tarvekId);
}

IDspUnit* DspUnitHost::adoptNode(Node node, const std::string& wantedId) {
    const std::string id = makeUnique(wantedId);
    node->setNodeId(id);
    return nodes_.emplace(id, std::move(node)).first->second.get();
}

std::string DspUnitHost::addDspUnit(DspArchive& archive) {
    Node node = createNode(archive);
    if (!node) return {};
    const std::string wantedId = node->getTarvekId();
    charge(wantedId);
    IDspUnit* const unit = adoptNode(std::move(node), wantedId);
    runlist().append(unit);
    runlist().swap();
    return unit->getNodeId();
}

std::string DspUnitHost::insertDspUnit(const std::string& location, DspArchive& archive) {
    Node node = createNode(archive);
    if (!node) return {};
    const std::string wantedId = node->getTarvekId();
    return insertNode(location, std::move(node), wantedId);
}

std::string DspUnitHost::insertDspUnit(DspArchive& document) {
    std::string location;
    if (document.enterObject("location")) {
        document.get("nodeId", location);
        document.leaveObject();
    }
    Node node = createNode(document);
    if (!node) return {};
    const std::string wantedId = node->getNodeId();
    return insertNode(location, std::move(node), wantedId);
}

std::string DspUnitHost::insertNode(const std::string& location, Node node, const std::string& wantedId) {
    if (!hasNode(location)) {
        TVK_ERROR("nodeIdInsertLocation doesn't exist");
        return {};
    }
    charge(node->getTarvekId());
    IDspUnit* const inserted = adoptNode(std::move(node), wantedId);
    const std::string id = inserted->getNodeId();
    const std::vector<std::list<int>> oldConnections = getDspUnit(location)->getAllInputConnections();
    spliceInputs(location, id, inserted);
    runlist().insertBefore(inserted, getDspUnit(location));
    runlist().swap();
    moveOutputs(location, id, oldConnections);
    return id;
}

void DspUnitHost::spliceInputs(const std::string& location, const std::string& insertedId,
                               IDspUnit* inserted) {
    for (const AudioConnection& old : findConnections(getDspUnit(location)->getAllInputConnections()))
        if (old.outputIndex < inserted->getNumInputs())
            connect(old.inputNodeId, old.inputIndex, insertedId, old.outputIndex);
}

void DspUnitHost::moveOutputs(const std::string& location, const std::string& insertedId,
                              const std::vector<std::list<int>>& oldConnections) {
    for (const AudioConnection& old : findConnections(oldConnections)) {
        connect(insertedId, old.outputIndex, location, old.outputIndex);
        removeConnection(old.connectionId);
    }
}

void DspUnitHost::moveDspUnit(const std::string& nodeId, const std::string& location) {
    if (!hasNode(nodeId)) throw std::out_of_range("nodeIdToMove doesn't exist");
    if (!hasNode(location)) {
        TVK_ERROR("nodeIdInsertLocation doesn't exist");
        return;
    }
    if (isOwnId(nodeId)) {
        TVK_ERROR("%s is the host itself and can't be moved", nodeId.c_str());
        return;
    }
    if (location == nodeId) return;
    DspArchive archive;
    writeNode(archive, nodeId, *getDspUnit(nodeId));
    removeDspUnitAndBridge(nodeId);
    const std::string newId = insertDspUnit(location, archive);
    if (newId != nodeId) rename(newId, nodeId);
}

void DspUnitHost::dropUnit(const std::string& nodeId) {
    forgetOutputs(*getDspUnit(nodeId));
    runlist().remove(getDspUnit(nodeId));
    runlist().swap();
    nodes_.erase(nodeId);
}

void DspUnitHost::forgetOutputs(const IDspUnit& leaving) {
    for (auto& [id, node] : nodes_) {
        for (int channel = 0; channel < node->getNumInputs(); ++channel) {
            for (int output = 0; output < leaving.getNumOutputs(); ++output) {
                if (node->getInputAddr(channel) != leaving.getOutputAddr(output)) continue;
                // Connecting the others anew gives the channel the address of the last of them.
                const std::list<int> others = node->getInputConnections(channel);
                for (const int other : others)
                    node->disconnectInput(channel, other);
                for (const AudioConnection& other : findConnections({others}))
                    node->connectInput(channel,
                                       getDspUnit(other.inputNodeId)->getOutputAddr(other.inputIndex),
                                       other.connectionId);
            }
        }
    }
}

void DspUnitHost::removeDspUnit(const std::string& nodeId) {
    const IDspUnit* const unit = getDspUnit(nodeId);
    if (isOwnId(nodeId) || !unit) {
        TVK_ERROR("%s can't be removed", nodeId.c_str());
        return;
    }
    const std::string tarvekId = unit->getTarvekId();
    utilization_.remove(tarvekId);
    logCost("removed", tarvekId);
    disconnectInputs(nodeId);
    disconnectOutputs(nodeId);
    dropUnit(nodeId);
}

void DspUnitHost::removeDspUnitAndBridge(const std::string& nodeId) {
    const IDspUnit* const unit = getDspUnit(nodeId);
    if (!isOwnId(nodeId) && unit) {
        const auto incoming = findConnections(unit->getAllInputConnections());
        const auto outgoing = findConnections(unit->getAllOutputConnections());
        for (const AudioConnection& in : incoming)
            for (const AudioConnection& out : outgoing)
                if (in.outputIndex == out.inputIndex)
                    connect(in.inputNodeId, in.inputIndex, out.outputNodeId, out.outputIndex);
    }
    removeDspUnit(nodeId);
}

void DspUnitHost::muteBeforeReplacement(IDspUnit& unit, const std::string& nodeId) const {
    try {
        dynamic_cast<Parameter<bool>&>(*unit.getParameter("muteOutput")).set(true);
    } catch (const std::exception&) {
        TVK_WARN("Unsuccessfully tried to mute %s", nodeId.c_str());
    }
    tvk::Clock::current().sleepFor(kMuteTime);
}

std::string DspUnitHost::replaceDspUnit(const std::string& nodeId, DspArchive& archive) {
    IDspUnit* const old = getDspUnit(nodeId);
    if (isOwnId(nodeId) || !old) TVK_THROW("%s is an invalid replacement location.", nodeId.c_str());
    if (!isBuildable(archive)) return {};
    std::string newTarvekId;
    archive.get("TarvekId", newTarvekId);
    const std::string oldTarvekId = old->getTarvekId();
    muteBeforeReplacement(*old, nodeId);

    utilization_.remove(oldTarvekId);
    const bool isCharged = utilization_.tryAdd(newTarvekId);
    if (!isCharged) {
        utilization_.add(oldTarvekId);
        TVK_ERROR("over cpu budget");
    }
    const auto incoming = findConnections(old->getAllInputConnections());
    const auto outgoing = findConnections(old->getAllOutputConnections());
    disconnectInputs(nodeId);
    disconnectOutputs(nodeId);
    IDspUnit* const successor = runlist().getNext(old);
    dropUnit(nodeId);
    logCost("removed", oldTarvekId);

    // The old unit is gone before the new one is built: what both need only one can hold.
    IDspUnit* unit = nullptr;
    try {
        Node node = createNode(archive);
        const std::string wantedId = node->getTarvekId();
        unit = adoptNode(std::move(node), wantedId);
    } catch (...) {
        if (isCharged) utilization_.remove(newTarvekId);
        throw;
    }
    runlist().insertBefore(unit, successor);
    runlist().swap();
    logCost("added", unit->getTarvekId());
    remakeConnections(nodeId, *unit, incoming, outgoing);
    return unit->getNodeId();
}

void DspUnitHost::remakeConnections(const std::string& oldId, const IDspUnit& unit,
                                    const std::vector<AudioConnection>& incoming,
                                    const std::vector<AudioConnection>& outgoing) {
    const std::string newId = unit.getNodeId();
    for (const AudioConnection& in : incoming) {
        const bool isLoop = in.inputNodeId == oldId;
        if (in.outputIndex >= unit.getNumInputs()) continue;
        if (isLoop && in.inputIndex >= unit.getNumOutputs()) continue;
        connect(isLoop ? newId : in.inputNodeId, in.inputIndex, newId, in.outputIndex);
    }
    for (const AudioConnection& out : outgoing)
        if (out.outputNodeId != oldId && out.inputIndex < unit.getNumOutputs())
            connect(newId, out.inputIndex, out.outputNodeId, out.outputIndex);
}
