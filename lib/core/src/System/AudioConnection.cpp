#include "core/System/AudioConnection.h"

#include <atomic>
#include <utility>

#include "core/System/DspArchive.h"
#include "utility/Log.h"

namespace {

std::atomic<int> lastConnectionId{0};

int takeConnectionId() {
    return lastConnectionId.fetch_add(1) + 1;
}

void readEnd(DspArchive& archive, const char* key, std::string& nodeId, int& index) {
    if (!archive.enterObject(key)) return;
    archive.get("nodeId", nodeId);
    archive.get("index", index);
    archive.leaveObject();
}

void writeEnd(DspArchive& archive, const char* key, const std::string& nodeId, int index) {
    archive.beginObject(key);
    archive.set("nodeId", nodeId);
    archive.set("index", index);
    archive.endObject();
}

}  // namespace

AudioConnection::AudioConnection(std::string sourceNodeId, int sourceIndex, std::string destinationNodeId,
                                 int destinationIndex)
    : inputNodeId(std::move(sourceNodeId)),
      inputIndex(sourceIndex),
      outputNodeId(std::move(destinationNodeId)),
      outputIndex(destinationIndex),
      connectionId(takeConnectionId()) {}

AudioConnection::AudioConnection(DspArchive& archive) : connectionId(takeConnectionId()) {
    readEnd(archive, "input", inputNodeId, inputIndex);
    readEnd(archive, "output", outputNodeId, outputIndex);
    tvk::log::debug("AudioConnection", "connecting %s %i to %s %i", inputNodeId.c_str(), inputIndex,
                    outputNodeId.c_str(), outputIndex);
}

void AudioConnection::getArchive(DspArchive& archive) const {
    writeEnd(archive, "input", inputNodeId, inputIndex);
    writeEnd(archive, "output", outputNodeId, outputIndex);
}
