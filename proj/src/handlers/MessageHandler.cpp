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

void MessageHandler::warn(const std::string& text, Place place) {
    log_.diagnostic(log::Severity::Warn, place.file_name(), static_cast<int>(place.line()), "%s",
                    text.c_str());
}

void MessageHandler::reply(const TarvekMessage& message, const char* failure, Place place) {
    if (clients_.broadcast(message)) return;
    log_.diagnostic(log::Severity::Error, place.file_name(), static_cast<int>(place.line()), "%s", failure);
}

}  // namespace tvk
