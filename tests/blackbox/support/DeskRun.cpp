#include "blackbox/support/DeskRun.h"

#include <cmath>
#include <cstdio>
#include <fstream>
#include <numbers>
#include <random>
#include <sstream>

#include "wav/GuitarFile.h"
#include "wav/WavWriter.h"

std::string DeskRun::guitar(const std::string& name, const Samples& samples) const {
    const std::string path = folder_.file(name + ".wav");
    tvk::WavWriter writer(path, kRateHz, 1);
    writer.write(samples.data(), samples.size());
    writer.close();
    return path;
}

std::string DeskRun::guitar(const std::string& name, const Samples& normal, const Samples& vibrato) const {
    Samples interleaved;
    for (std::size_t i = 0; i < normal.size(); ++i) {
        interleaved.push_back(normal[i]);
        interleaved.push_back(vibrato[i]);
    }
    const std::string path = folder_.file(name + ".wav");
    tvk::WavWriter writer(path, kRateHz, 2);
    writer.write(interleaved.data(), normal.size());
    writer.close();
    return path;
}

std::vector<std::string> DeskRun::withFiles(const std::string& name,
                                            std::vector<std::string> arguments) const {
    const std::vector<std::string> files = {"--root",      folder_.file("root"), "--out",
                                            outFile(name), "--report",           reportFile(name)};
    arguments.insert(arguments.end(), files.begin(), files.end());
    return arguments;
}

std::array<Samples, 2> DeskRun::play(const std::string& name, std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--clock", "virtual"});
    DeskProcess desk(folder(), withFiles(name, std::move(arguments)));
    EXPECT_EQ(desk.wait(), 0);
    xruns_ = -1;
    if (const int line = desk.findLine("AudioAlsaPcm: Detected "); line >= 0)
        std::sscanf(desk.outputLines()[static_cast<std::size_t>(line)].c_str(),
                    "AudioAlsaPcm: Detected %ld xruns.", &xruns_);
    return readWav(outFile(name));
}

Samples sine(double frequencyHz, float peak, double seconds) {
    Samples samples(static_cast<std::size_t>(seconds * 44100.0));
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = peak * static_cast<float>(std::sin(2.0 * std::numbers::pi * frequencyHz *
                                                        static_cast<double>(i) / 44100.0));
    return samples;
}

Samples noise(float peak, std::size_t frames) {
    std::minstd_rand generator(1);
    std::uniform_real_distribution<float> range(-peak, peak);
    Samples samples(frames);
    for (float& sample : samples)
        sample = range(generator);
    return samples;
}

std::array<Samples, 2> readWav(const std::string& path) {
    const tvk::GuitarFile file(path, 44100);
    return {file.input(0), file.input(1)};
}

std::string readText(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}
