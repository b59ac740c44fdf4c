#include <cmath>

#include "handlers/Attempt.h"
#include "handlers/Reply.h"
#include "proj/models/CabsimModel.h"
#include "utility/Exception.h"

namespace tvk {

namespace {

// CabsimErrorMessage.error.
constexpr unsigned kSelectionFailed = 1;
constexpr unsigned kAssignFactoryFailed = 2;
constexpr unsigned kAssignUserFailed = 3;
constexpr unsigned kSaveFailed = 4;
constexpr unsigned kSyncFailed = 5;
constexpr unsigned kHpfFailed = 6;
constexpr unsigned kLpfFailed = 7;
constexpr unsigned kLevelFailed = 8;

int asInt(std::uint32_t slot) {
    return static_cast<int>(slot);
}

}  // namespace

void MessageHandler::setCabsimSelection(const SetCabsimSelection& request) {
    if (!succeeds([&] { cabsims_.setVirtualCabsim(request.cabsimenum()); })) {
        warn("Failed to set cabsim selection");
        sendCabsimError(kSelectionFailed);
        return;
    }
    sendCabsimSelection();
    sendCabsimIRList();
}

void MessageHandler::getCabsimSelection() {
    sendCabsimSelection();
}

void MessageHandler::cabsimIRListRequest() {
    sendCabsimIRList();
}

template <typename Request>
struct MessageHandler::Assignment {
    const char* kind;  // of response, as the log names it
    bool (CabsimModel::*assign)(std::uint32_t slot, const std::string& name);
    Request* (TarvekMessage::*echo)();
    const char* sendFailure;
    unsigned error;
};

template <typename Request>
void MessageHandler::assignToCabsim(const Request& request, const Assignment<Request>& rule) {
    const std::uint32_t slot = request.cabsimenum();
    bool isAssigned = false;
    succeeds([&] { isAssigned = (cabsims_.*rule.assign)(slot, request.irname()); });
    if (!isAssigned) {
        warn(formatText("Cannot assign %s IR to cabsim %d", rule.kind, asInt(slot)));
        sendCabsimError(rule.error);
        return;
    }
    TarvekMessage message = newReply();
    Request& echo = *(message.*rule.echo)();
    echo.set_cabsimenum(slot);
    echo.set_irname(request.irname());
    reply(message, rule.sendFailure);
    sendCabsimIRList();
}

void MessageHandler::assignFactoryIRToCabsim(const AssignFactoryIRToCabsim& request) {
    assignToCabsim<AssignFactoryIRToCabsim>(
        request,
        {"factory", &CabsimModel::assignFactoryIRToCabsim, &TarvekMessage::mutable_assignfactoryirtocabsim,
         "Failed to send AssignFactoryIRToCabsim message.", kAssignFactoryFailed});
}

void MessageHandler::assignUserIRToCabsim(const AssignUserIRToCabsim& request) {
    assignToCabsim<AssignUserIRToCabsim>(
        request, {"user", &CabsimModel::assignUserIRToCabsim, &TarvekMessage::mutable_assignuserirtocabsim,
                  "Failed to send AssignUserIRToCabsim message.", kAssignUserFailed});
}

template <typename Request>
struct MessageHandler::CabinetValue {
    const char* name;  // as the log has it
    float (*clamp)(float value);
    bool (CabsimModel::*set)(std::uint32_t slot, float value);
    Request* (TarvekMessage::*echo)();
    const char* sendFailure;
    unsigned error;
};

template <typename Request>
void MessageHandler::setCabinetValue(const Request& request, const CabinetValue<Request>& rule) {
    const std::uint32_t slot = request.cabsimenum();
    if (slot >= CabsimModel::kSlots) {
        warn(formatText("Cannot set %s for cabsim %d", rule.name, asInt(slot)));
        sendCabsimError(rule.error);
        return;
    }
    const float value = rule.clamp(request.value());
    bool isSet = false;
    succeeds([&] { isSet = !std::isnan(value) && (cabsims_.*rule.set)(slot, value); });
    if (!isSet) {
        warn(formatText("Failed to set cabsim %s", rule.name));
        sendCabsimError(rule.error);
        return;
    }
    TarvekMessage message = newReply();
    Request& echo = *(message.*rule.echo)();
    echo.set_cabsimenum(slot);
    echo.set_value(value);
    reply(message, rule.sendFailure);
    sendCabsimIRList();
}

void MessageHandler::setCabsimHpf(const SetCabsimHpf& request) {
    setCabinetValue<SetCabsimHpf>(
        request, {"HPF", &CabsimLimits::clampHpf, &CabsimModel::setCabHPF,
                  &TarvekMessage::mutable_setcabsimhpf, "Failed to send SetCabsimHPF message.", kHpfFailed});
}

void MessageHandler::setCabsimLpf(const SetCabsimLpf& request) {
    setCabinetValue<SetCabsimLpf>(
        request, {"LPF", &CabsimLimits::clampLpf, &CabsimModel::setCabLPF,
                  &TarvekMessage::mutable_setcabsimlpf, "Failed to send SetCabsimLPF message.", kLpfFailed});
}

void MessageHandler::setCabsimLevel(const SetCabsimLevel& request) {
    setCabinetValue<SetCabsimLevel>(request, {"level", &CabsimLimits::clampLevel, &CabsimModel::setCabLevel,
                                              &TarvekMessage::mutable_setcabsimlevel,
                                              "Failed to send SetCabsimLevel message.", kLevelFailed});
}

void MessageHandler::saveCurrentState() {
    bool isSaved = false;
    succeeds([&] { isSaved = cabsims_.saveCurrentState(); });
    if (isSaved)
        sendCabsimIRList();
    else
        sendCabsimError(kSaveFailed);
}

void MessageHandler::syncCurrentState() {
    bool isInSync = false;
    succeeds([&] { isInSync = cabsims_.syncCurrentState(); });
    if (isInSync)
        sendCabsimIRList();
    else
        sendCabsimError(kSyncFailed);
}

void MessageHandler::sendCabsimSelection() {
    succeeds([this] {
        TarvekMessage message = newReply();
        message.mutable_cabsimselectionchanged()->set_cabsimenum(cabsims_.getVirtualCabsim());
        reply(message, "Failed to send CabsimSelectionChanged message.");
    });
}

void MessageHandler::sendCabsimIRList() {
    succeeds([this] {
        TarvekMessage message = newReply();
        CabsimIRListResponse& list = *message.mutable_cabsimirlistresponse();
        list.set_dummy(true);
        unsigned slot = 0;
        for (const CabsimIR& cabinet : cabsims_.getCabsimIRList()) {
            CabsimIRListRecord& record = *list.add_record();
            record.set_cabsimid(slot++);
            record.set_isfactory(cabinet.isFactory);
            record.set_irname(cabinet.irName);
            record.set_isdirty(cabinet.isDirty);
            record.set_hpf(cabinet.hpf);
            record.set_lpf(cabinet.lpf);
            record.set_level(cabinet.level);
        }
        reply(message, "Failed to send cabsim IR list response message.");
    });
}

void MessageHandler::sendCabsimError(unsigned error) {
    TarvekMessage message = newReply();
    message.mutable_cabsimerror()->set_error(error);
    reply(message, "Failed to send CabSimError message.");
}

}  // namespace tvk
