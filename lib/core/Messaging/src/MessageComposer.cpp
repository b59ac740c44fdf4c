#include "core/Messaging/MessageComposer.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace tvk {

MessageComposer::MessageComposer(std::size_t maxFrameSize, std::size_t maxMessageSize, CompositionMode mode)
    : maxFrameSize_(maxFrameSize),
      maxPayloadSize_(frame::payloadRoom(maxFrameSize)),
      maxMessageSize_(maxMessageSize),
      mode_(mode),
      assembly_(maxMessageSize) {}

bool MessageComposer::addFrame(const Bytes& frame) {
    switch (mode_) {
        case CompositionMode::Framed:
            return addWholeFrame(frame);
        case CompositionMode::Streaming: {
            bool isFinished = false;
            for (const std::uint8_t byte : frame)
                isFinished = addByte(byte, frame.size()) || isFinished;
            return isFinished;
        }
    }
    TVK_ERROR_LIMITED(log_, "Composer is in unexpected composition mode.");
    return false;
}

OwnedBytes MessageComposer::popMessage() {
    if (messages_.empty()) return nullptr;
    OwnedBytes message = std::move(messages_.front());
    messages_.pop_front();
    return message;
}

void MessageComposer::reset() {
    reject();
    messages_.clear();
}

bool MessageComposer::addWholeFrame(const Bytes& frame) {
    if (frame.size() <= frame::kHeaderSize) {
        TVK_ERROR_LIMITED(log_, "Received a malformed or empty message.");
        return reject();
    }
    const std::uint8_t tag = frame[0];
    const std::size_t payloadSize = static_cast<std::size_t>(frame[1]) << 8 | frame[2];
    if (!isFrameGood(frame, tag, payloadSize)) return reject();
    std::copy_n(frame.data() + frame::kHeaderSize, payloadSize, assembly_.data() + assembledSize_);
    assembledSize_ += payloadSize;
    return tag == frame::kEndTag && finishMessage();
}

bool MessageComposer::isFrameGood(const Bytes& frame, std::uint8_t tag, std::size_t payloadSize) {
    if (frame.size() > maxFrameSize_) {
        TVK_ERROR_LIMITED(log_, "Frame too large. Frame size: %u, max frame size: %u",
                          static_cast<unsigned>(frame.size()), static_cast<unsigned>(maxFrameSize_));
        return false;
    }
    if (tag < frame::kStartTag || tag > frame::kEndTag) {
        TVK_ERROR_LIMITED(log_,
                          "Received message's type is not valid. (type = %u, size = %u).\nReturning false.",
                          static_cast<unsigned>(tag), static_cast<unsigned>(frame.size()));
        return false;
    }
    if (assembledSize_ + payloadSize > maxMessageSize_) {
        TVK_ERROR_LIMITED(log_, "Received message is too large. Returning false.");
        return false;
    }
    // The second half is a frame that ends before its payload does.
    if (payloadSize > maxPayloadSize_ || payloadSize > frame.size() - frame::kHeaderSize) {
        TVK_ERROR_LIMITED(log_, "Payload size too large. Returning false.");
        return false;
    }
    if (payloadSize == 0) {
        TVK_ERROR_LIMITED(log_, "Payload size is 0. Returning false.");
        return false;
    }
    const bool isInProgress = assembledSize_ > 0;
    if (tag == frame::kStartTag && isInProgress) {
        TVK_ERROR_LIMITED(
            log_,
            "Received a start frame while already composing a message. This could mean that an end "
            "frame wasdropped. Returning false.");
        return false;
    }
    if (tag == frame::kContinueTag && !isInProgress) {
        TVK_ERROR_LIMITED(
            log_,
            "Received a continue frame while not composing a message. This could mean that a start "
            "frame wasdropped. Returning false.");
        return false;
    }
    return true;
}

bool MessageComposer::addByte(std::uint8_t byte, std::size_t dataSize) {
    const std::size_t index = compositionIndex_;
    if (index == std::numeric_limits<std::uint16_t>::max()) {
        TVK_ERROR_LIMITED(
            log_, "Unexpected situation during composition. compositionIndex: %u, data size: %u, byte: %x",
            static_cast<unsigned>(index), static_cast<unsigned>(dataSize), static_cast<unsigned>(byte));
        return reject();
    }
    ++compositionIndex_;
    if (index == 0 && byte != frame::kEndTag) {
        TVK_ERROR_LIMITED(log_, "Wrong type received. Type: %u", static_cast<unsigned>(byte));
        return reject();
    }
    if (index == 1) payloadSize_ = static_cast<std::size_t>(byte) << 8;
    if (index == 2) {
        payloadSize_ |= byte;
        return isSizeGood() ? false : reject();
    }
    if (index < frame::kHeaderSize) return false;
    assembly_[assembledSize_++] = byte;
    return assembledSize_ == payloadSize_ && finishMessage();
}

bool MessageComposer::isSizeGood() {
    if (payloadSize_ > std::min(maxPayloadSize_, maxMessageSize_)) {
        TVK_ERROR_LIMITED(log_, "Payload size is too large.");
        return false;
    }
    if (payloadSize_ == 0) {
        TVK_ERROR_LIMITED(log_, "Payload size is 0. Returning false.");
        return false;
    }
    return true;
}

bool MessageComposer::reject() {
    assembledSize_ = 0;
    compositionIndex_ = 0;
    payloadSize_ = 0;
    return false;
}

bool MessageComposer::finishMessage() {
    messages_.push_back(std::make_unique<Bytes>(
        assembly_.begin(), assembly_.begin() + static_cast<Bytes::difference_type>(assembledSize_)));
    reject();
    return true;
}

}  // namespace tvk
