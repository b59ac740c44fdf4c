#include "client/ResponseFile.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "client/Bytes.h"
#include "client/ClientError.h"
#include "client/Requests.h"
#include "client/ResponseName.h"
#include "utility/AudioFileReader.h"
#include "utility/EscapedText.h"
#include "utility/Exception.h"
#include "utility/OsFiles.h"

namespace tvk::client {

namespace {

constexpr int kMaxChannels = 2;
// What the reader takes; far more than a message does.
constexpr off_t kMaxFileBytes = 16 << 20;

constexpr const char* kWhatFits =
    "A response that fits is a WAV or AIFF file at 44100 Hz, of 1 or 2 channels, with samples of 8, 16, 24 "
    "or "
    "32 bits or 32-bit floats.";

// Hands on what the machine reads and keeps it, so that what is judged is what is sent.
class KeptFile final : public OsFiles {
public:
    ssize_t read(int descriptor, void* bytes, std::size_t count) override {
        const ssize_t got = OsFiles::read(descriptor, bytes, count);
        if (got > 0) data.append(static_cast<const char*>(bytes), static_cast<std::size_t>(got));
        return got;
    }

    std::string data;
};

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
    throw ClientError(Failure::BadUse, escaped(path) + ": " + reason);
}

void requireFile(const std::string& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (error || !std::filesystem::exists(status)) refuse(path, error ? error.message() : "No such file");
    if (!std::filesystem::is_regular_file(status)) refuse(path, "is not a regular file");
    const auto size = std::filesystem::file_size(path, error);
    if (!error && size > static_cast<std::uintmax_t>(kMaxFileBytes))
        refuse(path, "has " + std::to_string(size) + " bytes, far more than the " +
                         std::to_string(kMaxMessageBytes) + " of a message. " + kWhatFits);
}

double milliseconds(double samples) {
    return samples * 1000.0 / ResponseFile::kSampleRateHz;
}

// Samples of a channel for which there is room when nothing else of the file changes.
int samplesThatFit(const ResponseFile& file, std::size_t fileBytes) {
    const int bytesPerSample = file.channels * file.bitDepth / 8;
    const double tooMany =
        static_cast<double>(file.request.ByteSizeLong()) - static_cast<double>(kMaxMessageBytes);
    const double fitting = file.samples - std::ceil(tooMany / bytesPerSample);
    // The rest of such a file is not sound.
    return fitting < 1.0 || fileBytes == 0 ? 0 : static_cast<int>(fitting);
}

void requireRoom(const std::string& path, const ResponseFile& file, std::size_t fileBytes) {
    const std::size_t size = file.request.ByteSizeLong();
    if (size <= kMaxMessageBytes) return;
    const std::string head =
        formatText("its message would take %zu bytes, and %zu is the limit", size, kMaxMessageBytes);
    const int fitting = samplesThatFit(file, fileBytes);
    if (fitting == 0) refuse(path, head + "; most of the file is not sound: export it without other chunks.");
    refuse(path, head + formatText(
                            "; at %d bits and %d channel%s the first %d of its %d samples fit (%.0f ms). The "
                            "amplifier plays %d samples of one channel (%.0f ms): cut the file to that.",
                            file.bitDepth, file.channels, file.channels == 1 ? "" : "s", fitting,
                            file.samples, milliseconds(fitting), ResponseFile::kSamplesUsed,
                            milliseconds(ResponseFile::kSamplesUsed)));
}

}  // namespace

ResponseFile ResponseFile::load(const std::string& path, const std::optional<std::string>& name) {
    ResponseFile file;
    file.name = name ? *name : std::filesystem::path(path).stem().string();
    const std::string fault = faultOfName(file.name);
    if (!fault.empty())
        throw ClientError(Failure::BadUse, "\"" + escaped(file.name) + "\": a name " + fault +
                                               (name ? "." : "; give one behind the file."));
    requireFile(path);
    KeptFile kept;
    AudioFileReader reader(kSampleRateHz, kMaxChannels, kept);
    if (!reader.load(path)) refuse(path, reader.getRefusal() + ". " + kWhatFits);
    file.channels = reader.getNumChannels();
    file.bitDepth = reader.getBitDepth();
    file.samples = reader.getNumSamplesPerChannel();
    if (file.samples == 0) refuse(path, std::string("holds no samples. ") + kWhatFits);
    file.request = requests::addUserIR(file.name, kept.data);
    requireRoom(path, file, kept.data.size());
    return file;
}

std::string ResponseFile::leftOut() const {
    std::string text;
    if (samples > kSamplesUsed)
        text = formatText("The amplifier plays the first %d of the %d samples (%.0f ms).", kSamplesUsed,
                          samples, milliseconds(kSamplesUsed));
    if (channels > 1) text += std::string(text.empty() ? "" : " ") + "The amplifier plays channel 1 alone.";
    return text;
}

}  // namespace tvk::client
