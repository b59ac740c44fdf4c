// A unit that holds a graph of other units: what a preset turns into. A host can be a node of a host.
//
//   host inputs --x mute in--> terminal outputs .. units in run list order .. terminal inputs --x mute out-->
//
// Nodes are units by name, edges are AudioConnections. A connection copies the address of the source's output
// array into the destination; no audio is moved. The order of execution is the run list's, which a preset's
// array of nodes gives: a node that reads from a later one reads the previous block.
//
// Node ids: a new node whose id is taken gets "_1", "_2", ... "_999" behind it. The host's own id names its
// terminal: as the source of a connection the host's inputs, as its destination the host's outputs.
//
// Threads: process on the audio thread; everything else on one control thread at a time. Each edit that takes
// a unit out waits for the end of the block that may still run it, so a unit is never freed under the audio
// thread; see Runlist.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/DspUnit/DspUnit.h"
#include "core/Parameter/Parameter.h"
#include "core/System/AudioConnection.h"
#include "core/System/DspUnitRunlist.h"
#include "core/System/PresetInfo.h"
#include "core/System/ProcessorUtilizationManager.h"
#include "math/OnePoleRamp.h"

class DspUnitDatabase;

class DspUnitHost : public DspUnit {
public:
    // blockLength in samples, sampleRate in Hz; the database outlives the host. The second form reads the
    // budget and the units' costs from a file.
    DspUnitHost(const std::string& nodeId, int blockLength, int numInputs, int numOutputs,
                const DspUnitDatabase* database, float sampleRate);
    DspUnitHost(const std::string& nodeId, int blockLength, int numInputs, int numOutputs,
                const DspUnitDatabase* database, float sampleRate, const std::string& utilizationFilename);
    // Audio has ended by then.
    ~DspUnitHost() override;

    void reset() override {}
    void process() override;
    // Replaces the whole graph by the preset at the archive's cursor. Faults are log lines. Throws
    // tvk::Exception for a node of an unknown kind, and whatever the constructor of a unit throws; the host
    // is then muted, without a node but its terminal, and runs nothing.
    void init(DspArchive& archive) override;
    // Writes the preset to the object at the archive's cursor.
    void getArchive(DspArchive& archive) override;
    std::string getNodeType() const override { return "preset"; }
    // Moves the terminal's name along.
    void setNodeId(const std::string& id) override;
    void setGlobalFxBypass(bool bypassed) override;

    // Edits of the graph; each takes effect with the next block. An archive holds a node at its cursor: the
    // keys of a node of a preset, or a unit definition. One without parameters is a warning, no node, and an
    // empty id in return. They throw as init does.

    // Appends a node to the run list, unwired. Returns its id, made from the type id.
    virtual std::string addDspUnit(DspArchive& archive);
    // Places a node before the node `location` and splices it into that node's inputs, channel by channel. An
    // unknown location is an error line and an empty id.
    virtual std::string insertDspUnit(const std::string& location, DspArchive& archive);
    // The same with the wanted node id from the document's key "nodeId" and the location from the key
    // "nodeId" of its object "location".
    virtual std::string insertDspUnit(DspArchive& document);
    // Removes a node with bridging and inserts a new one of the same state and id before `location`. Throws
    // std::out_of_range for an unknown node; an unknown location is an error line before anything happens.
    virtual void moveDspUnit(const std::string& nodeId, const std::string& location);
    // Puts another unit in a node's place, in the run list and in its connections, behind the old unit's
    // output mute (5 ms). Returns the new id. Throws tvk::Exception for the host's own id
    // or one that is not there.
    virtual std::string replaceDspUnit(const std::string& nodeId, DspArchive& archive);
    // Drops a node and its connections. The host's own id is an error line.
    virtual void removeDspUnit(const std::string& nodeId);
    // The same, and what fed channel c of the node then feeds what its channel c fed.
    virtual void removeDspUnitAndBridge(const std::string& nodeId);

    // In run list order.
    std::vector<std::string> getNodeIds() const;
    bool hasNode(const std::string& id) const { return nodes_.count(id) != 0; }
    // Null if there is none.
    IDspUnit* getDspUnit(const std::string& id) const;

    // From an output channel of the first node to an input channel of the second. Throws tvk::Exception for
    // an unknown node; a bad channel is an error line.
    void connect(const std::string& inputNodeId, int inputIndex, const std::string& outputNodeId,
                 int outputIndex);
    // Channel by channel, as many as both have.
    void connectAll(const std::string& inputNodeId, const std::string& outputNodeId);
    void disconnect(const std::string& inputNodeId, int inputIndex, const std::string& outputNodeId,
                    int outputIndex);
    void disconnectInputs(const std::string& id);
    void disconnectOutputs(const std::string& id);
    std::vector<AudioConnection> getConnections() const;

