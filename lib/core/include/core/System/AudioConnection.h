// A numbered edge of a graph.
//
// The words are those of the preset format, seen from the wire: the input of the connection is the signal's
// source, an output channel of a node; the output of the connection is an input channel of another.
#pragma once

#include <string>

class DspArchive;

struct AudioConnection {
    // Takes the next id of the process: 1 for the first, never one twice.
    AudioConnection(std::string sourceNodeId, int sourceIndex, std::string destinationNodeId,
                    int destinationIndex);
    // Reads the objects "input" and "output", each of "nodeId" and "index", at the archive's cursor.
    explicit AudioConnection(DspArchive& archive);

    // Appends the two objects to the object at the archive's cursor.
    void getArchive(DspArchive& archive) const;

    std::string inputNodeId;
    int inputIndex = 0;
    std::string outputNodeId;
    int outputIndex = 0;
    int connectionId;
};
