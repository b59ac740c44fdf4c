// What a run tells about itself: cost per block and the levels of both outputs.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace tvk::render {

// The level of one output.
class OutputLevel {
public:
    void add(float sample);

    // Largest magnitude, 1.0 = full scale.
    float peak() const { return peak_; }
    // Root of the mean square over full scale 1.0, in dB; silence is the floor, -200.
    double rmsDbfs() const;
    // Samples beyond +-1.
    long clipped() const { return clipped_; }

private:
    float peak_ = 0.0f;
    double squares_ = 0.0;
    long samples_ = 0;
    long clipped_ = 0;
};

struct RenderReport {
    // JSON, indented.
    std::string toJson() const;

    int blockLength = 0;                // samples
    int rateHz = 0;                     // Hz
    std::vector<double> blockSeconds;   // of every block that was written
    std::array<OutputLevel, 2> levels;  // of the written samples
    std::vector<std::string> warnings;
};

}  // namespace tvk::render
