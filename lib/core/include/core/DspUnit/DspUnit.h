// The base of all units: channels, connection lists and the table of parameters.
//
// Some parameter names are reserved, each with one value type, so that every unit can be driven by the same
// code: bypass bool, bypassType string, clipState bool, tapTime float, tapTimeBPM float, muteInput bool,
// muteOutput bool.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/DspUnit/IDspUnit.h"

class DspUnit : public IDspUnit {
public:
    // blockLength in samples. Every output is an array of that many zeros.
    DspUnit(std::string tarvekId, int numInputs, int numOutputs, int blockLength);
    ~DspUnit() override;
    DspUnit(const DspUnit&) = delete;
    DspUnit& operator=(const DspUnit&) = delete;

    IParameter* getParameter(const std::string& name) override;
    std::vector<std::pair<std::string, IParameter*>> getParameters() override;

    std::string getTarvekId() const override { return tarvekId_; }
    void setNodeId(const std::string& id) override { nodeId_ = id; }
    std::string getNodeId() const override { return nodeId_; }
    std::string getNodeType() const override { return "dspUnit"; }
    void setGlobalFxBypass(bool bypassed) override;

    int getNumInputs() const override { return static_cast<int>(inputs_.size()); }
    void connectInput(int channel, float* address, int connectionId) override;
    void disconnectInput(int channel, int connectionId) override;
    void disconnectAllInputs() override;
    float* getInputAddr(int channel) const override {
        return inputs_[static_cast<std::size_t>(channel)].load(std::memory_order_acquire);
    }
    std::list<int> getInputConnections(int channel) const override;
    std::vector<std::list<int>> getAllInputConnections() const override { return inputConnections_; }

    int getNumOutputs() const override { return static_cast<int>(outputs_.size()); }
    void addOutputConnection(int channel, int connectionId) override;
    void removeOutputConnection(int channel, int connectionId) override;
    void clearOutputConnections() override;
    float* getOutputAddr(int channel) const override {
        return outputs_[static_cast<std::size_t>(channel)].get();
    }
    std::list<int> getOutputConnections(int channel) const override;
    std::vector<std::list<int>> getAllOutputConnections() const override { return outputConnections_; }

    int getBlockLength() const { return static_cast<int>(silence_.size()); }

    // Enters a parameter under its name; the unit's class owns it. A reserved name is an error line.
    void addParameter(IParameter* parameter);
    // Enters a parameter of a reserved name and its type, in place of one that is there; anything else is an
    // error line.
    void addReservedParameter(IParameter* parameter);

private:
    const std::string tarvekId_;
    // Set on a control thread while the audio thread reads. Release and acquire, so that a block that finds
    // the address of a new unit's output finds the zeros in it too.
    std::vector<std::atomic<float*>> inputs_;
    std::vector<std::unique_ptr<float[]>> outputs_;
    std::map<std::string, IParameter*> parameters_;
    std::string nodeId_;
    std::vector<std::list<int>> inputConnections_;
    std::vector<std::list<int>> outputConnections_;
    std::vector<float> silence_;
};
