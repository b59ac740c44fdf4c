#include "wav/GuitarFile.h"

#include <cmath>
#include <memory>
#include <sndfile.h>

#include "utility/Exception.h"

namespace tvk {

namespace {

struct CloseSoundFile {
    void operator()(SNDFILE* file) const { sf_close(file); }
};

bool isSupported(int format) {
    const int container = format & SF_FORMAT_TYPEMASK;
    if (container != SF_FORMAT_WAV && container != SF_FORMAT_WAVEX) return false;
    switch (format & SF_FORMAT_SUBMASK) {
        case SF_FORMAT_PCM_16:
        case SF_FORMAT_PCM_24:
        case SF_FORMAT_PCM_32:
        case SF_FORMAT_FLOAT:
            return true;
        default:
            return false;
    }
}

}  // namespace

GuitarFile::GuitarFile(const std::string& path, int rateHz) {
    SF_INFO info{};
    const std::unique_ptr<SNDFILE, CloseSoundFile> file(sf_open(path.c_str(), SFM_READ, &info));
    if (!file) TVK_THROW("cannot read guitar file '%s': %s", path.c_str(), sf_strerror(nullptr));
    if (!isSupported(info.format))
        TVK_THROW("guitar file '%s' is not a WAV of 16, 24 or 32 bit integers or 32-bit floats",
                  path.c_str());
    if (info.channels != 1 && info.channels != kGraphInputs)
        TVK_THROW("guitar file '%s' has %d channels; one or two are taken", path.c_str(), info.channels);
    if (info.samplerate != rateHz)
        TVK_THROW("guitar file '%s' is at %d Hz; the engine runs at %d Hz", path.c_str(), info.samplerate,
                  rateHz);

    // Read piecewise: a damaged header may promise more frames than memory holds.
    constexpr std::size_t kChunkFrames = 8192;
    const std::size_t channels = static_cast<std::size_t>(info.channels);
    std::vector<float> chunk(kChunkFrames * channels);
    for (;;) {
        const sf_count_t got = sf_readf_float(file.get(), chunk.data(), kChunkFrames);
        if (got <= 0) break;
        for (std::size_t i = 0; i < static_cast<std::size_t>(got); ++i) {
            for (std::size_t c = 0; c < inputs_.size(); ++c) {
                const float sample = chunk[i * channels + (channels == 1 ? 0 : c)];
                if (!std::isfinite(sample))
                    TVK_THROW("guitar file '%s' holds a sample that is not a finite number at frame %zu",
                              path.c_str(), inputs_[c].size());
                inputs_[c].push_back(sample);
            }
        }
    }
    if (sf_error(file.get()) != SF_ERR_NO_ERROR)
        TVK_THROW("cannot read guitar file '%s': %s", path.c_str(), sf_strerror(file.get()));
}

}  // namespace tvk
