// The one object that the audio engine runs: a fixed number of inputs and outputs around a graph of units.
//
// It owns two hosts. Node A is the live graph for the run of the program; node B is built and stays empty.
// Every operation goes to the current one.
//
// Threads: process on the audio thread; everything else on one control thread at a time. What the edits do
// and throw is told at DspUnitHost.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/System/DspArchive.h"
#include "core/System/DspUnitHost.h"

class DspUnitDatabase;

class SystemFixedAudioDevice {
public:
    // blockLength in samples, sampleRate in Hz; the database outlives the device. Each host reads its budget
    // and the units' costs from the file, when one is named.
    SystemFixedAudioDevice(int numInputs, int numOutputs, const DspUnitDatabase* database, int blockLength,
                           const std::string& processorUtilizationFilename, float sampleRate);
    SystemFixedAudioDevice(int numInputs, int numOutputs, const DspUnitDatabase* database, int blockLength,
                           float sampleRate);
    // Around two hosts that exist, of these counts, block length and rate.
    SystemFixedAudioDevice(int numInputs, int numOutputs, int blockLength,
                           const std::string& processorUtilizationFilename, float sampleRate,
                           std::unique_ptr<DspUnitHost> nodeA, std::unique_ptr<DspUnitHost> nodeB);
    SystemFixedAudioDevice(int numInputs, int numOutputs, int blockLength, float sampleRate,
                           std::unique_ptr<DspUnitHost> nodeA, std::unique_ptr<DspUnitHost> nodeB);
    virtual ~SystemFixedAudioDevice() = default;
    SystemFixedAudioDevice(const SystemFixedAudioDevice&) = delete;
    SystemFixedAudioDevice& operator=(const SystemFixedAudioDevice&) = delete;

    // The address of one block of samples that the channel reads; not owned.
    virtual void connectInput(int channel, float* address, int connectionId) = 0;
    // One block of samples; the address holds for the device's life.
    virtual float* getOutputAddr(int channel) = 0;
    virtual void process() = 0;
    // Fades the output and returns when the fade is over: after 5 ms, or up to 5 ms more while the audio
    // thread has not brought it under one per cent.
    virtual void setMuteOutput(bool muted) = 0;
    // Replaces the whole graph behind a mute. Throws as DspUnitHost::init; the output is then mute and the
    // graph empty.
    virtual void loadArchive(DspArchive& archive) = 0;

    virtual std::string addDspUnit(const DspArchive& archive);
    virtual std::string insertDspUnit(const std::string& location, DspArchive& archive);
    virtual std::string replaceDspUnit(const std::string& nodeId, DspArchive& archive);
    virtual void moveDspUnit(const std::string& nodeId, const std::string& location);
    virtual void removeDspUnit(const std::string& nodeId);
    virtual void removeDspUnitAndBridge(const std::string& nodeId);
    virtual void connectAll(const std::string& inputNodeId, const std::string& outputNodeId);
    virtual void connect(const std::string& inputNodeId, int inputIndex, const std::string& outputNodeId,
                         int outputIndex);
    // All outputs of the node, then all inputs.
    virtual void disconnect(const std::string& nodeId);
    virtual void disconnect(const std::string& inputNodeId, int inputIndex, const std::string& outputNodeId,
                            int outputIndex);

    virtual void setGlobalFxBypass(bool bypassed) = 0;

    // Null if there is no such node.
    IDspUnit* getDspUnit(const std::string& nodeId);
    // Throws tvk::Exception for an unknown node and std::runtime_error for an unknown parameter.
    IParameter* getParameter(const std::string& nodeId, const std::string& name);
    // In run list order; by convention the first is the amplifier.
    std::vector<std::string> getNodeIds();
    // Writes the graph as a preset.
    void getArchive(DspArchive& archive);
    const PresetInfo& getInfo();
    // The type id of the unit in a node; an unknown node is an error line and an empty string.
    std::string getTarvekIdInNode(const std::string& nodeId);
    // Ohms and farads that the first active unit shows to the speaker.
    std::pair<float, float> getFirstActiveImpedance();

    int getNumInputs() const { return numInputs_; }
    int getNumOutputs() const { return numOutputs_; }
    int getBlockLength() const { return blockLength_; }
    float getSampleRate() const { return sampleRate_; }

protected:
    DspUnitHost& current() { return useFirst_ ? *firstNode_ : *secondNode_; }

private:
    const int numInputs_;
    const int numOutputs_;
    const int blockLength_;
    const float sampleRate_;
    const std::unique_ptr<DspUnitHost> audioSystemNodeA_;
    const std::unique_ptr<DspUnitHost> audioSystemNodeB_;
    DspUnitHost* const firstNode_;
    DspUnitHost* const secondNode_;
    const bool useFirst_ = true;
};
