// What is timed: objects that process a guitar in blocks of 32 frames. A new one is a line in one of the
// tables.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace bench {

constexpr int kBlockLength = 32;
constexpr float kSampleRateHz = 44100.0f;

// A full-scale sample in volts at the jack, as in the product profile.
constexpr float kFullScaleVolts = 1.194f;

class Case {
public:
    // Blocks between two turns of the control side.
    static constexpr int kBlocksPerTurn = 16;

    virtual ~Case() = default;
    // in: one block of the guitar, 1.0 = full scale.
    virtual void process(const float* in) = 0;
    // True when background has to run after every block.
    virtual bool hasBackground() const { return false; }
    // What other threads do between two blocks; not timed.
    virtual void background() {}
    // Turns knobs; its own time does not count, that of the ramps it starts does.
    virtual void control(int turn) { static_cast<void>(turn); }
};

struct NamedCase {
    std::string name;
    std::function<std::unique_ptr<Case>()> make;
};

std::vector<NamedCase> ampCases();
std::vector<NamedCase> primitiveCases();
std::vector<NamedCase> modulationCases();
std::vector<NamedCase> reverbCases();
std::vector<NamedCase> convolutionCases();

// All of them, the amp first.
const std::vector<NamedCase>& cases();

}  // namespace bench
