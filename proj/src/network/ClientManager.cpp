#include "proj/network/ClientManager.h"

#include <utility>

#include "TarvekMessage.pb.h"
#include "TarvekMessage/MessageText.h"
#include "TarvekMessage/PbDecoder.h"
#include "TarvekMessage/PbEncoder.h"
#include "proj/network/ClientMessage.h"
#include "utility/Clock.h"
#include "utility/Log.h"
#include "utility/ThreadSched.h"

namespace tvk {

namespace {

constexpr const char* kTag = "ClientManager";
constexpr const char* kDetailTag = "DetailedClientManager";

constexpr std::size_t kMaxMessageSize = 32768;
constexpr std::size_t kQueueDepth = 15;
constexpr std::chrono::milliseconds kTick{1};
constexpr std::chrono::seconds kLongestSilence{5};
constexpr std::chrono::seconds kLongestWaitForRoom{1};
constexpr std::uint64_t kNoVainWait = ~std::uint64_t{0};

constexpr int kCpu = 0;
constexpr int kFifo = 1;
constexpr int kPriority = 40;

void logMessage(const char* how, const TarvekMessage& message) {
    if (!log::isDebugEnabled()) return;
    log::debug(kDetailTag, "%s over HID", how);
    log::debug(kDetailTag, "[HID] %s %s", how, messageText(message).c_str());
}

}  // namespace

struct ClientManager::Codec {
    explicit Codec(std::size_t maxFrameSize)
        : framer(maxFrameSize, kMaxMessageSize, CompositionMode::Framed),
          composer(maxFrameSize, kMaxMessageSize, CompositionMode::Framed),
          encoder(kMaxMessageSize),
          decoder(kMaxMessageSize) {}

