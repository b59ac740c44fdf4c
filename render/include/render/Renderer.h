// One offline run, without files: silence to settle, then the guitar and a tail of silence, with parameters
// that change on the way.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "render/OfflineEngine.h"
#include "render/ParameterSetting.h"
#include "render/RenderReport.h"
#include "wav/GuitarFile.h"

namespace tvk::render {

// A live change: at the start of the block that holds this time. Time 0 is the first written sample.
struct TimedSetting {
    double seconds = 0.0;
    ParameterSetting setting;
};

struct RenderPlan {
    int blockLength = 32;        // samples
    int rateHz = 44100;          // Hz
    double settleSeconds = 0.2;  // rounded up to whole blocks
    double tailSeconds = 0.0;    // rounded to the nearest sample
    std::vector<TimedSetting> changes;
};

// Receives the output, interleaved, in order.
using FrameSink = std::function<void(const float* interleaved, std::size_t frames)>;

// Samples that the plan writes for an input of so many frames.
std::size_t outputFrames(const RenderPlan& plan, std::size_t inputFrames);

// Throws tvk::Exception when a change names what the loaded graph does not have, gives it a value of another
// type, or lies after the end. Nothing has been processed then.
void checkChanges(const RenderPlan& plan, OfflineEngine& engine, std::size_t inputFrames);

// Runs the loaded engine. Every output sample n is what the graph gives at input sample n. The report lacks
// the warnings, which are the log's.
RenderReport render(const RenderPlan& plan, OfflineEngine& engine, const GuitarFile& guitar,
                    const FrameSink& sink);

}  // namespace tvk::render
