#include "handlers/Attempt.h"
#include "handlers/Reply.h"
#include "proj/models/FactoryIRModel.h"
#include "proj/models/UserIRModel.h"

namespace tvk {

namespace {

// UserIRErrorMessage.error.
constexpr unsigned kListFull = 1;
constexpr unsigned kMoveFailed = 2;
constexpr unsigned kRemoveFailed = 3;

}  // namespace

void MessageHandler::factoryIRListRequest() {
    succeeds([this] {
        TarvekMessage message = newReply();
        FactoryIRListResponse& list = *message.mutable_factoryirlistresponse();
        list.set_dummy(true);
        for (const std::string& name : factoryIRs_.getFactoryIRList())
            list.add_record()->set_name(name);
        reply(message, "Failed to send factory IR list.");
    });
}

void MessageHandler::userIRListRequest() {
    succeeds([this] {
        TarvekMessage message = newReply();
        UserIRListResponse& list = *message.mutable_userirlistresponse();
        list.set_dummy(true);
        for (const UserIR& response : userIRs_.getUserIRList()) {
            UserIRListRecord& record = *list.add_record();
            record.set_name(response.name);
            record.set_exists(response.exists);
        }
        reply(message, "Failed to send user IR list response message.");
    });
}

void MessageHandler::addUserIR(const AddUserIR& request) {
    bool isListFull = false;
    const bool isAdded = succeeds([&] {
        try {
            userIRs_.addUserIR(request.name(), request.irdata());
        } catch (const UserIRListFull&) {
            isListFull = true;
            throw;
        }
    });
    if (!isAdded) {
        if (isListFull) sendUserIRError(kListFull);
        sendAddUserIRFailed(request.name());
        return;
    }
    TarvekMessage message = newReply();
    message.mutable_useriradded()->set_name(request.name());
    reply(message, "Failed to send UserIRAdded message.");
}

void MessageHandler::moveUserIR(const MoveUserIR& request) {
    if (!succeeds([&] { userIRs_.moveUserIR(request.oldslot(), request.newslot()); })) {
        sendUserIRError(kMoveFailed);
        return;
    }
    TarvekMessage message = newReply();
    message.mutable_moveuserir()->set_oldslot(request.oldslot());
    message.mutable_moveuserir()->set_newslot(request.newslot());
    reply(message, "Failed to send MoveUserIR message.");
}

void MessageHandler::removeUserIR(const RemoveUserIR& request) {
    if (!succeeds([&] { userIRs_.removeUserIR(request.slot()); })) {
        sendUserIRError(kRemoveFailed);
        return;
    }
    TarvekMessage message = newReply();
    message.mutable_removeuserir()->set_slot(request.slot());
    reply(message, "Failed to send RemoveUserIR message.");
}

void MessageHandler::sendAddUserIRFailed(const std::string& name) {
    TarvekMessage message = newReply();
    message.mutable_adduserirfailed()->set_name(name);
    reply(message, "Failed to send AddUserIRFailed message.");
}

void MessageHandler::sendUserIRError(unsigned error) {
    TarvekMessage message = newReply();
    message.mutable_userirerror()->set_error(error);
    reply(message, "Failed to send UserIRError message.");
}

}  // namespace tvk
