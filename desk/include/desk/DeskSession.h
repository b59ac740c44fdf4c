// One evening at the desk: the panel tells which amplifier it is and where its controls stand, then the
// guitar plays, and the script with it.
#pragma once

#include <atomic>

#include "desk/Endpoints.h"
#include "desk/Options.h"
#include "desk/OutputWriter.h"
#include "desk/Peers.h"
#include "desk/soundcard/VirtualCard.h"

class Model;

namespace tvk {
class StopSignal;
}

namespace tvk::desk {

class DeskSession {
public:
    // All of them outlive the session.
    DeskSession(const Options& options, const Endpoints& endpoints, Peers& peers, VirtualCard& card,
                OutputWriter& writer)
        : options_(options), endpoints_(endpoints), peers_(peers), card_(card), writer_(writer) {}

    // A preset has been given all controls of the panel: the first time is the guitar's start. Any thread.
    void panelReplayed() { start(); }

    // Returns at the transport's end or when the stop signal has arrived, with all output on disk. Main
    // thread.
    void run(Model& model, StopSignal& stop);

private:
    void start();
    void printReady() const;

    const Options& options_;
    const Endpoints& endpoints_;
    Peers& peers_;
    VirtualCard& card_;
    OutputWriter& writer_;
    std::atomic<bool> hasStarted_{false};
};

}  // namespace tvk::desk
