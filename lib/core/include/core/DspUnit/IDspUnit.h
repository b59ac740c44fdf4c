// A processing block: mono input and output channels, a fixed block length, parameters by name.
//
// Life: built, named, initialised from an archive, wired, entered in a run list; only then does the audio
// thread see it. It leaves the run list before it is destroyed.
//
// Threads: process on the audio thread, all else on a control thread. Parameters may change at any moment
// between init and removal; what process reads of them are single words.
#pragma once

#include <list>
#include <string>
#include <utility>
#include <vector>

class DspArchive;
class IParameter;

class IDspUnit {
public:
    virtual ~IDspUnit() = default;

    // Returns signal memory to silence.
    virtual void reset() = 0;

    // One block of the length given at construction: reads the addresses of all inputs, writes all outputs.
    // An input address is memory of the unit upstream. No allocation, lock or log.
    virtual void process() = 0;

    // Reads the parameters from the object at the archive's cursor. A missing key leaves the value it had.
    virtual void init(DspArchive& archive) = 0;
    // Writes the parameters to the object at the archive's cursor.
    virtual void getArchive(DspArchive& archive) = 0;

    // Throws std::runtime_error "Unknown parameter NAME." if there is none.
    virtual IParameter* getParameter(const std::string& name) = 0;
    // Names and parameters, ordered by the bytes of the name.
    virtual std::vector<std::pair<std::string, IParameter*>> getParameters() = 0;

    // The type id, as the catalogue knows it.
    virtual std::string getTarvekId() const = 0;
    // The name of this instance in its graph.
    virtual void setNodeId(const std::string& id) = 0;
    virtual std::string getNodeId() const = 0;
    // "dspUnit", or "preset" for a graph.
    virtual std::string getNodeType() const = 0;

    // Bypasses all effects together, beside each unit's own bypass.
    virtual void setGlobalFxBypass(bool bypassed) = 0;

    // Inputs. One channel has one address: the last connection made gives it, while the ids of all stay in
    // the channel's list. A channel whose list becomes empty reads silence. A bad channel of connectInput and
    // disconnectInput is an error line; of the lists std::out_of_range; addresses are not checked.
    virtual int getNumInputs() const = 0;
    virtual void connectInput(int channel, float* address, int connectionId) = 0;
    virtual void disconnectInput(int channel, int connectionId) = 0;
    virtual void disconnectAllInputs() = 0;
    virtual float* getInputAddr(int channel) const = 0;
    virtual std::list<int> getInputConnections(int channel) const = 0;
    virtual std::vector<std::list<int>> getAllInputConnections() const = 0;

    // Outputs. An output address never changes in the unit's life. A bad channel throws std::out_of_range.
    virtual int getNumOutputs() const = 0;
    virtual void addOutputConnection(int channel, int connectionId) = 0;
    virtual void removeOutputConnection(int channel, int connectionId) = 0;
    virtual void clearOutputConnections() = 0;
    virtual float* getOutputAddr(int channel) const = 0;
    virtual std::list<int> getOutputConnections(int channel) const = 0;
    virtual std::vector<std::list<int>> getAllOutputConnections() const = 0;
};
