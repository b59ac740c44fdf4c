#include "render/Renderer.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "core/Parameter/IParameter.h"
#include "utility/Exception.h"

namespace tvk::render {

namespace {

// The first node where none is named.
IParameter& findParameter(OfflineEngine& engine, const ParameterSetting& setting) {
    std::string node = setting.node;
    if (node.empty()) {
        const std::vector<std::string> ids = engine.device().getNodeIds();
        if (ids.empty()) TVK_THROW("the graph has no node");
        node = ids.front();
    }
    IDspUnit* const unit = engine.device().getDspUnit(node);
    if (!unit) TVK_THROW("the graph has no node '%s'", node.c_str());
    try {
        return *unit->getParameter(setting.parameter);
    } catch (const std::runtime_error&) {
        TVK_THROW("unit '%s' has no parameter '%s'", unit->getTarvekId().c_str(), setting.parameter.c_str());
    }
}

std::size_t blockOf(const TimedSetting& change, const RenderPlan& plan) {
    const double sample = std::floor(change.seconds * plan.rateHz);
    return static_cast<std::size_t>(sample) / static_cast<std::size_t>(plan.blockLength);
}

void settle(const RenderPlan& plan, OfflineEngine& engine) {
    for (int c = 0; c < OfflineEngine::kChannels; ++c)
        std::fill_n(engine.input(c), plan.blockLength, 0.0f);
    const auto blocks = static_cast<long>(std::ceil(plan.settleSeconds * plan.rateHz / plan.blockLength));
    for (long i = 0; i < blocks; ++i)
        engine.process();
}

// The samples of a block of the input, zeros past its end.
void fillInput(OfflineEngine& engine, const GuitarFile& guitar, std::size_t start, std::size_t length) {
    for (int c = 0; c < OfflineEngine::kChannels; ++c) {
        const std::vector<float>& samples = guitar.input(c);
        const std::size_t there = start < samples.size() ? std::min(length, samples.size() - start) : 0;
        float* const end =
            std::copy_n(samples.data() + std::min(start, samples.size()), there, engine.input(c));
        std::fill_n(end, length - there, 0.0f);
    }
}

}  // namespace

std::size_t outputFrames(const RenderPlan& plan, std::size_t inputFrames) {
    return inputFrames + static_cast<std::size_t>(std::llround(plan.tailSeconds * plan.rateHz));
}

void checkChanges(const RenderPlan& plan, OfflineEngine& engine, std::size_t inputFrames) {
    const double seconds = static_cast<double>(outputFrames(plan, inputFrames)) / plan.rateHz;
    for (const TimedSetting& change : plan.changes) {
        if (change.seconds < 0.0 || change.seconds >= seconds)
            TVK_THROW("a change at %g s lies outside the output of %g s", change.seconds, seconds);
        checkValue(change.setting, findParameter(engine, change.setting));
    }
}

RenderReport render(const RenderPlan& plan, OfflineEngine& engine, const GuitarFile& guitar,
                    const FrameSink& sink) {
    settle(plan, engine);

    std::vector<TimedSetting> changes = plan.changes;
    std::stable_sort(changes.begin(), changes.end(),
                     [](const TimedSetting& a, const TimedSetting& b) { return a.seconds < b.seconds; });
    auto change = changes.begin();

    RenderReport report;
    report.blockLength = plan.blockLength;
    report.rateHz = plan.rateHz;
    const auto length = static_cast<std::size_t>(plan.blockLength);
    const std::size_t frames = outputFrames(plan, guitar.frames());
    std::vector<float> interleaved(length * OfflineEngine::kChannels);
    for (std::size_t start = 0; start < frames; start += length) {
        for (; change != changes.end() && blockOf(*change, plan) <= start / length; ++change)
            setLive(findParameter(engine, change->setting), change->setting);
        fillInput(engine, guitar, start, length);
        report.blockSeconds.push_back(engine.process());

        const std::size_t wanted = std::min(length, frames - start);
        for (std::size_t c = 0; c < report.levels.size(); ++c) {
            const float* const out = engine.output(static_cast<int>(c));
            for (std::size_t n = 0; n < wanted; ++n) {
                interleaved[n * report.levels.size() + c] = out[n];
                report.levels[c].add(out[n]);
            }
        }
        sink(interleaved.data(), wanted);
    }
    return report;
}

}  // namespace tvk::render
