#include <cstdlib>

#include "proj/platform/Platform.h"
#include "proj/platform/StopSignal.h"

namespace tvk {

Platform productPlatform() {
    Platform platform;
    platform.runShell = [](const std::string& command) { return std::system(command.c_str()); };
    platform.session = [](Model&, StopSignal& stop) { stop.wait(); };
    return platform;
}

}  // namespace tvk
