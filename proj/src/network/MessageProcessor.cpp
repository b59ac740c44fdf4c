#include "proj/network/MessageProcessor.h"

#include <chrono>
#include <utility>

#include "TarvekMessage/MessageText.h"
#include "proj/handlers/MessageHandler.h"
#include "proj/network/ClientManager.h"
#include "utility/Clock.h"
#include "utility/Log.h"
#include "utility/ThreadSched.h"

namespace tvk {

namespace {

constexpr const char* kTag = "MessageProcessor";
constexpr const char* kDetailTag = "DetailedMessageProcessor";
constexpr std::chrono::milliseconds kTick{1};

constexpr int kCpu = 0;
constexpr int kFifo = 1;
constexpr int kPriority = 45;

// ConnectionError.errorEnum.
constexpr int kAlreadyOpen = 1;
constexpr int kNotOpen = 2;

// TarvekMessage.batchStatus; every other value is a message on its own.
constexpr int kBatchFirst = 1;
constexpr int kBatchMiddle = 2;
constexpr int kBatchLast = 3;

}  // namespace

MessageProcessor::MessageProcessor(ClientManager& clients, MessageHandler& handler)
    : clients_(clients),
      handler_(handler),
      thread_(ThreadSched::start([this] { run(); }, "MsgProcessor", kFifo, kPriority, kCpu)) {
    log::debug(kTag, "MessageProcessor started successfully.");
    log::debug(kTag,
               "NOTE: Tarvek Debug info enable DetailedMessageProcessor to see all incoming server messages");
}

MessageProcessor::~MessageProcessor() {
    exitFlag_.store(true, std::memory_order_relaxed);
    clients_.endWaits();
    thread_.join();
}

void MessageProcessor::run() {
    log::debug(kTag, "MessageProcessor thread started.");
    while (!exitFlag_.load(std::memory_order_relaxed)) {
        dropEndedBatch();
        ClientMessage received;
        if (clients_.popMessage(received))
            process(std::move(received));
        else
            Clock::current().sleepUntilWork(kTick, [this] { return hasWork(); });
    }
}

bool MessageProcessor::hasWork() const {
    return exitFlag_.load(std::memory_order_relaxed) || clients_.hasMessage() || hasBatchEnded();
}

void MessageProcessor::process(ClientMessage received) {
    if (!passesConnectionCheck(received)) return;
    const int batchStatus = received.message->batchstatus();
    if (batchStatus < kBatchFirst || batchStatus > kBatchLast) {
        dispatch(received);
        return;
    }
    static_assert(kBatchMiddle == kBatchFirst + 1 && kBatchLast == kBatchMiddle + 1);
    appendToBatch(std::move(received));
    if (batchStatus == kBatchLast) dispatchBatch();
}

bool MessageProcessor::passesConnectionCheck(const ClientMessage& received) {
    const bool isRequest = received.message->connectionmessage().has_connectionrequest();
    const bool isOpen = clients_.isConnectionOpen(received.clientId);
    if (isRequest != isOpen) return true;
    if (isRequest) {
        log::debug(kTag, "Received ConnectionRequest while connection was already open. ClientID: %d",
                   received.clientId);
        refuse(received.clientId, kAlreadyOpen);
    } else {
        log::debug(kTag, "Received message without open connection. ClientID: %d", received.clientId);
        refuse(received.clientId, kNotOpen);
    }
    return false;
}

void MessageProcessor::refuse(int clientId, int error) {
    TarvekMessage reply;
    reply.set_ignore_this_padding(true);
    reply.mutable_connectionmessage()->mutable_connectionerror()->set_errorenum(error);
    clients_.send(clientId, reply);
}

void MessageProcessor::appendToBatch(ClientMessage received) {
    if (!ClientMessageLimit::hasRoom(batch_.size(), batchBytes_, received.bytes)) {
        TVK_ERROR_LIMITED(log_, "Tried to push message into full queue.");
        return;
    }
    if (batch_.empty()) batchConnection_ = clients_.getConnectionChanges();
    batchBytes_ += received.bytes;
    batch_.push_back(std::move(received));
}

bool MessageProcessor::hasBatchEnded() const {
    return !batch_.empty() && clients_.getConnectionChanges() != batchConnection_;
}

void MessageProcessor::dropEndedBatch() {
    if (!hasBatchEnded()) return;
    batch_.clear();
    batchBytes_ = 0;
}

void MessageProcessor::dispatchBatch() {
    dropEndedBatch();
    while (!batch_.empty() && !exitFlag_.load(std::memory_order_relaxed)) {
        const ClientMessage received = std::move(batch_.front());
        batch_.pop_front();
        batchBytes_ -= received.bytes;
        dispatch(received);
        dropEndedBatch();
    }
}

void MessageProcessor::dispatch(const ClientMessage& received) {
    const TarvekMessage& message = *received.message;
    if (log::isDebugEnabled()) log::debug(kDetailTag, "Received %s", messageText(message).c_str());
    switch (message.type_case()) {
        case TarvekMessage::kConnectionMessage:
            return clients_.handleConnectionMessage(received.clientId, message);
        case TarvekMessage::kProductProfileRequest:
            return handler_.productProfileRequest();
        case TarvekMessage::kSetCabsimSelection:
            return handler_.setCabsimSelection(message.setcabsimselection());
        case TarvekMessage::kGetCabsimSelection:
            return handler_.getCabsimSelection();
        case TarvekMessage::kFactoryIRListRequest:
            return handler_.factoryIRListRequest();
        case TarvekMessage::kCabsimIRListRequest:
            return handler_.cabsimIRListRequest();
        case TarvekMessage::kAssignFactoryIRToCabsim:
            return handler_.assignFactoryIRToCabsim(message.assignfactoryirtocabsim());
        case TarvekMessage::kAssignUserIRToCabsim:
            return handler_.assignUserIRToCabsim(message.assignuserirtocabsim());
        case TarvekMessage::kUserIRListRequest:
            return handler_.userIRListRequest();
        case TarvekMessage::kAddUserIR:
            return handler_.addUserIR(message.adduserir());
        case TarvekMessage::kMoveUserIR:
            return handler_.moveUserIR(message.moveuserir());
        case TarvekMessage::kRemoveUserIR:
            return handler_.removeUserIR(message.removeuserir());
        case TarvekMessage::kSaveCurrentState:
            return handler_.saveCurrentState();
        case TarvekMessage::kSyncCurrentState:
            return handler_.syncCurrentState();
        case TarvekMessage::kSetCabsimHpf:
            return handler_.setCabsimHpf(message.setcabsimhpf());
        case TarvekMessage::kSetCabsimLpf:
            return handler_.setCabsimLpf(message.setcabsimlpf());
        case TarvekMessage::kSetCabsimLevel:
            return handler_.setCabsimLevel(message.setcabsimlevel());
        case TarvekMessage::kCurrentFwRequest:
            return handler_.currentFwRequest();
        case TarvekMessage::kReverbTaperType:
            return handler_.reverbTaperType(message.reverbtapertype());
        case TarvekMessage::kVibratoChannelBright:
            return handler_.vibratoChannelBright(message.vibratochannelbright());
        case TarvekMessage::kReverbTaperTypeRequest:
            return handler_.reverbTaperTypeRequest();
        case TarvekMessage::kVibratoChannelBrightRequest:
            return handler_.vibratoChannelBrightRequest();
        case TarvekMessage::kGetCurrentAmplifier:
            return handler_.getCurrentAmplifier();
        case TarvekMessage::kFactoryRestoreRequest:
            return handler_.factoryRestoreRequest();
        default:
            TVK_ERROR_LIMITED(log_,
                              "Received unexpected message type while waiting for control message. Type: %u",
                              static_cast<unsigned>(message.type_case()));
    }
}

}  // namespace tvk
