// The desk's report: how long it played, what each block cost, what went wrong, how loud it was.
//
//   seconds, blocks       of the transport so far
//   xruns                 failed reads and writes that the engine counted
//   threads               the audio thread and every helper that had a job: time per block or job in us,
//                         those over the deadline; cpu_ figures are processor time, which leaves out
//                         interruptions
//   machine               how late the machine woke the audio thread after a period's end, us (real clock)
//   peak, rms_dbfs        speaker feed, line feed
#pragma once

#include <string>

#include "desk/BlockStatistics.h"
#include "desk/JobStatistics.h"
#include "desk/LevelMeter.h"
#include "desk/soundcard/Histogram.h"

namespace tvk::desk {

struct DeskReport {
    int rateHz = 44100;
    long xruns = 0;
    const LevelMeter& levels;
    const BlockStatistics& blocks;
    const JobStatistics& jobs;
    const Histogram& wakeLateness;

    std::string toJson() const;

    // Replaces the file as a whole, so that it is valid at any time. Throws tvk::Exception when it cannot.
    void save(const std::string& path) const;
};

}  // namespace tvk::desk
