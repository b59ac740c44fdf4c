// Reads bytes as a sound file.
//
// Laws: a file is loaded or refused, never both; what was loaded is finite, within full scale, of one or two
// channels at the system's rate, and no more samples than the file has bytes; a refused one leaves nothing;
// the file is closed either way. Short reads change nothing.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "Require.h"
#include "utility/AudioFileReader.h"

namespace {

constexpr int kRateHz = 44100;

// One file, in memory.
class OneFile : public tvk::OsFiles {
public:
    OneFile(const std::uint8_t* bytes, std::size_t size, std::size_t readLimit)
        : bytes_(bytes), size_(size), readLimit_(readLimit) {}

    int open(const char*, int, mode_t) override {
        ++openCount;
        position_ = 0;
        return 3;
    }
    int close(int) override {
        --openCount;
        return 0;
    }
    int status(int, struct stat* result) override {
        *result = {};
        result->st_mode = S_IFREG;
        result->st_size = static_cast<off_t>(size_);
        return 0;
    }
    ssize_t read(int, void* bytes, std::size_t count) override {
        const std::size_t now = std::min({count, size_ - position_, readLimit_});
        std::copy_n(bytes_ + position_, now, static_cast<std::uint8_t*>(bytes));
        position_ += now;
        return static_cast<ssize_t>(now);
    }

    int openCount = 0;

private:
    const std::uint8_t* bytes_;
    const std::size_t size_;
    const std::size_t readLimit_;
    std::size_t position_ = 0;
};

struct Result {
    bool loaded = false;
    std::vector<float> samples;
};

Result read(const std::uint8_t* data, std::size_t size, std::size_t readLimit) {
    OneFile file(data, size, readLimit);
    AudioFileReader reader(kRateHz, 2, file);
    Result result;
    result.loaded = reader.load("fuzz");
    REQUIRE(file.openCount == 0);
    REQUIRE(result.loaded == reader.isLoaded());
    result.samples.resize(static_cast<std::size_t>(reader.getNumSamplesPerChannel()));
    REQUIRE(result.samples.size() <= size);
    const int copied = reader.getSamples(result.samples.data(), static_cast<int>(result.samples.size()));
    REQUIRE(static_cast<std::size_t>(copied) == result.samples.size());
    if (!result.loaded) return result;
    REQUIRE(reader.getSampleRate() == kRateHz);
    REQUIRE(reader.getNumChannels() == 1 || reader.getNumChannels() == 2);
    for (const float sample : result.samples)
        REQUIRE(std::abs(sample) <= 1.0f);
    return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static QuietLog quiet;
    const Result whole = read(data, size, size + 1);
    const Result inPieces = read(data, size, 7);
    REQUIRE(whole.loaded == inPieces.loaded);
    REQUIRE(whole.samples == inPieces.samples);
    return 0;
}
