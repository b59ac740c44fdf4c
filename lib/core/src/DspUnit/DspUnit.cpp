#include "core/DspUnit/DspUnit.h"

#include <cstdint>
#include <stdexcept>
#include <utility>

#include "DspUnit/ReservedParameters.h"
#include "core/Parameter/IParameter.h"
#include "utility/Log.h"

DspUnit::DspUnit(std::string tarvekId, int numInputs, int numOutputs, int blockLength)
    : tarvekId_(std::move(tarvekId)),
      inputs_(static_cast<std::size_t>(numInputs)),
      outputs_(static_cast<std::size_t>(numOutputs)),
      inputConnections_(static_cast<std::size_t>(numInputs)),
      outputConnections_(static_cast<std::size_t>(numOutputs)),
      silence_(static_cast<std::size_t>(blockLength), 0.0f) {
    for (auto& output : outputs_)
        output = std::make_unique<float[]>(silence_.size());
    for (auto& input : inputs_)
        input.store(silence_.data(), std::memory_order_relaxed);
}

DspUnit::~DspUnit() = default;

IParameter* DspUnit::getParameter(const std::string& name) {
    const auto found = parameters_.find(name);
    if (found == parameters_.end()) throw std::runtime_error("Unknown parameter " + name + ".");
    return found->second;
}

std::vector<std::pair<std::string, IParameter*>> DspUnit::getParameters() {
    return {parameters_.begin(), parameters_.end()};
}

void DspUnit::setGlobalFxBypass(bool) {}

void DspUnit::connectInput(int channel, float* address, int connectionId) {
    tvk::log::debug("connectInput", "%s, %d, 0x%x, %d", nodeId_.c_str(), channel,
                    static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(address)), connectionId);
    if (channel < 0 || channel >= getNumInputs()) {
        TVK_ERROR("bad channelIndex");
        return;
    }
    const auto index = static_cast<std::size_t>(channel);
    inputs_[index].store(address, std::memory_order_release);
    inputConnections_[index].push_back(connectionId);
}

void DspUnit::disconnectInput(int channel, int connectionId) {
    if (channel < 0 || channel >= getNumInputs()) {
        TVK_ERROR("bad channelIndex");
        return;
    }
    const auto index = static_cast<std::size_t>(channel);
    inputConnections_[index].remove(connectionId);
    if (inputConnections_[index].empty()) inputs_[index].store(silence_.data(), std::memory_order_release);
}

void DspUnit::disconnectAllInputs() {
    for (auto& input : inputs_)
        input.store(silence_.data(), std::memory_order_release);
    for (auto& ids : inputConnections_)
        ids.clear();
}

std::list<int> DspUnit::getInputConnections(int channel) const {
    return inputConnections_.at(static_cast<std::size_t>(channel));
}

void DspUnit::addOutputConnection(int channel, int connectionId) {
    outputConnections_.at(static_cast<std::size_t>(channel)).push_back(connectionId);
}

void DspUnit::removeOutputConnection(int channel, int connectionId) {
    outputConnections_.at(static_cast<std::size_t>(channel)).remove(connectionId);
}

void DspUnit::clearOutputConnections() {
    for (auto& ids : outputConnections_)
        ids.clear();
}

std::list<int> DspUnit::getOutputConnections(int channel) const {
    return outputConnections_.at(static_cast<std::size_t>(channel));
}

void DspUnit::addParameter(IParameter* parameter) {
    const std::string& name = parameter->getName();
    if (reservedParameterType(name)) {
        TVK_ERROR("cannot add parameter \"%s\", parameter is reserved", name.c_str());
        return;
    }
    parameters_[name] = parameter;
}

void DspUnit::addReservedParameter(IParameter* parameter) {
    const std::string& name = parameter->getName();
    const std::type_info* type = reservedParameterType(name);
    if (!type) {
        TVK_ERROR("cannot add parameter \"%s\" as reserved", name.c_str());
    } else if (*type != parameter->getType() && name == "bypass") {
        TVK_ERROR("parameter has wrong type");
    } else if (*type != parameter->getType()) {
        TVK_ERROR("parameter \"%s\" has wrong type", name.c_str());
    } else {
        parameters_[name] = parameter;
    }
}
