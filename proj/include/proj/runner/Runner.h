// From main to the objects of the program and back.
#pragma once

#include "proj/platform/Platform.h"
#include "proj/platform/StopSignal.h"

namespace tvk {

// The version text that main prints.
extern const char* const kVersion;

// Builds every long-lived object on its own frame, in order, runs the platform's session, and destroys them
// in reverse. Installs the platform's clock and turns debug lines on. Main thread; throws what a constructor
// or the session throws, after the objects built so far are gone.
void runApplication(const Platform& platform, StopSignal& stop);

// All that main does: standard output line by line, the version, SIGUSR1 (stops in order) and SIGINT (ends
// the process at once with status 0), then the application.
//
// Returns the process's status: 0 after an orderly stop, 1 when an exception left the runner (it is logged).
// Call it before any thread starts.
int applicationMain(const Platform& platform);

}  // namespace tvk
