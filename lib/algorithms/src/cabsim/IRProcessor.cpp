#include "algorithms/cabsim/IRProcessor.h"

#include <algorithm>
#include <cmath>

#include "utility/Clock.h"
#include "utility/Log.h"

namespace {

constexpr const char* kTag = "IRProcessor";
constexpr int kMaxChannels = 2;

}  // namespace

IRProcessor::IRProcessor(int blockSize, int irCapacity, int, int middleBlock, int headLength, int cpu,
                         const std::string& name, int priority, float sampleRate)
    : Flaggable<TarvekThread>(priority, cpu),
      blockSize_(blockSize),
      sampleRate_(sampleRate),
      irCapacity_(irCapacity),
      middleBlock_(middleBlock),
      headLength_(headLength),
      blockPeriod_(std::llround(1e9 * blockSize / static_cast<double>(sampleRate))),
      convolver_(blockSize, middleBlock, headLength, name),
      reader_(static_cast<int>(sampleRate), kMaxChannels),
      irData_(static_cast<std::size_t>(irCapacity)) {
    setName(name);
    start();
}

IRProcessor::~IRProcessor() {
    tvk::log::debug(kTag, "destructor called");
    stop();
    join();
}

bool IRProcessor::load(const std::string& path) {
    const std::lock_guard lock(loadMutex_);
    takeOutOfAudioPath();
    tvk::log::debug(kTag, "trying to load file at %s", path.c_str());
    if (!readResponse(path)) {
        tvk::log::debug(kTag, "Invalid file path %s", path.c_str());
        return false;
    }
    swapStages();
    active_.store(1);
    return true;
}

void IRProcessor::load(std::span<const float> response) {
    const std::lock_guard lock(loadMutex_);
    takeOutOfAudioPath();
    const std::size_t length = std::min(response.size(), irData_.size());
    std::copy_n(response.begin(), length, irData_.begin());
    std::fill(irData_.begin() + static_cast<std::ptrdiff_t>(length), irData_.end(), 0.0f);
    swapStages();
    active_.store(1);
}

// Sequentially consistent on both sides: either the audio thread sees active clear, or it is seen inside.
void IRProcessor::takeOutOfAudioPath() {
    active_.store(0);
    while (inProcess_.load() != 0)
        tvk::Clock::current().nap(blockPeriod_);
}

bool IRProcessor::readResponse(const std::string& path) {
    if (!reader_.load(path)) return false;
    tvk::log::debug(kTag, "IR Size is: %d", reader_.getNumSamplesPerChannel());
    const int length = reader_.getSamples(irData_.data(), irCapacity_);
    std::fill(irData_.begin() + length, irData_.end(), 0.0f);
    return true;
}

void IRProcessor::swapStages() {
    auto stages = std::make_unique<SplitConvolver::Stages>(
        std::make_shared<const PreparedResponse>(irData_.data(), irCapacity_, middleBlock_, headLength_),
        blockSize_, sampleRate_);
    while (!convolver_.isTailIdle())
        tvk::Clock::current().nap(blockPeriod_);
    convolver_.exchange(std::move(stages));
}

void IRProcessor::process(const float* in, float* out, int) {
    inProcess_.store(1);
    if (active_.load() == 0) {
        std::copy_n(in, blockSize_, out);
    } else if (convolver_.process(in, out)) {
        raise();
    }
    inProcess_.store(0);
}

void IRProcessor::loop() {
    if (waitUntilFlagged()) convolver_.runTail();
}
