// A HID link in memory: the amplifier's transport at one end, the client's link at the other. A report each
// way in a millisecond, as on the desk.
#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <utility>

#include "client/Link.h"
#include "proj/network/ClientTransport.h"

class MemoryHid {
public:
    using Report = tvk::client::Report;

    tvk::ClientTransport transport() {
        return {"memory", std::make_unique<Device>(), std::make_unique<Sender>(*this),
                std::make_unique<Receiver>(*this)};
    }
    std::unique_ptr<tvk::client::Link> link() { return std::make_unique<HostLink>(*this); }

    // The host has stopped reading.
    void stopHost() {
        const std::lock_guard lock(mutex_);
        isHostReading_ = false;
    }

    // A millisecond has passed.
    void tick() {
        const std::lock_guard lock(mutex_);
        ++elapsedMs_;
        if (fromHost_.empty()) return;
        toDevice_.push_back(fromHost_.front());
        fromHost_.pop_front();
    }

    int elapsedMs() const {
        const std::lock_guard lock(mutex_);
        return elapsedMs_;
    }

private:
    static constexpr std::size_t kHostQueue = 40;
    static constexpr std::size_t kFrameBytes = 63;

    class Device final : public tvk::IDevice {
    public:
        bool open(const std::string&) override { return isOpen_ = true; }
        bool isOpen() const override { return isOpen_; }
        void close() override { isOpen_ = false; }

    private:
        bool isOpen_ = false;
    };

    class Sender final : public tvk::ISender {
    public:
        explicit Sender(MemoryHid& hid) : hid_(hid) {}
        tvk::TransportStatus send(tvk::Bytes* frame) override {
            const std::lock_guard lock(hid_.mutex_);
            if (!hid_.isHostReading_) return tvk::TransportStatus::NothingDone;
            Report report{};
            std::copy(frame->begin(), frame->end(), report.begin() + 1);
            hid_.toHost_.push_back(report);
            return tvk::TransportStatus::Success;
        }
        std::size_t getMaxFrameSize() const override { return kFrameBytes; }

    private:
        MemoryHid& hid_;
    };

    class Receiver final : public tvk::IReceiver {
    public:
        explicit Receiver(MemoryHid& hid) : hid_(hid) {}
        tvk::TransportStatus receive() override {
            const std::lock_guard lock(hid_.mutex_);
            if (hid_.toDevice_.empty()) return tvk::TransportStatus::NothingDone;
            frames_.emplace_back(hid_.toDevice_.front().begin(),
                                 hid_.toDevice_.front().begin() + kFrameBytes);
            hid_.toDevice_.pop_front();
            return tvk::TransportStatus::Success;
        }
        tvk::OwnedBytes pop() override {
            if (frames_.empty()) return nullptr;
            auto frame = std::make_unique<tvk::Bytes>(std::move(frames_.front()));
            frames_.pop_front();
            return frame;
        }
        void flush() override {}
        std::size_t getMaxFrameSize() const override { return kFrameBytes; }

    private:
        MemoryHid& hid_;
        std::deque<tvk::Bytes> frames_;
    };

    class HostLink final : public tvk::client::Link {
    public:
        explicit HostLink(MemoryHid& hid) : hid_(hid) {}
        bool send(const Report& report) override {
            const std::lock_guard lock(hid_.mutex_);
            if (hid_.fromHost_.size() >= kHostQueue) return false;
            hid_.fromHost_.push_back(report);
            return true;
        }
        bool receive(Report& report, std::chrono::milliseconds) override {
            const std::lock_guard lock(hid_.mutex_);
            if (hid_.toHost_.empty()) return false;
            report = hid_.toHost_.front();
            hid_.toHost_.pop_front();
            return true;
        }

    private:
        MemoryHid& hid_;
    };

    mutable std::mutex mutex_;
    std::deque<Report> fromHost_;  // the host has sent, the wire has not carried
    std::deque<Report> toDevice_;
    std::deque<Report> toHost_;
    bool isHostReading_ = true;
    int elapsedMs_ = 0;
};
