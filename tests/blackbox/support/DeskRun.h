// A test with a folder of its own, in which tarvek-desk plays from a file into a file.
#pragma once

#include <array>
#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "blackbox/support/DeskProcess.h"
#include "support/TemporaryFolder.h"

using Samples = std::vector<float>;

class DeskRun : public ::testing::Test {
protected:
    static constexpr int kRateHz = 44100;
    static constexpr std::size_t kPeriod = 32;
    // Two start periods and one cycle.
    static constexpr std::size_t kLatency = 96;
    // The test-mode preset hands its inputs to its outputs.
    static constexpr const char* kPassThrough = "0";

    // A guitar file of one channel, or of two.
    std::string guitar(const std::string& name, const Samples& samples) const;
    std::string guitar(const std::string& name, const Samples& normal, const Samples& vibrato) const;

    // The arguments with a root folder and, under the name, --out and --report.
    std::vector<std::string> withFiles(const std::string& name, std::vector<std::string> arguments) const;

    // Plays under the virtual clock to the end, which must be in order, and reads what came out.
    std::array<Samples, 2> play(const std::string& name, std::vector<std::string> arguments);

    std::string outFile(const std::string& name) const { return folder_.file(name + ".wav"); }
    std::string reportFile(const std::string& name) const { return folder_.file(name + ".json"); }
    const std::filesystem::path& folder() const { return folder_.path(); }

    // Failed reads and writes as the last run told them at its end; -1 when it told none.
    long xruns() const { return xruns_; }

private:
    TemporaryFolder folder_;
    long xruns_ = -1;
};

// Sine of the frequency and peak; seconds long.
Samples sine(double frequencyHz, float peak, double seconds);

// The same noise in every run, between -peak and peak.
Samples noise(float peak, std::size_t frames);

std::array<Samples, 2> readWav(const std::string& path);
std::string readText(const std::string& path);
