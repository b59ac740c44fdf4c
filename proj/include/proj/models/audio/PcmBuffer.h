// Memory of one period, of the size that the device reports: zero-filled, so that every page is there before
// the audio thread touches it.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

#include "utility/Exception.h"

template <typename Sample>
class PcmBuffer {
public:
    // Throws tvk::Exception "NAME allocation" when there is no memory.
    PcmBuffer(const char* name, std::size_t bytes) : samples_(static_cast<Sample*>(std::calloc(1, bytes))) {
        if (!samples_) TVK_THROW("%s allocation", name);
    }

    Sample* data() { return samples_.get(); }
    const Sample* data() const { return samples_.get(); }

    void free() { samples_.reset(); }

private:
    struct Free {
        void operator()(Sample* samples) const { std::free(samples); }
    };
    std::unique_ptr<Sample, Free> samples_;
};
