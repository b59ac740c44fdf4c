#include "desk/OutputWriter.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <pthread.h>
#include <utility>

#include "desk/DeskReport.h"

namespace tvk::desk {

namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr int kFeeds = 2;
constexpr std::size_t kFramesAtOnce = 4096;
constexpr std::chrono::milliseconds kNap{10};
constexpr std::chrono::milliseconds kUpdateInterval{250};

static_assert(sizeof(FrameRing::Frame) == kFeeds * sizeof(float), "frames are written as they lie in memory");

}  // namespace

OutputWriter::OutputWriter(VirtualCard& card, const BlockStatistics& blocks, const JobStatistics& jobs,
                           std::optional<std::string> wavPath, std::optional<std::string> reportPath)
    : card_(card), blocks_(blocks), jobs_(jobs), reportPath_(std::move(reportPath)), xruns_([] {
          return 0L;
      }) {
    saveReport();
    if (!wavPath) return;
    try {
        wav_.emplace(*wavPath, static_cast<int>(card.settings().rateHz), kFeeds);
        wav_->flush();
    } catch (...) {
        if (reportPath_) std::remove(reportPath_->c_str());
        throw;
    }
}

OutputWriter::~OutputWriter() {
    isRunning_.store(false, std::memory_order_relaxed);
    if (thread_.joinable()) thread_.join();
}

void OutputWriter::start(std::function<long()> xruns) {
    xruns_ = std::move(xruns);
    isRunning_.store(true, std::memory_order_relaxed);
    thread_ = std::thread([this] {
        pthread_setname_np(pthread_self(), "DeskWriter");
        try {
            run();
        } catch (...) {
            failure_ = std::current_exception();
            hasFailed_.store(true, std::memory_order_relaxed);
            // The card goes on and its output with it: under the virtual clock it would wait for room.
            while (isRunning_.load(std::memory_order_relaxed)) {
                std::array<FrameRing::Frame, kFramesAtOnce> lost;
                while (card_.takeOutput(lost.data(), lost.size()) > 0) {
                }
                std::this_thread::sleep_for(kNap);
            }
        }
    });
}

void OutputWriter::run() {
    SteadyClock::time_point nextUpdate = SteadyClock::now();
    while (isRunning_.load(std::memory_order_relaxed)) {
        takeOutput();
        if (SteadyClock::now() >= nextUpdate) {
            if (wav_) wav_->flush();
            saveReport();
            nextUpdate = SteadyClock::now() + kUpdateInterval;
        }
        std::this_thread::sleep_for(kNap);
    }
}

void OutputWriter::finish() {
    isRunning_.store(false, std::memory_order_relaxed);
    if (thread_.joinable()) thread_.join();
    if (failure_) std::rethrow_exception(failure_);
    takeOutput();
    if (wav_) wav_->close();
    saveReport();
}

void OutputWriter::takeOutput() {
    std::array<FrameRing::Frame, kFramesAtOnce> frames;
    while (const std::size_t count = card_.takeOutput(frames.data(), frames.size())) {
        levels_.add(frames.data(), count);
        if (wav_) wav_->write(&frames[0].speaker, count);
    }
}

void OutputWriter::saveReport() {
    if (!reportPath_) return;
    const DeskReport report{
        static_cast<int>(card_.settings().rateHz), xruns_(), levels_, blocks_, jobs_, card_.wakeLateness()};
    report.save(*reportPath_);
}

}  // namespace tvk::desk
