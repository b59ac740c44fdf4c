// One playback and one capture stream of the ALSA library, set up alike and started together; blocking read
// and write of one period.
//
// Nothing starts by itself: the start threshold is out of reach, so that the caller can fill the playback
// buffer first and both streams then begin on one call.
//
// Threads: construction and destruction on a control thread while nobody reads; everything else on the audio
// thread. getXrunCount from any thread.
#pragma once

#include <alsa/asoundlib.h>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

// What one stream is opened with.
struct PcmConfiguration {
    const char* device = "hw:0,0";  // not owned
    std::uint32_t rate = 44100;     // Hz
    std::uint32_t periodFrames = 32;
    std::uint32_t periods = 2;  // in the buffer
    std::uint32_t channels = 2;
    snd_pcm_format_t format = SND_PCM_FORMAT_S24_LE;  // 24 bits in the low end of a 32-bit word
    snd_pcm_access_t access = SND_PCM_ACCESS_RW_INTERLEAVED;
};

class AudioAlsaPcm {
public:
    // link couples the two so that a start of capture is a start of both, sample for sample. Devices outside
    // the kernel cannot be linked: a failure is a warning, and start then starts them one after the other.
    // Throws tvk::Exception when a device does not open or does not take the parameters, the exact rate
    // included; nothing stays open then.
    AudioAlsaPcm(const PcmConfiguration& playback, const PcmConfiguration& capture, bool link);
    ~AudioAlsaPcm();
    AudioAlsaPcm(const AudioAlsaPcm&) = delete;
    AudioAlsaPcm& operator=(const AudioAlsaPcm&) = delete;

    // One period of interleaved frames; blocks until it is there. A period that comes in pieces is put
    // together. False when the stream failed: it is then prepared and counted as an xrun, and stays silent
    // until dropAndPrepare and start.
    bool read(void* frames);
    bool write(const void* frames);

    // Throws away what both streams hold and makes them ready to be filled and started.
    void dropAndPrepare();

    // Starts capture, and playback with it. Returns 0 or a negative ALSA code.
    int start();

    // Brings one of the streams back by the kind of its failure: a suspended device is resumed, with a second
    // between tries, all else prepared. Counts as an xrun. Returns 0 or a negative ALSA code.
    int xrunRecovery(snd_pcm_t* handle, int error);

    // Bytes of one period as the device takes it, and of the same frames as 32-bit floats.
    std::size_t getPlaybackPeriodBytes() const { return periodBytes(playback_); }
    std::size_t getCapturePeriodBytes() const { return periodBytes(capture_); }
    std::size_t getPlaybackFloatBytes() const { return floatBytes(playback_); }
    std::size_t getCaptureFloatBytes() const { return floatBytes(capture_); }

    const PcmConfiguration& getPlaybackConfiguration() const { return playback_; }
    const PcmConfiguration& getCaptureConfiguration() const { return capture_; }
    snd_pcm_t* getPlaybackHandle() const { return playbackHandle_.get(); }
    snd_pcm_t* getCaptureHandle() const { return captureHandle_.get(); }

    // Failed reads, writes and recoveries since construction.
    long getXrunCount() const { return xrunCount_.load(std::memory_order_relaxed); }

private:
    struct PcmCloser {
        void operator()(snd_pcm_t* handle) const { snd_pcm_close(handle); }
    };
    struct OutputCloser {
        void operator()(snd_output_t* output) const { snd_output_close(output); }
    };
    using Pcm = std::unique_ptr<snd_pcm_t, PcmCloser>;

    static std::size_t periodBytes(const PcmConfiguration& configuration);
    static std::size_t floatBytes(const PcmConfiguration& configuration);
    void recoverStream(snd_pcm_t* handle, const char* direction, int error);
    void countXrun() { xrunCount_.fetch_add(1, std::memory_order_relaxed); }

    std::unique_ptr<snd_output_t, OutputCloser> output_;
    const PcmConfiguration playback_;
    const PcmConfiguration capture_;
    Pcm playbackHandle_;
    Pcm captureHandle_;
    bool isLinked_ = false;
    std::atomic<long> xrunCount_{0};
};
