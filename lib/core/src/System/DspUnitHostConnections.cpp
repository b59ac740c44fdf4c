// The edges of a host's graph.

#include <algorithm>

#include "core/System/DspUnitHost.h"
#include "utility/Exception.h"
#include "utility/Log.h"

bool DspUnitHost::isValid(const AudioConnection& connection) const {
    const IDspUnit* const source = getDspUnit(connection.inputNodeId);
    const IDspUnit* const destination = getDspUnit(connection.outputNodeId);
    if (!source) {
        TVK_ERROR("invalid input node in audio connection");
    } else if (!destination) {
        TVK_ERROR("invalid output node in audio connection");
    } else if (connection.inputIndex < 0 || connection.inputIndex >= source->getNumOutputs()) {
        TVK_ERROR("invalid input index in audio connection");
    } else if (connection.outputIndex < 0 || connection.outputIndex >= destination->getNumInputs()) {
        TVK_ERROR("invalid output index in audio connection");
    } else {
        return true;
    }
    return false;
}

void DspUnitHost::wire(const AudioConnection& connection) {
    IDspUnit* const source = getDspUnit(connection.inputNodeId);
    IDspUnit* const destination = getDspUnit(connection.outputNodeId);
    destination->connectInput(connection.outputIndex, source->getOutputAddr(connection.inputIndex),
                              connection.connectionId);
    source->addOutputConnection(connection.inputIndex, connection.connectionId);
    connections_.emplace(connection.connectionId, connection);
}

void DspUnitHost::connect(const std::string& inputNodeId, int inputIndex, const std::string& outputNodeId,
                          int outputIndex) {
    if (!hasNode(inputNodeId)) TVK_THROW("inputNodeId is not in nodeList: %s", inputNodeId.c_str());
    if (!hasNode(outputNodeId)) TVK_THROW("outputNodeId is not in nodeList: %s", outputNodeId.c_str());
    const AudioConnection connection(inputNodeId, inputIndex, outputNodeId, outputIndex);
    if (isValid(connection)) wire(connection);
}

void DspUnitHost::connectAll(const std::string& inputNodeId, const std::string& outputNodeId) {
    const IDspUnit* const source = getDspUnit(inputNodeId);
    const IDspUnit* const destination = getDspUnit(outputNodeId);
    if (!source || !destination) {
        TVK_ERROR("invalid arguments");
        return;
    }
    const int channels = std::min(source->getNumOutputs(), destination->getNumInputs());
    for (int c = 0; c < channels; ++c) {
        const AudioConnection connection(inputNodeId, c, outputNodeId, c);
        if (isValid(connection)) wire(connection);
    }
}

const AudioConnection* DspUnitHost::findConnection(int connectionId) const {
    const auto found = connections_.find(connectionId);
    return found == connections_.end() ? nullptr : &found->second;
}

std::vector<AudioConnection> DspUnitHost::findConnections(const std::vector<std::list<int>>& ids) const {
    std::vector<AudioConnection> found;
    for (const auto& channel : ids) {
        for (const int id : channel) {
            if (const AudioConnection* connection = findConnection(id))
                found.push_back(*connection);
            else
                TVK_ERROR("connectionId %d doesn't exist", id);
        }
    }
    return found;
}

std::vector<AudioConnection> DspUnitHost::getConnections() const {
    std::vector<AudioConnection> all;
    for (const auto& [id, connection] : connections_)
        all.push_back(connection);
    return all;
}

bool DspUnitHost::removeConnection(int connectionId) {
    const AudioConnection* const connection = findConnection(connectionId);
    if (!connection) {
        TVK_ERROR("invalid arguments");
        return false;
    }
    getDspUnit(connection->outputNodeId)->disconnectInput(connection->outputIndex, connectionId);
    getDspUnit(connection->inputNodeId)->removeOutputConnection(connection->inputIndex, connectionId);
    connections_.erase(connectionId);
    return true;
}

void DspUnitHost::disconnect(const std::string& inputNodeId, int inputIndex, const std::string& outputNodeId,
                             int outputIndex) {
    const IDspUnit* const destination = getDspUnit(outputNodeId);
    if (!destination || outputIndex < 0 || outputIndex >= destination->getNumInputs()) {
        TVK_ERROR("invalid arguments");
        return;
    }
    for (const int id : destination->getInputConnections(outputIndex)) {
        const AudioConnection* const connection = findConnection(id);
        if (connection && (connection->inputNodeId != inputNodeId || connection->inputIndex != inputIndex))
            continue;
        if (!removeConnection(id)) return;
    }
}

void DspUnitHost::disconnectInputs(const std::string& id) {
    const IDspUnit* const unit = getDspUnit(id);
    if (!unit) {
        TVK_ERROR("invalid arguments");
        return;
    }
    for (const auto& channel : unit->getAllInputConnections())
        for (const int connectionId : channel)
            if (!removeConnection(connectionId)) return;
}

void DspUnitHost::disconnectOutputs(const std::string& id) {
    const IDspUnit* const unit = getDspUnit(id);
    if (!unit) {
        TVK_ERROR("invalid arguments");
        return;
    }
    for (const auto& channel : unit->getAllOutputConnections())
        for (const int connectionId : channel)
            if (!removeConnection(connectionId)) return;
}
