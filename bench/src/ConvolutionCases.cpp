#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <random>
#include <semaphore>
#include <thread>

#include "Cases.h"
#include "InPlaceCase.h"
#include "math/DirectFir.h"
#include "math/FFTConv2.h"
#include "math/SplitConvolver.h"
#include "utility/Clock.h"
#include "utility/Flaggable.h"
#include "utility/TarvekThread.h"

namespace bench {
namespace {

struct Sizes {
    int irLength;
    int smallBlock;
    int headLength;
};

constexpr Sizes kCabinet{4096, 64, 128};
constexpr Sizes kTank{551250, 128, 2048};

// Noise that falls by 60 dB over its length. One copy for all cases of one size.
std::shared_ptr<const PreparedResponse> response(const Sizes& sizes) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> uniform(-1.0f, 1.0f);
    std::vector<float> ir(static_cast<std::size_t>(sizes.irLength));
    for (int n = 0; n < sizes.irLength; ++n)
        ir[n] = uniform(random) * static_cast<float>(std::pow(10.0, -3.0 * n / sizes.irLength));
    return std::make_shared<const PreparedResponse>(ir.data(), sizes.irLength, sizes.smallBlock,
                                                    sizes.headLength);
}

// What the thread of `process` pays for. The tail's jobs are run between the blocks, on a thread of their
// own: they leave another processor's caches full of spectra. Each repeat of the guitar begins at the start
// of a head, so that the dearer blocks keep their places.
class Front : public Case {
public:
    explicit Front(const Sizes& sizes)
        : headBlocks_(sizes.headLength / kBlockLength),
          convolver_(kBlockLength, sizes.smallBlock, sizes.headLength, "bench") {
        convolver_.exchange(
            std::make_unique<SplitConvolver::Stages>(response(sizes), kBlockLength, kSampleRateHz));
        helper_ = std::thread([this] {
            for (job_.acquire(); isRunning_; job_.acquire()) {
                convolver_.runTail();
                done_.release();
            }
        });
    }
    ~Front() override {
        isRunning_ = false;
        job_.release();
        helper_.join();
    }
    void process(const float* in) override {
        hasJob_ = convolver_.process(in, out_);
        ++blocks_;
    }
    bool hasBackground() const override { return true; }
    void background() override {
        if (!hasJob_) return;
        job_.release();
        done_.acquire();
    }
    void control(int turn) override {
        const float silence[kBlockLength] = {};
        while (turn == 0 && blocks_ % headBlocks_ != 0) {
            process(silence);
            background();
        }
    }

private:
    const int headBlocks_;
    SplitConvolver convolver_;
    std::thread helper_;
    std::binary_semaphore job_{0};
    std::binary_semaphore done_{0};
    std::atomic<bool> isRunning_{true};
    bool hasJob_ = false;
    int blocks_ = 0;
    alignas(64) float out_[kBlockLength];
};

// The helper's jobs, one every headLength samples: the other blocks only collect its input. Each repeat of
// the guitar begins in the middle of a head and at the start of a cycle of eight jobs, so that jobs keep
// their places and no dear one is left out.
class Helper : public Case {
public:
    explicit Helper(const Sizes& sizes)
        : tail_(response(sizes)->tail, kSampleRateHz),
          input_(static_cast<std::size_t>(sizes.headLength)),
          output_(input_.size()) {}
    void process(const float* in) override {
        std::copy_n(in, kBlockLength, input_.begin() + fill_);
        fill_ += kBlockLength;
        if (fill_ == static_cast<int>(input_.size())) runJob();
    }
    void control(int turn) override {
        if (turn != 0) return;
        while (jobs_ % fft::SpectrumRows::kRowsAhead != 0)
            runJob();
        fill_ = static_cast<int>(input_.size()) / 2;
    }

private:
    void runJob() {
        std::fill(output_.begin(), output_.end(), 0.0f);
        tail_.process(input_.data(), output_.data(), static_cast<int>(input_.size()));
        fill_ = 0;
        ++jobs_;
    }

    FFTConv2 tail_;
    fft::AlignedFloats input_;
    fft::AlignedFloats output_;
    int fill_ = 0;
    int jobs_ = 0;
};

class Head : public Case {
public:
    explicit Head(const Sizes& sizes) : fir_(response(sizes)->head, kBlockLength) {}
    void process(const float* in) override { fir_.process(in, out_, kBlockLength); }

private:
    DirectFir fir_;
    alignas(64) float out_[kBlockLength];
};

class Sleeper : public Flaggable<TarvekThread> {
public:
    Sleeper() : Flaggable<TarvekThread>(49, 0) { start(); }
    ~Sleeper() override {
        stop();
        join();
    }
    void waitUntilAwake() { awake_.acquire(); }

protected:
    void init() override {}
    void loop() override {
        if (waitUntilFlagged()) awake_.release();
    }

private:
    std::counting_semaphore<> awake_{0};
};

// What the audio thread pays for the wake-ups of the cabinet's helper, one every four blocks.
class WakeUp : public Case {
public:
    void process(const float*) override {
        if (++blocks_ % kBlocksPerWakeUp == 0) sleeper_.raise();
    }
    bool hasBackground() const override { return true; }
    void background() override {
        if (blocks_ % kBlocksPerWakeUp != 0) return;
        sleeper_.waitUntilAwake();
        tvk::Clock::current().sleepFor(kTimeToSleep);
    }
    void control(int turn) override {
        if (turn == 0) blocks_ = 0;
    }

private:
    static constexpr int kBlocksPerWakeUp = 4;
    static constexpr std::chrono::microseconds kTimeToSleep{50};  // the helper spins before it sleeps
    Sleeper sleeper_;
    int blocks_ = 0;
};

template <typename Part>
NamedCase part(const char* name, const Sizes& sizes) {
    return {name, [&sizes] { return std::make_unique<Part>(sizes); }};
}

}  // namespace

std::vector<NamedCase> convolutionCases() {
    return {
        part<Front>("ir_processor_4096", kCabinet),
        part<Helper>("ir_processor_4096_helper", kCabinet),
        {"ir_processor_wake_up", [] { return std::make_unique<WakeUp>(); }},
        part<Head>("reverb_convolver_head", kTank),
        part<Front>("reverb_convolver_front", kTank),
        part<Helper>("tank_tail", kTank),
    };
}

}  // namespace bench
