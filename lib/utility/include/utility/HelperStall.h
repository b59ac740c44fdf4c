// Holds the helper threads of one name before their next job, for tests of what the audio side does while a
// helper is late. Nothing in the product constructs one.
//
// A helper calls pass before each job: one atomic load while nothing is held. While a HelperStall of its name
// lives the helper sleeps there. One stall at a time; it ends before the objects whose helpers it holds,
// since their destructors wait for them.
#pragma once

namespace tvk {

class HelperStall {
public:
    // name: the helper's thread name, such as "cabSim" or "AudRvbBackThrd"; outlives the stall.
    explicit HelperStall(const char* name);
    ~HelperStall();
    HelperStall(const HelperStall&) = delete;
    HelperStall& operator=(const HelperStall&) = delete;

    // Sleeps until a helper of that name lies at the stall. On the test's thread.
    static void waitUntilHeld();

    // The helper's side.
    static void pass(const char* name);
};

}  // namespace tvk
