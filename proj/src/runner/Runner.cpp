#include "proj/runner/Runner.h"

#include <cstdio>

#include "proj/controllers/Controller.h"
#include "proj/handlers/MessageHandler.h"
#include "proj/models/CabsimModel.h"
#include "proj/models/FactoryIRModel.h"
#include "proj/models/GlobalSettingsModel.h"
#include "proj/models/Model.h"
#include "proj/models/SystemInfoModel.h"
#include "proj/models/UserIRModel.h"
#include "proj/network/ClientManager.h"
#include "proj/network/MessageProcessor.h"
#include "proj/views/controls/View.h"
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
    log::debug("main", "Constructing Factory IR Model");
    FactoryIRModel factoryIRModel(model);
    log::debug("main", "Constructing User IR Model");
    UserIRModel userIRModel;
    log::debug("main", "Constructing Global settings Model");
    GlobalSettingsModel globalSettingsModel;
    log::debug("main", "Constructing Cabsim Model");
    CabsimModel cabsimModel(model, globalSettingsModel, factoryIRModel);
    ClientManager clientManager(platform.hidDevice);
    log::debug("main", "Constructing Controller");
    Controller controller(model, cabsimModel, clientManager, factoryIRModel);
    const nod::connection replayed = controller.replayed.connect(platform.panelReplayed);
    log::debug("main", "Construction System Info Model");
    SystemInfoModel systemInfoModel;
    log::debug("main", "Constructing View");
    const View view(controller, model, systemInfoModel, platform);
    log::debug("main", "Constructing Message Handler");
    MessageHandler messageHandler(clientManager, systemInfoModel, cabsimModel, factoryIRModel, userIRModel,
                                  globalSettingsModel);
    log::debug("main", "Constructing Message Processor");
    const MessageProcessor messageProcessor(clientManager, messageHandler);

    log::debug("main", "completed main");
    std::printf("Press Ctrl+C to halt...\n");
    platform.session(model, stop);
}

}  // namespace tvk
