#include "proj/handlers/MessageHandler.h"

#include "proj/network/ClientManager.h"

namespace tvk {

MessageHandler::MessageHandler(ClientManager& clients, SystemInfoModel& systemInfo, CabsimModel& cabsims,
                               FactoryIRModel& factoryIRs, UserIRModel& userIRs,
                               GlobalSettingsModel& settings, const Storage& storage)
    : clients_(clients),
      systemInfo_(systemInfo),
      cabsims_(cabsims),
      factoryIRs_(factoryIRs),
      userIRs_(userIRs),
      settings_(settings),
      storage_(storage) {}

void MessageHandler::warn(const std::string& text, const char* file, int line) {
    log_.diagnostic(log::Severity::Warn, file, line, "%s", text.c_str());
}

void MessageHandler::reply(const TarvekMessage& message, const char* failure, const char* file, int line) {
    if (!clients_.broadcast(message)) log_.diagnostic(log::Severity::Error, file, line, "%s", failure);
}

}  // namespace tvk
