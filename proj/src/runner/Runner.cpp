#include "proj/runner/Runner.h"

#include <cstdio>

#include "proj/models/Model.h"
#include "utility/Clock.h"
#include "utility/Log.h"
#include "utility/ProductPaths.h"
#include "utility/RealtimeLogWriter.h"

namespace tvk {

void runApplication(const Platform& platform, StopSignal& stop) {
    Clock::install(platform.clock);
    ProductPaths::set(platform.homeRoot.string(), platform.userData.string());
    log::enableDebug(true);
    const RealtimeLogWriter realtimeLogWriter;

    log::debug("main", "Constructing Model");
    Model model(platform);

    log::debug("main", "completed main");
    std::printf("Press Ctrl+C to halt...\n");
    platform.session(model, stop);
}

}  // namespace tvk
