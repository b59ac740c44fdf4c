#include "core/Audio/AudioAlsaPcm.h"

#include <cerrno>
#include <chrono>
#include <cstdio>

#include "PcmParameters.h"
#include "utility/Clock.h"
#include "utility/Exception.h"
#include "utility/Log.h"

namespace {

constexpr const char* kTag = "AudioAlsaPcm";
constexpr std::chrono::seconds kResumeInterval{1};

snd_pcm_t* openPcm(const char* device, snd_pcm_stream_t stream, const char* failure) {
    snd_pcm_t* handle = nullptr;
    if (snd_pcm_open(&handle, device, stream, 0) < 0) TVK_THROW("%s %s", failure, device);
    return handle;
}

// Moves frames until the period is whole. transfer(done, left) moves up to `left` frames from frame `done`
// on. Returns 0 or a negative ALSA code; a stream that moves nothing counts as an input error, since a
// blocking one has no other reason to.
template <typename Transfer>
int wholePeriod(snd_pcm_uframes_t frames, Transfer transfer) {
    snd_pcm_uframes_t done = 0;
    while (done < frames) {
        const snd_pcm_sframes_t moved = transfer(done, frames - done);
        if (moved < 0) return static_cast<int>(moved);
        if (moved == 0) return -EIO;
        done += static_cast<snd_pcm_uframes_t>(moved);
    }
    return 0;
}

}  // namespace

AudioAlsaPcm::AudioAlsaPcm(const PcmConfiguration& playback, const PcmConfiguration& capture, bool link)
    : playback_(playback), capture_(capture) {
    snd_output_t* output = nullptr;
    const int attached = snd_output_stdio_attach(&output, stdout, 0);
    if (attached < 0) TVK_THROW("Output failed: %s", snd_strerror(attached));
    output_.reset(output);
    playbackHandle_.reset(
        openPcm(playback_.device, SND_PCM_STREAM_PLAYBACK, "Error opening Playback PCM device"));
    captureHandle_.reset(
        openPcm(capture_.device, SND_PCM_STREAM_CAPTURE, "Error opening Capture PCM device"));
    if (setPcmParameters(playbackHandle_.get(), playback_) < 0)
        TVK_THROW("setHwParams failed for playbackHandle");
    if (setPcmParameters(captureHandle_.get(), capture_) < 0)
        TVK_THROW("setHwParams failed for captureHandle");
    if (!link) return;
    const int linked = snd_pcm_link(captureHandle_.get(), playbackHandle_.get());
    isLinked_ = linked >= 0;
    if (!isLinked_) TVK_WARN("snd_pcm_link failed: %s", snd_strerror(linked));
}

AudioAlsaPcm::~AudioAlsaPcm() {
    tvk::log::debug(kTag, "Detected %ld xruns.", getXrunCount());
    tvk::log::debug(kTag, "calling drain");
    snd_pcm_drain(captureHandle_.get());
    snd_pcm_drain(playbackHandle_.get());
    tvk::log::debug(kTag, "calling close");
    captureHandle_.reset();
    playbackHandle_.reset();
    output_.reset();
}

bool AudioAlsaPcm::read(void* frames) {
    snd_pcm_t* const handle = captureHandle_.get();
    const std::size_t frameBytes = periodBytes(capture_) / capture_.periodFrames;
    char* const bytes = static_cast<char*>(frames);
    const int result =
        wholePeriod(capture_.periodFrames, [&](snd_pcm_uframes_t done, snd_pcm_uframes_t left) {
            return snd_pcm_readi(handle, bytes + done * frameBytes, left);
        });
    if (result == 0) return true;
    recoverStream(handle, "capture", result);
    return false;
}

bool AudioAlsaPcm::write(const void* frames) {
    snd_pcm_t* const handle = playbackHandle_.get();
    const std::size_t frameBytes = periodBytes(playback_) / playback_.periodFrames;
    const char* const bytes = static_cast<const char*>(frames);
    const int result =
        wholePeriod(playback_.periodFrames, [&](snd_pcm_uframes_t done, snd_pcm_uframes_t left) {
            return snd_pcm_writei(handle, bytes + done * frameBytes, left);
        });
    if (result == 0) return true;
    recoverStream(handle, "playback", result);
    return false;
}

void AudioAlsaPcm::recoverStream(snd_pcm_t* handle, const char* direction, int error) {
    TVK_WARN("stream recovery, %s %s: %s(%d)", snd_pcm_name(handle), direction, snd_strerror(error), error);
    snd_pcm_prepare(handle);
    countXrun();
}

void AudioAlsaPcm::dropAndPrepare() {
    snd_pcm_drop(captureHandle_.get());
    snd_pcm_drop(playbackHandle_.get());
    snd_pcm_prepare(captureHandle_.get());
    snd_pcm_prepare(playbackHandle_.get());
}

int AudioAlsaPcm::start() {
    const int result = snd_pcm_start(captureHandle_.get());
    if (result < 0 || isLinked_) return result;
    return snd_pcm_start(playbackHandle_.get());
}

int AudioAlsaPcm::xrunRecovery(snd_pcm_t* handle, int error) {
    countXrun();
    TVK_WARN("stream recovery, %s: %s(%d)", snd_pcm_name(handle), snd_strerror(error), error);
    if (error == -ESTRPIPE) {
        int resumed = snd_pcm_resume(handle);
        while (resumed == -EAGAIN) {
            tvk::Clock::current().sleepFor(kResumeInterval);
            resumed = snd_pcm_resume(handle);
        }
        if (resumed >= 0) return resumed;
    }
    const int prepared = snd_pcm_prepare(handle);
    if (prepared >= 0) return prepared;
    const char* const text = snd_strerror(prepared);
    if (error == -ESTRPIPE)
        TVK_WARN("Can't recover from suspend, prepare failed: %s", text);
    else if (error == -EPIPE)
        TVK_WARN("Can't recover from underrun, prepare failed: %s", text);
    else
        TVK_WARN("Can't recover from unexpected error, prepare failed: %s", text);
    return prepared;
}

std::size_t AudioAlsaPcm::periodBytes(const PcmConfiguration& configuration) {
    const int bits = snd_pcm_format_physical_width(configuration.format);
    return configuration.periodFrames * configuration.channels * static_cast<std::size_t>(bits) / 8;
}

std::size_t AudioAlsaPcm::floatBytes(const PcmConfiguration& configuration) {
    return configuration.periodFrames * configuration.channels * sizeof(float);
}
