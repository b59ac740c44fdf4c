#include "utility/AudioFileReader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <utility>

#include "audiofile/AiffFile.h"
#include "audiofile/WavFile.h"
#include "utility/Exception.h"
#include "utility/Log.h"
#include "utility/ProductPaths.h"

namespace {

constexpr const char* kTag = "AudioFileReader";
constexpr const char* kCannotLoad = "ERROR: File doesn't exist or otherwise can't load file\n";
constexpr const char* kShortRead = "ERROR: Couldn't read entire file\n";

constexpr std::size_t kMaxFileBytes = 16u << 20;

using Parser = const char* (*)(ByteCursor bytes, AudioFile& result);

// By the file's first four bytes; null when they name no known format.
Parser parserFor(const std::vector<unsigned char>& bytes) {
    const std::string_view id = ByteCursor(bytes.data(), bytes.size()).readId();
    if (id == "RIFF") return audiofile::parseWav;
    if (id == "FORM") return audiofile::parseAiff;
    return nullptr;
}

// False when the file ends, or fails, before the bytes are full.
bool readAll(tvk::OsFiles& files, int descriptor, std::vector<unsigned char>& bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = files.read(descriptor, bytes.data() + done, bytes.size() - done);
        if (count == -1 && errno == EINTR) continue;
        if (count <= 0) return false;
        done += static_cast<std::size_t>(count);
    }
    return true;
}

}  // namespace

AudioFileReader::AudioFileReader(int systemSampleRateHz, int maxChannels, tvk::OsFiles& files)
    : files_(files), systemSampleRate_(systemSampleRateHz), maxChannels_(maxChannels) {}

bool AudioFileReader::load(const std::string& path) {
    loaded_ = false;
    samples_.clear();
    refusal_.clear();
    tvk::log::debug(kTag, "loading file %s", path.c_str());
    std::vector<unsigned char> bytes;
    if (!readFile(path, bytes)) {
        TVK_WARN("Not able to open input file %s.\n", path.c_str());
        return false;
    }
    const Parser parse = parserFor(bytes);
    if (!parse) {
        tvk::log::debug(kTag, "Audio File Type: Error");
        return refuse("Audio File Type: Error");
    }
    AudioFile file;
    if (const char* const refusal = parse(ByteCursor(bytes.data(), bytes.size()), file)) {
        TVK_ERROR("%s", refusal);
        return refuse(refusal);
    }
    if (file.sampleRateHz != systemSampleRate_) {
        const std::string reason =
            tvk::formatText("File sample rate: %d does not match system sample rate : %d\n",
                            file.sampleRateHz, systemSampleRate_);
        TVK_WARN("%s", reason.c_str());
        return refuse(reason);
    }
    if (static_cast<int>(file.channels.size()) > maxChannels_) {
        const std::string reason =
            tvk::formatText("Not able to process more than %d channels\n", maxChannels_);
        TVK_WARN("%s", reason.c_str());
        return refuse(reason);
    }
    tvk::log::debug(kTag, "File path is : %s \n", path.c_str());
    samples_ = std::move(file.channels);
    sampleRate_ = file.sampleRateHz;
    bitDepth_ = file.bitDepth;
    loaded_ = true;
    return true;
}

// Regular files alone: a pipe or a device has no size to hold it to, and could block the caller. What lies in
// the user's data is no link either, which could lead to any file of the machine.
bool AudioFileReader::readFile(const std::string& path, std::vector<unsigned char>& bytes) {
    const int flags = O_RDONLY | O_NONBLOCK | (tvk::ProductPaths::isUserData(path) ? O_NOFOLLOW : 0);
    const int descriptor = files_.open(path.c_str(), flags, 0);
    struct stat status {};
    const bool isFile =
        descriptor != -1 && files_.status(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    const bool isShort = isFile && static_cast<std::uint64_t>(status.st_size) <= kMaxFileBytes;
    if (isShort) bytes.resize(static_cast<std::size_t>(status.st_size));
    const bool isRead = isShort && readAll(files_, descriptor, bytes);
    if (descriptor != -1) files_.close(descriptor);
    if (isRead) return true;
    const char* const reason = isFile ? kShortRead : kCannotLoad;
    TVK_ERROR("%s", reason);
    return refuse(reason);
}

bool AudioFileReader::refuse(const std::string& reason) {
    refusal_ = reason.substr(0, reason.find_last_not_of('\n') + 1);
    return false;
}

bool AudioFileReader::isThereAudio() const {
    if (!loaded_) TVK_ERROR("Tried to get data but no audio file is currently loaded.");
    return loaded_;
}

int AudioFileReader::getSampleRate() const {
    return isThereAudio() ? sampleRate_ : 0;
}

int AudioFileReader::getBitDepth() const {
    return isThereAudio() ? bitDepth_ : 0;
}

int AudioFileReader::getNumChannels() const {
    return isThereAudio() ? static_cast<int>(samples_.size()) : 0;
}

int AudioFileReader::getNumSamplesPerChannel() const {
    return isThereAudio() ? static_cast<int>(samples_.front().size()) : 0;
}

int AudioFileReader::getSamples(float* dest, int maxCount) const {
    if (!isThereAudio()) return 0;
    const std::vector<double>& channel = samples_.front();
    const int count = std::clamp(maxCount, 0, static_cast<int>(channel.size()));
    std::transform(channel.begin(), channel.begin() + count, dest,
                   [](double sample) { return static_cast<float>(sample); });
    return count;
}
