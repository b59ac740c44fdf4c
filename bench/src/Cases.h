// What is timed: one object that processes 32-frame blocks of a guitar.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace bench {

constexpr int kBlockLength = 32;
constexpr float kSampleRateHz = 44100.0f;

// A full-scale sample in volts at the jack: a guitar that peaks at -12 dBFS gives 300 mV.
constexpr float kFullScaleVolts = 1.2f;

class Case {
public:
    virtual ~Case() = default;
    // in: one block of the guitar, 1.0 = full scale. index: the block's number.
    virtual void process(const float* in, int index) = 0;
};

struct NamedCase {
    std::string name;
    std::function<std::unique_ptr<Case>()> make;
};

// All cases, in the order of the report.
const std::vector<NamedCase>& cases();

}  // namespace bench
