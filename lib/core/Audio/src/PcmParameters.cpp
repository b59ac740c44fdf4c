#include "PcmParameters.h"

#include <cerrno>

#include "utility/Log.h"

namespace {

// Frames that the buffer can never hold: the stream starts on an explicit start alone.
constexpr snd_pcm_uframes_t kNeverStarts = 0x7FFFFFFF;

// One step of the set-up: its result, and on failure a line with the text of the code.
int checked(int result, const char* format) {
    if (result < 0)
        tvk::log::diagnostic(tvk::log::Severity::Error, __FILE__, __LINE__, format, snd_strerror(result));
    return result;
}

int setRate(snd_pcm_t* handle, snd_pcm_hw_params_t* hardware, unsigned rate) {
    unsigned nearest = rate;
    const int result =
        checked(snd_pcm_hw_params_set_rate_near(handle, hardware, &nearest, nullptr), "rate not set. %s");
    if (result < 0) return result;
    if (nearest == rate) return 0;
    TVK_ERROR("The rate %d Hz is not supported by your hardware.", static_cast<int>(rate));
    TVK_ERROR(" ==> Using %d Hz instead.", static_cast<int>(nearest));
    return -EINVAL;
}

int setChannels(snd_pcm_t* handle, snd_pcm_hw_params_t* hardware, unsigned channels) {
    const int result = snd_pcm_hw_params_set_channels(handle, hardware, channels);
    if (result < 0)
        TVK_ERROR("Error setting channels = %d. %s", static_cast<int>(channels), snd_strerror(result));
    return result;
}

int setBuffer(snd_pcm_t* handle, snd_pcm_hw_params_t* hardware, const PcmConfiguration& configuration) {
    int result = snd_pcm_hw_params_set_periods(handle, hardware, configuration.periods, 0);
    if (result < 0) {
        TVK_ERROR("Error setting periods :%d. %s", static_cast<int>(configuration.periods),
                  snd_strerror(result));
        return result;
    }
    snd_pcm_uframes_t frames = configuration.periods * configuration.periodFrames;
    result = snd_pcm_hw_params_set_buffer_size_near(handle, hardware, &frames);
    if (result < 0) TVK_ERROR("Error setting buffersize :%lu. %s", frames, snd_strerror(result));
    return result;
}

int setHardwareParameters(snd_pcm_t* handle, const PcmConfiguration& configuration) {
    snd_pcm_hw_params_t* hardware = nullptr;
    snd_pcm_hw_params_alloca(&hardware);
    int result = checked(snd_pcm_hw_params_any(handle, hardware), "Can not configure this PCM device. %s");
    if (result >= 0)
        result = checked(snd_pcm_hw_params_set_access(handle, hardware, configuration.access),
                         "invalid access type. %s");
    if (result >= 0)
        result = checked(snd_pcm_hw_params_set_format(handle, hardware, configuration.format),
                         "invalid format. %s");
    if (result >= 0) result = setRate(handle, hardware, configuration.rate);
    if (result >= 0) result = setChannels(handle, hardware, configuration.channels);
    if (result >= 0) result = setBuffer(handle, hardware, configuration);
    if (result >= 0) result = checked(snd_pcm_hw_params(handle, hardware), "Error setting HW params. %s");
    return result;
}

int setSoftwareParameters(snd_pcm_t* handle) {
    snd_pcm_sw_params_t* software = nullptr;
    snd_pcm_sw_params_alloca(&software);
    int result =
        checked(snd_pcm_sw_params_current(handle, software), "Unable to determine current swParams: %s");
    if (result >= 0)
        result = checked(snd_pcm_sw_params_set_start_threshold(handle, software, kNeverStarts),
                         "Unable to set start threshold mode: %s");
    if (result >= 0) result = checked(snd_pcm_sw_params(handle, software), "Unable to set sw params: %s");
    return result;
}

}  // namespace

int setPcmParameters(snd_pcm_t* handle, const PcmConfiguration& configuration) {
    tvk::log::debug("AudioAlsaPcm", "AudioAlsaPcm::setHwParams : %s ", configuration.device);
    const int result = setHardwareParameters(handle, configuration);
    return result < 0 ? result : setSoftwareParameters(handle);
}