    MessageFramer framer;
    MessageComposer composer;
    PbEncoder<TarvekMessage> encoder;
    PbDecoder<TarvekMessage> decoder;
};

ClientManager::ClientManager(const std::string& hidDevice) : ClientManager(hidTransport(hidDevice)) {}

ClientManager::ClientManager(ClientTransport transport)
    : transport_(std::move(transport)),
      codec_(std::make_unique<Codec>(transport_.sender->getMaxFrameSize())),
      messages_(codec_->encoder, codec_->decoder, codec_->framer, codec_->composer, *transport_.sender,
                *transport_.receiver, kQueueDepth),
      takenAtVainWait_(kNoVainWait),
      thread_(ThreadSched::start([this] { run(); }, "ClientManager", kFifo, kPriority, kCpu)) {
    log::debug(kTag, "ClientManager started successfully.");
}

ClientManager::~ClientManager() {
    exitFlag_.store(true, std::memory_order_relaxed);
    thread_.join();
}

bool ClientManager::isConnectionOpen(int clientId) const {
    return clientId == kClientId && getConnectionChanges() % 2 == 1;
}

void ClientManager::addObserver(ClientObserver* observer, int clientId) {
    if (clientId == kClientId) observers_.add(observer);
}

void ClientManager::removeObserver(ClientObserver* observer) {
    observers_.removeCallee(observer);
}

bool ClientManager::send(int clientId, const TarvekMessage& message) {
    if (clientId != kClientId) {
        TVK_ERROR_LIMITED(log_, "Tried to send message to invalid client. ClientId: %u",
                          static_cast<unsigned>(clientId));
        return false;
    }
    logMessage("Sending", message);
    waitForRoom();
    return queue(message);
}

bool ClientManager::broadcast(const TarvekMessage& message) {
    if (!isConnectionOpen(kClientId)) return true;
    logMessage("Broadcasting", message);
    waitForRoom();
    // Who has gone meanwhile is not owed a reply, and the next client has not asked.
    return !isConnectionOpen(kClientId) || queue(message);
}

bool ClientManager::queue(const TarvekMessage& message) {
    if (messages_.queueMessage(message)) return true;
    TVK_ERROR_LIMITED(log_, "Failed to send message.");
    return false;
}

// A batch has more replies than the queue holds; who carries it out can wait, the frames go on meanwhile.
void ClientManager::waitForRoom() {
    if (std::this_thread::get_id() == thread_.get_id()) return;
    Clock& clock = Clock::current();
    const Nanoseconds end = clock.now() + kLongestWaitForRoom;
    while (messages_.isSendQueueFull() && isConnectionOpen(kClientId) &&
           !areWaitsOver_.load(std::memory_order_relaxed)) {
        const unsigned taken = messages_.getTakenCount();
        if (taken == takenAtVainWait_.load(std::memory_order_relaxed)) return;
        if (clock.now() >= end) {
            takenAtVainWait_.store(taken, std::memory_order_relaxed);
            return;
        }
        clock.sleepFor(kTick);
    }
}

void ClientManager::handleConnectionMessage(int clientId, const TarvekMessage& message) {
    const ConnectionMessage& request = message.connectionmessage();
    if (request.has_connectionrequest() && !isConnectionOpen(clientId)) {
        answerConnectionRequest(clientId);
    } else if (request.has_connectionheartbeat()) {
        log::debug(kTag, "Heartbeat received from client with ID: %d", clientId);
        hear();
    } else {
        TVK_ERROR_LIMITED(
            log_,
            "Received unexpected message type while waiting for control message. Originator: %d. Type: %u",
            clientId, static_cast<unsigned>(request.type_case()));
    }
}

void ClientManager::answerConnectionRequest(int clientId) {
    log::debug(kTag, "Connection request received. Sending response to client with ID: %d", clientId);
    TarvekMessage response;
    response.set_ignore_this_padding(true);
    response.mutable_connectionmessage()->mutable_connectionresponse()->set_clientid(clientId);
    send(clientId, response);
    if (clientId != kClientId) return;
    // The request may have waited for longer than a client may be silent.
    hear();
    changes_.fetch_add(1, std::memory_order_acq_rel);
    observers_.forEach([](ClientObserver* observer) { observer->connectionStateChanged(true); });
    hear();
}

void ClientManager::hear() {
    lastHeard_.store(Clock::current().now().count(), std::memory_order_relaxed);
}

bool ClientManager::popMessage(ClientMessage& message) {
    if (!toProcessor_.pop(message)) return false;
    waitingMessages_.fetch_sub(1, std::memory_order_relaxed);
    waitingBytes_.fetch_sub(message.bytes, std::memory_order_relaxed);
    return true;
}

void ClientManager::run() {
    log::debug(kTag, "ClientManager thread started.");
    while (!exitFlag_.load(std::memory_order_relaxed)) {
        servicePass();
        dropSilentClient();
        Clock::current().sleepUntilWork(kTick, [this] { return hasWork(); });
    }
}

bool ClientManager::hasWork() const {
    return exitFlag_.load(std::memory_order_relaxed) || !transport_.device->isOpen() ||
           messages_.hasFrameToSend() || messages_.messageWaiting() || transport_.receiver->hasInput() ||
           isClientSilent();
}

void ClientManager::servicePass() {
    if (!transport_.device->isOpen()) {
        if (!transport_.device->open(transport_.devicePath)) return;
        messages_.reset();
    }
    const TransportStatus sent = messages_.sendNextFrame();
    if (sent == TransportStatus::DeviceGone) {
        TVK_WARN_LIMITED(log_, "Transport communication problem.");
        closeDevice();
    } else if (sent == TransportStatus::Error) {
        TVK_ERROR_LIMITED(log_, "Failed to send.");
        closeDevice();
    } else {
        receivePass();
    }
    handOverOne();
}

void ClientManager::receivePass() {
    TransportStatus status = TransportStatus::NothingDone;
    // What finds no room stays on the link, and the host waits.
    while (!messages_.isReceiveQueueFull() && !exitFlag_.load(std::memory_order_relaxed) &&
           (status = transport_.receiver->receive()) == TransportStatus::Success) {
        messages_.receiveFrame();
        hear();
    }
    if (status == TransportStatus::DeviceGone) {
        TVK_WARN_LIMITED(log_, "Transport communication problem.");
        closeDevice();
    } else if (status == TransportStatus::Error) {
        TVK_ERROR_LIMITED(log_, "Failed to send.");
        closeDevice();
    }
}

void ClientManager::closeDevice() {
    transport_.device->close();
    messages_.reset();
}

void ClientManager::handOverOne() {
    if (!messages_.messageWaiting()) return;
    ClientMessage received{kClientId, messages_.retrieveMessage(), 0};
    if (!received.message) {
        TVK_ERROR_LIMITED(log_, "Received a nullptr message.");
        return;
    }
    received.bytes = received.message->SpaceUsedLong();
    if (!ClientMessageLimit::hasRoom(waitingMessages_.load(std::memory_order_relaxed),
                                     waitingBytes_.load(std::memory_order_relaxed), received.bytes)) {
        TVK_ERROR_LIMITED(log_, "Tried to push message into full queue.");
        return;
    }
    waitingMessages_.fetch_add(1, std::memory_order_relaxed);
    waitingBytes_.fetch_add(received.bytes, std::memory_order_relaxed);
    toProcessor_.push(std::move(received));
}

bool ClientManager::isClientSilent() const {
    if (!isConnectionOpen(kClientId)) return false;
    const Nanoseconds silence =
        Clock::current().now() - Nanoseconds(lastHeard_.load(std::memory_order_relaxed));
    return silence > kLongestSilence;
}

void ClientManager::dropSilentClient() {
    if (!isClientSilent()) return;
    log::debug(kTag, "HID client disconnected due to timeout.");
    // In this order the reset cannot take the response to a client that comes right now.
    messages_.reset();
    changes_.fetch_add(1, std::memory_order_acq_rel);
    observers_.forEach([](ClientObserver* observer) { observer->connectionStateChanged(false); });
}

}  // namespace tvk
