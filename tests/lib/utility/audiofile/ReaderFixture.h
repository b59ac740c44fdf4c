// A reader of a 44100 Hz system, a folder for its files and its log.
#pragma once

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "support/LogRecorder.h"
#include "support/SoundFileBytes.h"
#include "support/TemporaryFolder.h"
#include "utility/AudioFileReader.h"

class ReaderFixture : public testing::Test {
protected:
    bool load(const soundfile::Bytes& bytes) {
        soundfile::write(path, bytes);
        log.clear();
        return reader.load(path);
    }
    // The diagnostics of the last load.
    std::vector<std::string> complaints() const {
        std::vector<std::string> found = log.startingWith("Error ");
        for (const std::string& line : log.startingWith("Warn "))
            found.push_back(line);
        return found;
    }
    std::vector<float> samples() const {
        std::vector<float> copy(static_cast<std::size_t>(reader.getNumSamplesPerChannel()));
        EXPECT_EQ(reader.getSamples(copy.data(), static_cast<int>(copy.size())),
                  static_cast<int>(copy.size()));
        return copy;
    }
    void expectRefused(const soundfile::Bytes& bytes, const std::string& text) {
        EXPECT_FALSE(load(bytes));
        EXPECT_FALSE(reader.isLoaded());
        EXPECT_EQ(complaints(), std::vector<std::string>{text});
    }

    TemporaryFolder folder;
    std::string path = folder.file("file");
    LogRecorder log;
    AudioFileReader reader{44100, 2};
};