    // Throws std::out_of_range when newId is taken or oldId unknown.
    void rename(const std::string& oldId, const std::string& newId);

    // True if any unit of the run list with a bypass is not bypassed.
    bool isAnyUnitActive() const;
    // Ohms and farads of the first such unit, else 1000000 and 0.01.
    std::pair<float, float> getFirstActiveImpedance() const;

    const PresetInfo& getInfo() const { return info_; }
    void setInfo(const PresetInfo& info) { info_ = info; }
    // Takes budget and costs from a file, in place of those it had.
    void loadUtilization(const std::string& filename) {
        utilization_ = ProcessorUtilizationManager(filename);
    }
    const ProcessorUtilizationManager& getUtilization() const { return utilization_; }

    // Fade of 1 ms time constant.
    void setMuteInput(bool muted);
    void setMuteOutput(bool muted);
    // The gain that the last sample of the output had.
    float getMuteOutputGain() const { return muteOutputRamp_.current(); }

    // Debug lines of all nodes and edges.
    void printGraph() const;

private:
    // The terminal stands among the nodes but is a member.
    struct NodeDeleter {
        void operator()(IDspUnit* unit) const {
            if (isOwned) delete unit;
        }
        bool isOwned = true;
    };
    using Node = std::unique_ptr<IDspUnit, NodeDeleter>;
    using Nodes = std::map<std::string, Node>;
    using Connections = std::map<int, AudioConnection>;

    DspUnitHost(const std::string& nodeId, int blockLength, int numInputs, int numOutputs,
                const DspUnitDatabase* database, float sampleRate,
                const ProcessorUtilizationManager& utilization);

    void initMuteInput(bool muted);
    void initMuteOutput(bool muted);
    bool getMuteInput() const;
    bool getMuteOutput() const;

    Runlist& runlist() { return terminal_.runlist(); }
    bool isOwnId(const std::string& id) const { return id == getNodeId(); }
    std::string makeUnique(const std::string& wantedId) const;
    void enterTerminal();

    Node createNode(DspArchive& archive) const;
    Node createHost(DspArchive& archive, const std::string& nodeId) const;
    Node createUnit(DspArchive& archive, const std::string& nodeId) const;
    bool isBuildable(DspArchive& archive) const;
    // Names the unit and enters it among the nodes; budget and run list are the caller's.
    IDspUnit* adoptNode(Node node, const std::string& wantedId);
    void charge(const std::string& tarvekId);
    void logCost(const char* what, const std::string& tarvekId) const;
    std::string insertNode(const std::string& location, Node node, const std::string& wantedId);
    void spliceInputs(const std::string& location, const std::string& insertedId, IDspUnit* inserted);
    void moveOutputs(const std::string& location, const std::string& insertedId,
                     const std::vector<std::list<int>>& oldConnections);
    void muteBeforeReplacement(IDspUnit& unit, const std::string& nodeId) const;
    void dropUnit(const std::string& nodeId);
    // An input with several connections keeps the address of the last one made even after that one is gone;
    // no input may keep one of a unit that goes.
    void forgetOutputs(const IDspUnit& leaving);
    void remakeConnections(const std::string& oldId, const IDspUnit& unit,
                           const std::vector<AudioConnection>& incoming,
                           const std::vector<AudioConnection>& outgoing);

    void readHeader(DspArchive& archive);
    void loadGraph(DspArchive& archive);
    void readNodes(DspArchive& archive);
    void readConnections(DspArchive& archive);
    void emptyAfterFailure();
    void writeNode(DspArchive& archive, const std::string& nodeId, IDspUnit& unit) const;

    bool isValid(const AudioConnection& connection) const;
    void wire(const AudioConnection& connection);
    bool removeConnection(int connectionId);
    const AudioConnection* findConnection(int connectionId) const;
    std::vector<AudioConnection> findConnections(const std::vector<std::list<int>>& ids) const;

    std::atomic<bool> muteInputState_{false};
    std::atomic<bool> muteOutputState_{false};
    const float sampleRate_;
    const DspUnitDatabase* const database_;
    Connections connections_;
    DspUnitRunlist terminal_;
    Nodes nodes_;
    OnePoleRamp muteInputRamp_;
    OnePoleRamp muteOutputRamp_;
    std::string nodeType_ = "preset";
    std::string version_ = "1.1";
    int presetInputs_;
    int presetOutputs_;
    PresetInfo info_;
    Parameter<bool> muteInput_;
    Parameter<bool> muteOutput_;
    std::atomic<bool> globalFxBypass_{false};
    ProcessorUtilizationManager utilization_;
    std::vector<float> muteInputGain_;
    std::vector<float> muteOutputGain_;
};
