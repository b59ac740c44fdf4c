// A transport in the test's hand: what the amplifier sent, what a client sends, and how the link behaves.
#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "TarvekMessage.pb.h"
#include "core/Messaging/MessageComposer.h"
#include "core/Messaging/MessageFramer.h"
#include "proj/network/ClientTransport.h"

// The state of the link, which outlives the transport. Any thread.
class FakeLink {
public:
    static constexpr std::size_t kFrameSize = 63;
    static constexpr std::size_t kMessageSize = 32768;

    // Of every send from now on.
    std::atomic<tvk::TransportStatus> sendStatus{tvk::TransportStatus::Success};
    // A client that keeps talking: every pass hears a frame, which holds nothing.
    std::atomic<bool> isTalking{false};

    void send(const TarvekMessage& message) {
        const std::string text = message.SerializeAsString();
        sendBytes(tvk::Bytes(text.begin(), text.end()));
    }

    // A message as it goes over the wire, before it is cut into frames.
    void sendBytes(const tvk::Bytes& bytes) {
        const std::lock_guard lock(mutex_);
        tvk::Bytes frame;
        for (std::size_t i = 0; !(frame = framer_.getFrame(bytes, i)).empty(); ++i)
            toAmplifier_.push_back(frame);
    }

    void sendFrame(const tvk::Bytes& frame) {
        const std::lock_guard lock(mutex_);
        toAmplifier_.push_back(frame);
    }

    // Frames that the amplifier has not taken yet.
    std::size_t waitingFrames() const {
        const std::lock_guard lock(mutex_);
        return toAmplifier_.size();
    }

    std::size_t sentFrames() const {
        const std::lock_guard lock(mutex_);
        return sentFrames_;
    }

    // What has come from the amplifier since the last call.
    std::vector<TarvekMessage> takeReplies() {
        const std::lock_guard lock(mutex_);
        replyBytes_.clear();
        return std::exchange(replies_, {});
    }

    // The same, of which there is one at least: returns when it has come.
    std::vector<TarvekMessage> awaitReplies() {
        std::unique_lock lock(mutex_);
        replied_.wait(lock, [this] { return !replies_.empty(); });
        replyBytes_.clear();
        return std::exchange(replies_, {});
    }

    // The same as it went over the wire.
    std::vector<tvk::Bytes> awaitReplyBytes() {
        std::unique_lock lock(mutex_);
        replied_.wait(lock, [this] { return !replyBytes_.empty(); });
        replies_.clear();
        return std::exchange(replyBytes_, {});
    }

    tvk::ClientTransport transport() {
        return {"link", std::make_unique<Device>(*this), std::make_unique<Sender>(*this),
                std::make_unique<Receiver>(*this)};
    }

    // Whether it opens.
    std::atomic<bool> isPlugged{true};
    std::atomic<int> opened{0};

private:
    class Device final : public tvk::IDevice {
    public:
        explicit Device(FakeLink& link) : link_(link) {}
        bool open(const std::string&) override {
            isOpen_ = link_.isPlugged.load();
            link_.opened += isOpen_ ? 1 : 0;
            return isOpen_;
        }
        bool isOpen() const override { return isOpen_; }
        void close() override { isOpen_ = false; }

    private:
        FakeLink& link_;
        bool isOpen_ = false;
    };

    class Sender final : public tvk::ISender {
    public:
        explicit Sender(FakeLink& link) : link_(link) {}
        tvk::TransportStatus send(tvk::Bytes* frame) override {
            const tvk::TransportStatus status = link_.sendStatus.load();
            if (status == tvk::TransportStatus::Success) link_.take(*frame);
            return status;
        }
        std::size_t getMaxFrameSize() const override { return kFrameSize; }

    private:
        FakeLink& link_;
    };

    class Receiver final : public tvk::IReceiver {
    public:
        explicit Receiver(FakeLink& link) : link_(link) {}
        tvk::TransportStatus receive() override {
            if (!link_.isPlugged) return tvk::TransportStatus::DeviceGone;
            const std::lock_guard lock(link_.mutex_);
            isEmptyTalk_ = link_.toAmplifier_.empty() && link_.isTalking && !isEmptyTalk_;
            return link_.toAmplifier_.empty() && !isEmptyTalk_ ? tvk::TransportStatus::NothingDone
                                                               : tvk::TransportStatus::Success;
        }
        bool hasInput() const override {
            const std::lock_guard lock(link_.mutex_);
            return !link_.isPlugged || link_.isTalking || !link_.toAmplifier_.empty();
        }
        tvk::OwnedBytes pop() override {
            const std::lock_guard lock(link_.mutex_);
            if (isEmptyTalk_ || link_.toAmplifier_.empty()) return nullptr;
            auto frame = std::make_unique<tvk::Bytes>(link_.toAmplifier_.front());
            link_.toAmplifier_.pop_front();
            return frame;
        }
        void flush() override {}
        std::size_t getMaxFrameSize() const override { return kFrameSize; }

    private:
        FakeLink& link_;
        bool isEmptyTalk_ = false;
    };

    void take(const tvk::Bytes& frame) {
        const std::lock_guard lock(mutex_);
        ++sentFrames_;
        if (!composer_.addFrame(frame)) return;
        const tvk::OwnedBytes bytes = composer_.popMessage();
        TarvekMessage message;
        message.ParseFromArray(bytes->data(), static_cast<int>(bytes->size()));
        replies_.push_back(message);
        replyBytes_.push_back(*bytes);
        replied_.notify_all();
    }

    mutable std::mutex mutex_;
    tvk::MessageFramer framer_{kFrameSize, kMessageSize, tvk::CompositionMode::Framed};
    tvk::MessageComposer composer_{kFrameSize, kMessageSize, tvk::CompositionMode::Framed};
    std::condition_variable replied_;
    std::deque<tvk::Bytes> toAmplifier_;
    std::vector<TarvekMessage> replies_;
    std::vector<tvk::Bytes> replyBytes_;
    std::size_t sentFrames_ = 0;
};
