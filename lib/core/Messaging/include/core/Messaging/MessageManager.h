// Messages out and in over a transport: encoder and framer towards the sender, composer and decoder behind
// the receiver.
//
// queueMessage, isSendQueueFull and getTakenCount: any thread. All else: the transport's thread.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <utility>

#include "core/Messaging/Bytes.h"
#include "core/Messaging/IDecoder.h"
#include "core/Messaging/IEncoder.h"
#include "core/Messaging/IReceiver.h"
#include "core/Messaging/ISender.h"
#include "core/Messaging/MessageComposer.h"
#include "core/Messaging/MessageFramer.h"
#include "core/Messaging/MessageRing.h"
#include "utility/LimitedLog.h"
#include "utility/Log.h"

namespace tvk {

template <typename Message>
class MessageManager {
public:
    // queueDepth: messages that may wait in each direction, at most 300. What is passed in outlives it.
    MessageManager(IEncoder<Message>& encoder, IDecoder<Message>& decoder, MessageFramer& framer,
                   MessageComposer& composer, ISender& sender, IReceiver& receiver, std::size_t queueDepth)
        : encoder_(encoder),
          decoder_(decoder),
          framer_(framer),
          composer_(composer),
          sender_(sender),
          receiver_(receiver),
          maxSendQueue_(queueDepth),
          maxReceiveQueue_(queueDepth),
          sendRing_(kRingSlots),
          receiveRing_(kRingSlots) {}
    MessageManager(const MessageManager&) = delete;
    MessageManager& operator=(const MessageManager&) = delete;

    // Encodes the message and lets it wait for its turn. False, with a line in the log, when too many wait or
    // when it does not encode.
    bool queueMessage(const Message& message) {
        if (isSendQueueFull()) return refuseSend();
        OwnedBytes bytes = encoder_.encode(&message);
        if (!bytes || bytes->empty()) {
            TVK_ERROR_LIMITED(log_, "Message failed to encode properly.");
            return false;
        }
        const std::lock_guard lock(sendMutex_);
        return (sendRing_.size() < maxSendQueue_ && sendRing_.push(std::move(bytes))) || refuseSend();
    }

    bool isSendQueueFull() const {
        const std::lock_guard lock(sendMutex_);
        return sendRing_.size() >= maxSendQueue_;
    }

    // Messages that have left the send queue since construction, to be sent or dropped: it moves when there
    // is room again.
    unsigned getTakenCount() const { return takenCount_.load(std::memory_order_relaxed); }

    // Sends the next frame of the message whose turn it is. NothingDone when there is nothing to send. A
    // frame that was not sent is tried again by the next call.
    TransportStatus sendNextFrame() {
        if (!sending_ && !takeNextMessage()) return TransportStatus::NothingDone;
        Bytes frame = framer_.getFrame(*sending_, frameIndex_);
        if (frame.empty()) {
            endMessage();
            return TransportStatus::NothingDone;
        }
        const bool isLast = frame.front() == frame::kEndTag;
        const TransportStatus status = sender_.send(&frame);
        if (status != TransportStatus::Success) return status;
        if (isLast)
            endMessage();
        else
            ++frameIndex_;
        return status;
    }

    // Whether sendNextFrame has anything to send.
    bool hasFrameToSend() const {
        const std::lock_guard lock(sendMutex_);
        return sending_ || sendRing_.size() > 0;
    }

    // Takes the oldest frame from the receiver, if there is one. Messages that it completes wait for
    // retrieveMessage.
    void receiveFrame() {
        const OwnedBytes frame = receiver_.pop();
        if (!frame || !composer_.addFrame(*frame)) return;
        while (composer_.messageWaiting())
            queueReceived(decoder_.decode(composer_.popMessage().get()));
    }

    bool messageWaiting() const { return receiveRing_.size() > 0; }
    bool isReceiveQueueFull() const { return receiveRing_.size() >= maxReceiveQueue_; }

    // The oldest received message; null, with a line in the log, when none waits.
    std::unique_ptr<Message> retrieveMessage() {
        std::unique_ptr<Message> message;
        if (!receiveRing_.pop(message)) {
            TVK_ERROR_LIMITED(log_, "Tried to retrieve a message while msgWaiting == false.");
            return nullptr;
        }
        if (!message) TVK_ERROR_LIMITED(log_, "Nullptr message popped off queue.");
        return message;
    }

    // Drops the message in progress, both queues and what is partly assembled.
    void reset() {
        endMessage();
        composer_.reset();
        receiveRing_.clear();
        const std::lock_guard lock(sendMutex_);
        takenCount_.fetch_add(static_cast<unsigned>(sendRing_.size()), std::memory_order_relaxed);
        sendRing_.clear();
    }

private:
    static constexpr std::size_t kRingSlots = 301;

    bool refuseSend() {
        TVK_WARN_LIMITED(log_, "Tried to send a message while queue is full.");
        return false;
    }

    // False when there is none that can be sent.
    bool takeNextMessage() {
        {
            const std::lock_guard lock(sendMutex_);
            if (!sendRing_.pop(sending_)) return false;
        }
        takenCount_.fetch_add(1, std::memory_order_relaxed);
        if (!sending_) {
            TVK_WARN_LIMITED(log_, "Popped a nullptr off messageSendQueue. Returning.");
            return false;
        }
        if (sending_->empty() || sending_->size() > framer_.getMaxMessageSize()) {
            TVK_ERROR_LIMITED(log_, "Tried to send an under or oversized message.");
            endMessage();
            return false;
        }
        return true;
    }

    void endMessage() {
        sending_.reset();
        frameIndex_ = 0;
    }

    void queueReceived(std::unique_ptr<Message> message) {
        if (!message)
            TVK_ERROR_LIMITED(log_, "Message failed to decode properly.");
        else if (isReceiveQueueFull() || !receiveRing_.push(std::move(message)))
            TVK_ERROR_LIMITED(log_, "Tried to push message into full queue.");
    }

    IEncoder<Message>& encoder_;
    IDecoder<Message>& decoder_;
    MessageFramer& framer_;
    MessageComposer& composer_;
    ISender& sender_;
    IReceiver& receiver_;
    const std::size_t maxSendQueue_;
    const std::size_t maxReceiveQueue_;
    LimitedLog log_;

    mutable std::mutex sendMutex_;
    MessageRing<OwnedBytes> sendRing_;
    std::atomic<unsigned> takenCount_{0};
    OwnedBytes sending_;
    std::size_t frameIndex_ = 0;
    MessageRing<std::unique_ptr<Message>> receiveRing_;
};

}  // namespace tvk
