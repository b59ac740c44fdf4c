// Writes a WAV of 32-bit floats, with nothing in it that differs from run to run: the same samples give the
// same bytes.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace tvk {

class WavWriter {
public:
    // Creates or overwrites the file. Throws tvk::Exception with one clear line when it cannot.
    WavWriter(const std::string& path, int rateHz, int channels);
    // Closes the file if close was not called; errors are lost here.
    ~WavWriter();
    WavWriter(WavWriter&&) noexcept;
    WavWriter& operator=(WavWriter&&) noexcept;

    // Appends frames of interleaved samples. Throws tvk::Exception when the medium takes no more.
    void write(const float* interleaved, std::size_t frames);

    // Brings the header up to what was written, so that the file is valid on disk should the process end.
    void flush();

    // Completes the header and closes. Throws tvk::Exception when the medium fails.
    void close();

private:
    struct File;
    std::unique_ptr<File> file_;
};

}  // namespace tvk
