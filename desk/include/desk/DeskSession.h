// One evening at the desk: load the preset, turn the knobs, let the guitar play, stop.
#pragma once

#include "desk/Options.h"
#include "desk/OutputWriter.h"
#include "desk/soundcard/VirtualCard.h"

class Model;

namespace tvk {
class StopSignal;
}

namespace tvk::desk {

class DeskSession {
public:
    // All of them outlive the session.
    DeskSession(const Options& options, VirtualCard& card, OutputWriter& writer)
        : options_(options), card_(card), writer_(writer) {}

    // Returns at the transport's end or when the stop signal has arrived, with all output on disk. Main
    // thread.
    void run(Model& model, StopSignal& stop);

private:
    const Options& options_;
    VirtualCard& card_;
    OutputWriter& writer_;
};

}  // namespace tvk::desk
