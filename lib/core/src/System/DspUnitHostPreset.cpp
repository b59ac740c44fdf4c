// A host from a preset and back.

#include <algorithm>

#include "core/System/DspArchive.h"
#include "core/System/DspUnitDatabase.h"
#include "core/System/DspUnitHost.h"
#include "utility/Exception.h"
#include "utility/Log.h"

namespace {

// More channels than any graph has; a preset that asks for more is damaged.
constexpr int kMostChannels = 64;

int readChannelCount(DspArchive& archive, const char* key) {
    int count = 0;
    archive.get(key, count);
    if (count < 0 || count > kMostChannels) {
        TVK_WARN("%s is %d, limited to 0 to %d", key, count, kMostChannels);
        count = std::clamp(count, 0, kMostChannels);
    }
    return count;
}

bool isObject(const DspArchive& archive) {
    return archive.toString().front() == '{';
}

bool enterParameters(DspArchive& archive) {
    return archive.enterObject("dspUnitParameters") || archive.enterObject("defaultDspUnitParameters") ||
           archive.enterObject("parameters");
}

}  // namespace

bool DspUnitHost::isBuildable(DspArchive& archive) const {
    std::string nodeType;
    archive.get("nodeType", nodeType);
    if (nodeType == "preset") return true;
    if (nodeType != "dspUnit") TVK_THROW("Node type \"%s\" is not supported", nodeType.c_str());
    if (enterParameters(archive)) {
        archive.leaveObject();
        return true;
    }
    std::string nodeId;
    archive.get("nodeId", nodeId);
    TVK_WARN("No \"parameters\" archive for the dspUnit node %s", nodeId.c_str());
    return false;
}

DspUnitHost::Node DspUnitHost::createNode(DspArchive& archive) const {
    if (!isBuildable(archive)) return nullptr;
    std::string nodeType;
    std::string nodeId;
    archive.get("nodeType", nodeType);
    archive.get("nodeId", nodeId);
    Node node = nodeType == "preset" ? createHost(archive, nodeId) : createUnit(archive, nodeId);
    node->setGlobalFxBypass(globalFxBypass_.load(std::memory_order_relaxed));
    return node;
}

DspUnitHost::Node DspUnitHost::createHost(DspArchive& archive, const std::string& nodeId) const {
    const int inputs = readChannelCount(archive, "numInputs");
    const int outputs = readChannelCount(archive, "numOutputs");
    Node host(new DspUnitHost(nodeId, getBlockLength(), inputs, outputs, database_, sampleRate_));
    host->init(archive);
    return host;
}

DspUnitHost::Node DspUnitHost::createUnit(DspArchive& archive, const std::string& nodeId) const {
    std::string tarvekId;
    archive.get("TarvekId", tarvekId);
    Node unit(database_->createDspUnit(tarvekId, getBlockLength(), sampleRate_).release());
    if (!unit) TVK_THROW("dspUnit==0");
    unit->setNodeId(nodeId);
    enterParameters(archive);
    unit->init(archive);
    archive.leaveObject();
    return unit;
}

void DspUnitHost::init(DspArchive& archive) {
    if (!utilization_.checkPreset(archive))
        TVK_WARN("preset cpu usage is over budget, %4.1f%%", static_cast<double>(utilization_.getBudget()));

    // The audio thread runs the old units until the swap, so they outlive it.
    const Nodes oldNodes = std::move(nodes_);
    nodes_.clear();
    connections_.clear();
    utilization_.clear();
    runlist().clear();
    try {
        readHeader(archive);
        enterTerminal();
        loadGraph(archive);
        runlist().swap();
    } catch (...) {
        emptyAfterFailure();
        throw;
    }
}

void DspUnitHost::emptyAfterFailure() {
    setMuteOutput(true);
    terminal_.disconnectAllInputs();
    terminal_.clearOutputConnections();
    runlist().clear();
    runlist().swap();
    nodes_.clear();
    connections_.clear();
    utilization_.clear();
    enterTerminal();
}

void DspUnitHost::readHeader(DspArchive& archive) {
    std::string nodeId = getNodeId();
    archive.get("nodeType", nodeType_);
    archive.get("nodeId", nodeId);
    archive.get("version", version_);
    archive.get("numInputs", presetInputs_);
    archive.get("numOutputs", presetOutputs_);
    DspUnit::setNodeId(nodeId);
    if (archive.enterObject("info")) {
        info_.init(archive);
        archive.leaveObject();
    } else {
        TVK_WARN("missing info array");
    }
    if (presetInputs_ != getNumInputs())
        TVK_WARN("preset specifies different number of inputs than host node");
    if (presetOutputs_ != getNumOutputs())
        TVK_WARN("preset specifies different number of outputs than host node");
}

void DspUnitHost::loadGraph(DspArchive& archive) {
    const bool hasGraph = archive.enterObject("audioGraph");
    if (hasGraph) readNodes(archive);
    terminal_.disconnectAllInputs();
    terminal_.clearOutputConnections();
    if (!hasGraph) return;
    readConnections(archive);
    archive.leaveObject();
}

void DspUnitHost::readNodes(DspArchive& archive) {
    if (!archive.enterObject("nodes")) return;
    const int count = archive.getArraySize();
    for (int i = 0; i < count; ++i) {
        if (!archive.enterArrayItem(i)) continue;
        if (isObject(archive)) {
            if (Node node = createNode(archive)) {
                const std::string wantedId = node->getNodeId();
                charge(node->getTarvekId());
                runlist().append(adoptNode(std::move(node), wantedId));
            }
        }
        archive.leaveObject();
    }
    archive.leaveObject();
}

void DspUnitHost::readConnections(DspArchive& archive) {
    if (!archive.enterObject("connections")) return;
    const int count = archive.getArraySize();
    for (int i = 0; i < count; ++i) {
        if (!archive.enterArrayItem(i)) continue;
        const AudioConnection connection(archive);
        if (isValid(connection)) wire(connection);
        archive.leaveObject();
    }
    archive.leaveObject();
}

void DspUnitHost::getArchive(DspArchive& archive) {
    archive.set("nodeType", nodeType_);
    archive.set("nodeId", getNodeId());
    archive.set("version", version_);
    archive.set("numInputs", presetInputs_);
    archive.set("numOutputs", presetOutputs_);
    archive.beginObject("info");
    info_.getArchive(archive);
    archive.endObject();
    archive.beginObject("audioGraph");
    archive.beginArray("nodes");
    for (IDspUnit* unit : runlist().pending()) {
        const std::string id = unit->getNodeId();
        if (!hasNode(id)) {
            TVK_ERROR("id not found in nodeList");
            continue;
        }
        archive.beginObject("");
        writeNode(archive, id, *unit);
        archive.endObject();
    }
    archive.endArray();
    archive.beginArray("connections");
    for (const auto& [id, connection] : connections_) {
        archive.beginObject("");
        connection.getArchive(archive);
        archive.endObject();
    }
    archive.endArray();
    archive.endObject();
}

void DspUnitHost::writeNode(DspArchive& archive, const std::string& nodeId, IDspUnit& unit) const {
    const std::string nodeType = unit.getNodeType();
    archive.set("nodeId", nodeId);
    archive.set("nodeType", nodeType);
    if (nodeType == "preset") {
        unit.getArchive(archive);
    } else if (nodeType == "dspUnit") {
        archive.set("TarvekId", unit.getTarvekId());
        archive.beginObject("dspUnitParameters");
        unit.getArchive(archive);
        archive.endObject();
    } else {
        TVK_THROW("getArchive doesn't support nodeType %s", nodeType.c_str());
    }
}
