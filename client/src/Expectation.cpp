#include "client/Expectation.h"

#include <algorithm>

namespace tvk::client {

namespace {

using Kind = TarvekMessage::TypeCase;

// ConnectionError.errorEnum.
constexpr int kNotOpen = 2;
// UserIRErrorMessage.error: the list is full. A message by name follows it.
constexpr unsigned kListFull = 1;

struct Rule {
    Kind request{};
    Kind reply{};
    Kind refusal{};                // none: TYPE_NOT_SET
    unsigned error = 0;            // the refusal's number
    bool isListFollowing = false;  // of the cabinet slots
};

constexpr Kind kNone = TarvekMessage::TYPE_NOT_SET;

constexpr Rule kRules[] = {
    {TarvekMessage::kProductProfileRequest, TarvekMessage::kProductProfileResponse, kNone, 0},
    {TarvekMessage::kSetCabsimSelection, TarvekMessage::kCabsimSelectionChanged, TarvekMessage::kCabsimError,
     1, true},
    {TarvekMessage::kGetCabsimSelection, TarvekMessage::kCabsimSelectionChanged, kNone, 0},
    {TarvekMessage::kFactoryIRListRequest, TarvekMessage::kFactoryIRListResponse, kNone, 0},
    {TarvekMessage::kCabsimIRListRequest, TarvekMessage::kCabsimIRListResponse, kNone, 0},
    {TarvekMessage::kAssignFactoryIRToCabsim, TarvekMessage::kAssignFactoryIRToCabsim,
     TarvekMessage::kCabsimError, 2, true},
    {TarvekMessage::kAssignUserIRToCabsim, TarvekMessage::kAssignUserIRToCabsim, TarvekMessage::kCabsimError,
     3, true},
    {TarvekMessage::kUserIRListRequest, TarvekMessage::kUserIRListResponse, kNone, 0},
    {TarvekMessage::kAddUserIR, TarvekMessage::kUserIRAdded, TarvekMessage::kAddUserIRFailed, 0},
    {TarvekMessage::kMoveUserIR, TarvekMessage::kMoveUserIR, TarvekMessage::kUserIRError, 2},
    {TarvekMessage::kRemoveUserIR, TarvekMessage::kRemoveUserIR, TarvekMessage::kUserIRError, 3},
    {TarvekMessage::kSaveCurrentState, TarvekMessage::kCabsimIRListResponse, TarvekMessage::kCabsimError, 4},
    {TarvekMessage::kSyncCurrentState, TarvekMessage::kCabsimIRListResponse, TarvekMessage::kCabsimError, 5},
    {TarvekMessage::kSetCabsimHpf, TarvekMessage::kSetCabsimHpf, TarvekMessage::kCabsimError, 6, true},
    {TarvekMessage::kSetCabsimLpf, TarvekMessage::kSetCabsimLpf, TarvekMessage::kCabsimError, 7, true},
    {TarvekMessage::kSetCabsimLevel, TarvekMessage::kSetCabsimLevel, TarvekMessage::kCabsimError, 8, true},
    {TarvekMessage::kCurrentFwRequest, TarvekMessage::kCurrentFwResponse, kNone, 0},
    {TarvekMessage::kReverbTaperType, TarvekMessage::kReverbTaperType, TarvekMessage::kGlobalSettingsError,
     1},
    {TarvekMessage::kVibratoChannelBright, TarvekMessage::kVibratoChannelBright,
     TarvekMessage::kGlobalSettingsError, 2},
    {TarvekMessage::kReverbTaperTypeRequest, TarvekMessage::kReverbTaperType, kNone, 0},
    {TarvekMessage::kVibratoChannelBrightRequest, TarvekMessage::kVibratoChannelBright, kNone, 0},
    {TarvekMessage::kGetCurrentAmplifier, TarvekMessage::kCurrentAmplifierResponse, kNone, 0},
    {TarvekMessage::kFactoryRestoreRequest, TarvekMessage::kFactoryRestoreResponse, kNone, 0},
};

const Rule* ruleFor(Kind request) {
    const auto* const found = std::ranges::find(kRules, request, &Rule::request);
    return found == std::end(kRules) ? nullptr : found;
}

// Whether an echo repeats what tells its request from others.
bool isEchoOf(const TarvekMessage& request, const TarvekMessage& echo) {
    switch (request.type_case()) {
        case TarvekMessage::kSetCabsimSelection:
            return echo.cabsimselectionchanged().cabsimenum() == request.setcabsimselection().cabsimenum();
        case TarvekMessage::kAssignFactoryIRToCabsim:
            return echo.assignfactoryirtocabsim().cabsimenum() ==
                       request.assignfactoryirtocabsim().cabsimenum() &&
                   echo.assignfactoryirtocabsim().irname() == request.assignfactoryirtocabsim().irname();
        case TarvekMessage::kAssignUserIRToCabsim:
            return echo.assignuserirtocabsim().cabsimenum() == request.assignuserirtocabsim().cabsimenum() &&
                   echo.assignuserirtocabsim().irname() == request.assignuserirtocabsim().irname();
        case TarvekMessage::kAddUserIR:
            return echo.useriradded().name() == request.adduserir().name();
        case TarvekMessage::kMoveUserIR:
            return echo.moveuserir().oldslot() == request.moveuserir().oldslot() &&
                   echo.moveuserir().newslot() == request.moveuserir().newslot();
        case TarvekMessage::kRemoveUserIR:
            return echo.removeuserir().slot() == request.removeuserir().slot();
        case TarvekMessage::kSetCabsimHpf:
            return echo.setcabsimhpf().cabsimenum() == request.setcabsimhpf().cabsimenum();
        case TarvekMessage::kSetCabsimLpf:
            return echo.setcabsimlpf().cabsimenum() == request.setcabsimlpf().cabsimenum();
        case TarvekMessage::kSetCabsimLevel:
            return echo.setcabsimlevel().cabsimenum() == request.setcabsimlevel().cabsimenum();
        default:
            return true;
    }
}

unsigned errorOf(const TarvekMessage& refusal) {
    switch (refusal.type_case()) {
        case TarvekMessage::kCabsimError:
            return refusal.cabsimerror().error();
        case TarvekMessage::kUserIRError:
            return refusal.userirerror().error();
        case TarvekMessage::kGlobalSettingsError:
            return refusal.globalsettingserror().error();
        default:
            return 0;
    }
}

bool isNotOpen(const TarvekMessage& message) {
    return message.connectionmessage().connectionerror().errorenum() == kNotOpen;
}

}  // namespace

Expectation::Expectation(const TarvekMessage& request) : request_(request) {
    // A full response is held by whoever sends it.
    if (request_.has_adduserir()) request_.mutable_adduserir()->clear_irdata();
}

bool Expectation::isReplyDue() const {
    return ruleFor(request_.type_case()) || request_.connectionmessage().has_connectionrequest();
}

Expectation::Verdict Expectation::consider(const TarvekMessage& message) {
    if (!isReplyDue()) return Verdict::Foreign;
    if (request_.has_connectionmessage()) return considerConnection(message.connectionmessage());
    if (isNotOpen(message)) return Verdict::Refused;
    const Rule& rule = *ruleFor(request_.type_case());
    if (isAnswered_) return message.has_cabsimirlistresponse() ? Verdict::Done : Verdict::Foreign;
    if (isRefusal(message)) return Verdict::Refused;
    if (isReply(message)) {
        isAnswered_ = rule.isListFollowing;
        return isAnswered_ ? Verdict::Part : Verdict::Done;
    }
    const bool isReasonOfRefusal = request_.has_adduserir() && message.userirerror().error() == kListFull;
    return isReasonOfRefusal ? Verdict::Part : Verdict::Foreign;
}

bool Expectation::isReply(const TarvekMessage& message) const {
    return message.type_case() == ruleFor(request_.type_case())->reply && isEchoOf(request_, message) &&
           (!message.has_factoryrestoreresponse() || message.factoryrestoreresponse().issuccessful());
}

bool Expectation::isRefusal(const TarvekMessage& message) const {
    if (request_.has_factoryrestorerequest())
        return message.has_factoryrestoreresponse() && !message.factoryrestoreresponse().issuccessful();
    const Rule& rule = *ruleFor(request_.type_case());
    if (rule.refusal == kNone || message.type_case() != rule.refusal) return false;
    return message.has_adduserirfailed() ? message.adduserirfailed().name() == request_.adduserir().name()
                                         : errorOf(message) == rule.error;
}

Expectation::Verdict Expectation::considerConnection(const ConnectionMessage& message) const {
    if (message.has_connectionresponse()) return Verdict::Done;
    return message.has_connectionerror() ? Verdict::Refused : Verdict::Foreign;
}

}  // namespace tvk::client
