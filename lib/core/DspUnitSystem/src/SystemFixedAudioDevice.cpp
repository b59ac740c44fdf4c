#include "core/DspUnitSystem/SystemFixedAudioDevice.h"

#include "utility/Exception.h"
#include "utility/Log.h"

namespace {

std::unique_ptr<DspUnitHost> makeHost(const char* nodeId, int numInputs, int numOutputs,
                                      const DspUnitDatabase* database, int blockLength, float sampleRate) {
    return std::make_unique<DspUnitHost>(nodeId, blockLength, numInputs, numOutputs, database, sampleRate);
}

std::string noFilename() {
    tvk::log::debug("SystemFixedAudioDevice", "running without processorUtilizationFilename");
    return {};
}

}  // namespace

SystemFixedAudioDevice::SystemFixedAudioDevice(int numInputs, int numOutputs, const DspUnitDatabase* database,
                                               int blockLength,
                                               const std::string& processorUtilizationFilename,
                                               float sampleRate)
    : SystemFixedAudioDevice(
          numInputs, numOutputs, blockLength, processorUtilizationFilename, sampleRate,
          makeHost("audioSystemNodeA", numInputs, numOutputs, database, blockLength, sampleRate),
          makeHost("audioSystemNodeB", numInputs, numOutputs, database, blockLength, sampleRate)) {}

SystemFixedAudioDevice::SystemFixedAudioDevice(int numInputs, int numOutputs, const DspUnitDatabase* database,
                                               int blockLength, float sampleRate)
    : SystemFixedAudioDevice(numInputs, numOutputs, database, blockLength, noFilename(), sampleRate) {}

SystemFixedAudioDevice::SystemFixedAudioDevice(int numInputs, int numOutputs, int blockLength,
                                               const std::string& processorUtilizationFilename,
                                               float sampleRate, std::unique_ptr<DspUnitHost> nodeA,
                                               std::unique_ptr<DspUnitHost> nodeB)
    : numInputs_(numInputs),
      numOutputs_(numOutputs),
      blockLength_(blockLength),
      sampleRate_(sampleRate),
      audioSystemNodeA_(std::move(nodeA)),
      audioSystemNodeB_(std::move(nodeB)),
      firstNode_(audioSystemNodeA_.get()),
      secondNode_(audioSystemNodeB_.get()) {
    firstNode_->loadUtilization(processorUtilizationFilename);
    secondNode_->loadUtilization(processorUtilizationFilename);
}

SystemFixedAudioDevice::SystemFixedAudioDevice(int numInputs, int numOutputs, int blockLength,
                                               float sampleRate, std::unique_ptr<DspUnitHost> nodeA,
                                               std::unique_ptr<DspUnitHost> nodeB)
    : SystemFixedAudioDevice(numInputs, numOutputs, blockLength, noFilename(), sampleRate, std::move(nodeA),
                             std::move(nodeB)) {}

std::string SystemFixedAudioDevice::addDspUnit(const DspArchive& archive) {
    DspArchive copy(archive);
    return current().addDspUnit(copy);
}

std::string SystemFixedAudioDevice::insertDspUnit(const std::string& location, DspArchive& archive) {
    return current().insertDspUnit(location, archive);
}

std::string SystemFixedAudioDevice::replaceDspUnit(const std::string& nodeId, DspArchive& archive) {
    return current().replaceDspUnit(nodeId, archive);
}

void SystemFixedAudioDevice::moveDspUnit(const std::string& nodeId, const std::string& location) {
    current().moveDspUnit(nodeId, location);
}

void SystemFixedAudioDevice::removeDspUnit(const std::string& nodeId) {
    current().removeDspUnit(nodeId);
}

void SystemFixedAudioDevice::removeDspUnitAndBridge(const std::string& nodeId) {
    current().removeDspUnitAndBridge(nodeId);
}

void SystemFixedAudioDevice::connectAll(const std::string& inputNodeId, const std::string& outputNodeId) {
    current().connectAll(inputNodeId, outputNodeId);
}

void SystemFixedAudioDevice::connect(const std::string& inputNodeId, int inputIndex,
                                     const std::string& outputNodeId, int outputIndex) {
    current().connect(inputNodeId, inputIndex, outputNodeId, outputIndex);
}

void SystemFixedAudioDevice::disconnect(const std::string& nodeId) {
    current().disconnectOutputs(nodeId);
    current().disconnectInputs(nodeId);
}

void SystemFixedAudioDevice::disconnect(const std::string& inputNodeId, int inputIndex,
                                        const std::string& outputNodeId, int outputIndex) {
    current().disconnect(inputNodeId, inputIndex, outputNodeId, outputIndex);
}

IDspUnit* SystemFixedAudioDevice::getDspUnit(const std::string& nodeId) {
    return current().getDspUnit(nodeId);
}

IParameter* SystemFixedAudioDevice::getParameter(const std::string& nodeId, const std::string& name) {
    IDspUnit* const unit = getDspUnit(nodeId);
    if (!unit) TVK_THROW("no node %s in the graph", nodeId.c_str());
    return unit->getParameter(name);
}

std::vector<std::string> SystemFixedAudioDevice::getNodeIds() {
    return current().getNodeIds();
}

void SystemFixedAudioDevice::getArchive(DspArchive& archive) {
    current().getArchive(archive);
}

const PresetInfo& SystemFixedAudioDevice::getInfo() {
    return current().getInfo();
}

std::string SystemFixedAudioDevice::getTarvekIdInNode(const std::string& nodeId) {
    const IDspUnit* const unit = getDspUnit(nodeId);
    if (unit) return unit->getTarvekId();
    TVK_ERROR("Invalid DspUnit loaded in getTarvekIdInNode(). Returning empty string.");
    return {};
}

std::pair<float, float> SystemFixedAudioDevice::getFirstActiveImpedance() {
    return current().getFirstActiveImpedance();
}
