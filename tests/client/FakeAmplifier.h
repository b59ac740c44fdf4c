// An amplifier at the other end of a socket, in a time that passes only while the client waits.
//
// It speaks through the amplifier's own codec, moves one report each way in a millisecond, keeps the rules of
// the connection, and answers as the test has told it to.
#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

#include "TarvekMessage.pb.h"
#include "TarvekMessage/PbDecoder.h"
#include "TarvekMessage/PbEncoder.h"
#include "client/ClientClock.h"
#include "client/Link.h"
#include "client/SocketLink.h"
#include "core/Messaging/MessageComposer.h"
#include "core/Messaging/MessageFramer.h"

class FakeAmplifier {
public:
    using Messages = std::vector<TarvekMessage>;
    using Nanoseconds = std::chrono::nanoseconds;

    FakeAmplifier() : link_(newLink()) {}
    ~FakeAmplifier() { hangUp(); }
    FakeAmplifier(const FakeAmplifier&) = delete;
    FakeAmplifier& operator=(const FakeAmplifier&) = delete;

    // A host program comes, in place of the one before.
    std::unique_ptr<tvk::client::Link> newLink() {
        int ends[2];
        if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends) != 0)
            throw std::runtime_error("socketpair");
        hangUp();
        socket_ = ends[0];
        return std::make_unique<tvk::client::SocketLink>(tvk::client::Descriptor(ends[1]), "fake");
    }
    tvk::client::Link& link() { return *link_; }

    // What is said to a message on an open connection.
    std::function<Messages(const TarvekMessage& request)> answer = [](const TarvekMessage&) {
        return Messages();
    };

    // What is said when a heartbeat comes.
    Messages onHeartbeat;

    // When the connection ends without anybody's doing, as by a restart.
    std::optional<Nanoseconds> lapseAt;

    void say(const TarvekMessage& message) {
        const tvk::OwnedBytes bytes = encoder_.encode(&message);
        tvk::Bytes frame;
        for (std::size_t i = 0; !(frame = framer_.getFrame(*bytes, i)).empty(); ++i)
            sayFrame(frame);
    }

    void sayFrame(const tvk::Bytes& frame) {
        tvk::Bytes report(1, 0);
        report.insert(report.end(), frame.begin(), frame.end());
        report.resize(64);
        outgoing_.push_back(report);
    }

    // Any packet at all.
    void sayBytes(const tvk::Bytes& bytes) { outgoing_.push_back(bytes); }

    void hangUp() {
        if (socket_ != -1) close(socket_);
        socket_ = -1;
    }

    // Takes nothing and says nothing from now on.
    void unplug() { isUnplugged_ = true; }

    // One millisecond.
    void tick() {
        now_ += std::chrono::milliseconds(1);
        if (isUnplugged_ || socket_ == -1) return;
        if (isOpen && now_ - lastHeard_ > std::chrono::seconds(5)) isOpen = false;
        if (lapseAt && now_ >= *lapseAt) {
            isOpen = false;
            lapseAt.reset();
        }
        tvk::Bytes report(65);
        const ssize_t size = recv(socket_, report.data(), report.size(), 0);
        if (size > 0) hear(report, static_cast<std::size_t>(size));
        if (outgoing_.empty()) return;
        if (::send(socket_, outgoing_.front().data(), outgoing_.front().size(), MSG_NOSIGNAL) > 0)
            outgoing_.pop_front();
    }

    // Sets what the amplifier has of an unfinished message.
    void leaveUnfinished() { composer_.addFrame(framer_.getFrame(tvk::Bytes(61, 1), 0)); }

    Nanoseconds now() const { return now_; }

    bool isOpen = false;
    Messages received;
    std::vector<Nanoseconds> receivedAt;
    std::size_t reports = 0;

private:
    void hear(tvk::Bytes& report, std::size_t size) {
        ASSERT_EQ(size, 64u) << "not a report";
        ++reports;
        lastHeard_ = now_;
        report.resize(63);
        if (!composer_.addFrame(report)) return;
        const tvk::OwnedBytes bytes = composer_.popMessage();
        const std::unique_ptr<TarvekMessage> message = decoder_.decode(bytes.get());
        if (!message) return;
        received.push_back(*message);
        receivedAt.push_back(now_);
        respond(*message);
    }

    void respond(const TarvekMessage& message) {
        TarvekMessage reply;
        reply.set_ignore_this_padding(true);
        ConnectionMessage& connection = *reply.mutable_connectionmessage();
        const bool isRequest = message.connectionmessage().has_connectionrequest();
        if (isRequest && !isOpen) {
            isOpen = true;
            connection.mutable_connectionresponse()->set_clientid(1);
            say(reply);
        } else if (isRequest || !isOpen) {
            connection.mutable_connectionerror()->set_errorenum(isRequest ? 1 : 2);
            say(reply);
        } else {
            const bool isHeartbeat = message.connectionmessage().has_connectionheartbeat();
            for (const TarvekMessage& each : isHeartbeat ? onHeartbeat : answer(message))
                say(each);
        }
    }

    int socket_ = -1;
    std::unique_ptr<tvk::client::Link> link_;
    tvk::PbEncoder<TarvekMessage> encoder_{32768};
    tvk::PbDecoder<TarvekMessage> decoder_{32768};
    tvk::MessageFramer framer_{63, 32768, tvk::CompositionMode::Framed};
    tvk::MessageComposer composer_{63, 32768, tvk::CompositionMode::Framed};
    std::deque<tvk::Bytes> outgoing_;
    Nanoseconds now_{0};
    Nanoseconds lastHeard_{0};
    bool isUnplugged_ = false;
};

// The amplifier's time.
class FakeClock final : public tvk::client::ClientClock {
public:
    explicit FakeClock(FakeAmplifier& amplifier) : amplifier_(amplifier) {}

    std::chrono::nanoseconds now() override { return amplifier_.now(); }
    bool runsByItself() const override { return false; }
    bool receive(tvk::client::Link& link, tvk::client::Report& report,
                 std::chrono::milliseconds limit) override {
        for (std::chrono::milliseconds waited{0}; !link.receive(report, std::chrono::milliseconds(0));
             waited += std::chrono::milliseconds(1)) {
            if (waited >= limit) return false;
            amplifier_.tick();
        }
        return true;
    }

private:
    FakeAmplifier& amplifier_;
};
