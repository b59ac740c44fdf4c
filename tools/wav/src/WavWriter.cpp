#include "wav/WavWriter.h"

#include <sndfile.h>

#include "utility/Exception.h"

namespace tvk {

struct WavWriter::File {
    ~File() {
        if (handle) sf_close(handle);
    }
    std::string path;
    SNDFILE* handle = nullptr;
};

WavWriter::WavWriter(const std::string& path, int rateHz, int channels) : file_(std::make_unique<File>()) {
    SF_INFO info{};
    info.samplerate = rateHz;
    info.channels = channels;
    info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    file_->path = path;
    file_->handle = sf_open(path.c_str(), SFM_WRITE, &info);
    if (!file_->handle) TVK_THROW("cannot write '%s': %s", path.c_str(), sf_strerror(nullptr));
    // The PEAK chunk carries the time of writing.
    sf_command(file_->handle, SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
}

WavWriter::~WavWriter() = default;
WavWriter::WavWriter(WavWriter&&) noexcept = default;
WavWriter& WavWriter::operator=(WavWriter&&) noexcept = default;

void WavWriter::write(const float* interleaved, std::size_t frames) {
    const sf_count_t count = static_cast<sf_count_t>(frames);
    if (sf_writef_float(file_->handle, interleaved, count) != count)
        TVK_THROW("cannot write '%s': %s", file_->path.c_str(), sf_strerror(file_->handle));
}

void WavWriter::flush() {
    sf_command(file_->handle, SFC_UPDATE_HEADER_NOW, nullptr, 0);
}

void WavWriter::close() {
    SNDFILE* const handle = file_->handle;
    file_->handle = nullptr;
    if (handle && sf_close(handle) != SF_ERR_NO_ERROR)
        TVK_THROW("cannot write '%s': the file did not close cleanly", file_->path.c_str());
}

}  // namespace tvk
