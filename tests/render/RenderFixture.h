// Runs the renderer's command line in a folder of its own.
#pragma once

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "render/Tool.h"
#include "support/TemporaryFolder.h"
#include "wav/GuitarFile.h"
#include "wav/WavWriter.h"

class RenderTest : public testing::Test {
protected:
    static constexpr int kRate = 44100;

    RenderTest() {
        std::vector<float> guitar;
        for (int n = 0; n < 10000; ++n)
            guitar.push_back(0.5f * std::sin(0.05f * static_cast<float>(n)));
        writeWav("in.wav", {guitar});
    }

    std::string path(const std::string& name) const { return folder_.file(name); }

    void writeWav(const std::string& name, const std::vector<std::vector<float>>& channels,
                  int rateHz = kRate) const {
        tvk::WavWriter writer(path(name), rateHz, static_cast<int>(channels.size()));
        for (size_t n = 0; n < channels[0].size(); ++n) {
            std::vector<float> frame;
            for (const auto& channel : channels)
                frame.push_back(channel[n]);
            writer.write(frame.data(), 1);
        }
        writer.close();
    }
    void writeText(const std::string& name, const std::string& text) const {
        std::ofstream(path(name)) << text;
    }
    std::string bytes(const std::string& name) const {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_.path()))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }

    // The status of a command line; what it printed is in out and err.
    int runTool(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "tarvek-render");
        std::vector<const char*> argv;
        for (const auto& argument : arguments)
            argv.push_back(argument.c_str());
        std::ostringstream outStream;
        std::ostringstream errStream;
        const int status =
            tvk::render::runTool(static_cast<int>(argv.size()), argv.data(), outStream, errStream);
        out = outStream.str();
        err = errStream.str();
        return status;
    }
    // Renders in.wav to out.wav with a report, at a known input voltage, and reads the result.
    tvk::GuitarFile render(std::vector<std::string> arguments) {
        for (const char* more : {"--in", "in.wav", "--out", "out.wav", "--report", "report.json"})
            arguments.push_back(more[0] == '-' ? more : path(more));
        arguments.insert(arguments.end(), {"--input-voltage", "1"});
        EXPECT_EQ(runTool(arguments), 0) << err;
        return tvk::GuitarFile(path("out.wav"), kRate);
    }
    nlohmann::json report() const { return nlohmann::json::parse(bytes("report.json")); }

    std::string out;
    std::string err;

private:
    TemporaryFolder folder_;
};
