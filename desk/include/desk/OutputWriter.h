// Takes the card's output and brings it, its levels and the report to disk, away from the audio thread.
//
// Every quarter of a second the WAV's header and the report are brought up to date, since the process may end
// at any moment.
#pragma once

#include <atomic>
#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <thread>

#include "desk/BlockStatistics.h"
#include "desk/JobStatistics.h"
#include "desk/LevelMeter.h"
#include "desk/soundcard/VirtualCard.h"
#include "wav/WavWriter.h"

namespace tvk::desk {

class OutputWriter {
public:
    // Sets up the files, empty but valid. Throws tvk::Exception when one of them cannot be written; then
    // neither is left behind. xruns is asked from the writer's thread, and until finish.
    OutputWriter(VirtualCard& card, const BlockStatistics& blocks, const JobStatistics& jobs,
                 std::optional<std::string> wavPath, std::optional<std::string> reportPath);
    ~OutputWriter();
    OutputWriter(const OutputWriter&) = delete;
    OutputWriter& operator=(const OutputWriter&) = delete;

    // Starts the thread. xruns is asked from it until finish returns.
    void start(std::function<long()> xruns);

    // True once the medium has failed; finish tells how. Any thread.
    bool hasFailed() const { return hasFailed_.load(std::memory_order_relaxed); }

    // Writes what is left and ends. Throws what went wrong on the way.
    void finish();

private:
    void run();
    void takeOutput();
    void saveReport();

    VirtualCard& card_;
    const BlockStatistics& blocks_;
    const JobStatistics& jobs_;
    const std::optional<std::string> reportPath_;
    std::optional<WavWriter> wav_;
    LevelMeter levels_;
    std::function<long()> xruns_;
    std::atomic<bool> isRunning_{false};
    std::atomic<bool> hasFailed_{false};
    std::exception_ptr failure_;
    std::thread thread_;
};

}  // namespace tvk::desk
