#include "support/card/TestCard.h"

#include <alsa/asoundlib.h>
#include <alsa/pcm_external.h>
#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <fstream>
#include <iterator>
#include <memory>
#include <sys/eventfd.h>
#include <unistd.h>

namespace {

constexpr std::size_t kCallsKept = 1 << 20;
constexpr std::size_t kWordsKept = 1 << 22;
constexpr std::uint64_t kPeriodFrames = 32;

struct Plug {
    snd_pcm_ioplug_t io{};
    ~Plug() {
        if (io.poll_fd >= 0) close(io.poll_fd);
    }
};

bool isCapture(const snd_pcm_ioplug_t* io) {
    return io->stream == SND_PCM_STREAM_CAPTURE;
}

// Bounded, so that a free run of the card on a thread keeps its memory.
void note(const char* call) {
    TestCard& card = TestCard::instance();
    if (card.calls.size() < kCallsKept) card.calls.push_back(call);
}

std::int32_t* wordAt(const snd_pcm_channel_area_t& area, snd_pcm_uframes_t frame) {
    return reinterpret_cast<std::int32_t*>(static_cast<char*>(area.addr) +
                                           (area.first + frame * area.step) / 8);
}

int onStart(snd_pcm_ioplug_t* io) {
    TestCard& card = TestCard::instance();
    note(isCapture(io) ? "capture start" : "playback start");
    if (card.startResult < 0) return card.startResult;
    (isCapture(io) ? card.captureRuns : card.playbackRuns) = true;
    return 0;
}

int onStop(snd_pcm_ioplug_t* io) {
    TestCard& card = TestCard::instance();
    note(isCapture(io) ? "capture stop" : "playback stop");
    (isCapture(io) ? card.captureRuns : card.playbackRuns) = false;
    return 0;
}

int onPrepare(snd_pcm_ioplug_t* io) {
    TestCard& card = TestCard::instance();
    note(isCapture(io) ? "capture prepare" : "playback prepare");
    (isCapture(io) ? card.captureRuns : card.playbackRuns) = false;
    (isCapture(io) ? card.readFrames : card.writtenFrames) = 0;
    if (!card.captureRuns && !card.playbackRuns) card.time = 0;
    return card.prepareResult;
}

snd_pcm_sframes_t onPointer(snd_pcm_ioplug_t* io) {
    TestCard& card = TestCard::instance();
    if (isCapture(io)) {
        if (card.captureRuns && card.time < card.readFrames + kPeriodFrames) {
            if (card.beforePeriod) card.beforePeriod();
            card.time = card.readFrames + kPeriodFrames;
        }
        return static_cast<snd_pcm_sframes_t>(card.captureRuns ? card.time : 0);
    }
    if (!card.playbackRuns) return 0;
    return card.time > card.writtenFrames ? -EPIPE : static_cast<snd_pcm_sframes_t>(card.time);
}

snd_pcm_sframes_t onRead(snd_pcm_ioplug_t* io, const snd_pcm_channel_area_t* areas, snd_pcm_uframes_t offset,
                         snd_pcm_uframes_t size) {
    TestCard& card = TestCard::instance();
    note("read");
    long moved = static_cast<long>(size);
    if (card.onCapture) moved = card.onCapture(card.captureTransfers, moved);
    ++card.captureTransfers;
    if (moved < 0) return moved;
    for (long i = 0; i < moved; ++i)
        for (unsigned channel = 0; channel < io->channels; ++channel)
            *wordAt(areas[channel], offset + static_cast<snd_pcm_uframes_t>(i)) =
                card.captured ? card.captured(card.capturedFrames + static_cast<std::uint64_t>(i), channel)
                              : 0;
    card.readFrames += static_cast<std::uint64_t>(moved);
    card.capturedFrames += static_cast<std::uint64_t>(moved);
    return moved;
}

snd_pcm_sframes_t onWrite(snd_pcm_ioplug_t* io, const snd_pcm_channel_area_t* areas, snd_pcm_uframes_t offset,
                          snd_pcm_uframes_t size) {
    TestCard& card = TestCard::instance();
    note("write");
    long moved = static_cast<long>(size);
    if (card.onPlayback) moved = card.onPlayback(card.playbackTransfers, moved);
    ++card.playbackTransfers;
    if (moved < 0) return moved;
    for (long i = 0; i < moved && card.written.size() + io->channels <= kWordsKept; ++i)
        for (unsigned channel = 0; channel < io->channels; ++channel)
            card.written.push_back(*wordAt(areas[channel], offset + static_cast<snd_pcm_uframes_t>(i)));
    card.writtenFrames += static_cast<std::uint64_t>(moved);
    return moved;
}

int onDrain(snd_pcm_ioplug_t* io) {
    note(isCapture(io) ? "capture drain" : "playback drain");
    return 0;
}

int onClose(snd_pcm_ioplug_t* io) {
    note(isCapture(io) ? "capture close" : "playback close");
    delete static_cast<Plug*>(io->private_data);
    return 0;
}

int onHwParams(snd_pcm_ioplug_t*, snd_pcm_hw_params_t*) {
    return TestCard::instance().hwParamsResult;
}

// The library first sets parameters of its own, which start a stream with its first frame.
int onSwParams(snd_pcm_ioplug_t*, snd_pcm_sw_params_t* parameters) {
    TestCard& card = TestCard::instance();
    snd_pcm_uframes_t threshold = 0;
    snd_pcm_sw_params_get_start_threshold(parameters, &threshold);
    if (threshold == 1) return 0;
    card.startThresholds.push_back(threshold);
    return card.swParamsResult;
}

snd_pcm_ioplug_callback_t makeCallbacks(snd_pcm_stream_t stream) {
    snd_pcm_ioplug_callback_t table{};
    table.start = onStart;
    table.stop = onStop;
    table.prepare = onPrepare;
    table.pointer = onPointer;
    table.transfer = stream == SND_PCM_STREAM_CAPTURE ? onRead : onWrite;
    table.drain = onDrain;
    table.close = onClose;
    table.hw_params = onHwParams;
    table.sw_params = onSwParams;
    return table;
}

const snd_pcm_ioplug_callback_t kCaptureCallbacks = makeCallbacks(SND_PCM_STREAM_CAPTURE);
const snd_pcm_ioplug_callback_t kPlaybackCallbacks = makeCallbacks(SND_PCM_STREAM_PLAYBACK);

int constrain(snd_pcm_ioplug_t* io, const TestCard& card) {
    const auto list = [io](int parameter, const std::vector<unsigned>& values) {
        return snd_pcm_ioplug_set_param_list(io, parameter, static_cast<unsigned>(values.size()),
                                             values.data());
    };
    const auto range = [io](int parameter, unsigned least, unsigned most) {
        return snd_pcm_ioplug_set_param_minmax(io, parameter, least, most);
    };
    const unsigned frameBytes = card.channels * 4;
    const int results[] = {
        list(SND_PCM_IOPLUG_HW_ACCESS, card.accesses),
        list(SND_PCM_IOPLUG_HW_FORMAT, card.formats),
        range(SND_PCM_IOPLUG_HW_RATE, card.rateHz, card.rateHz),
        range(SND_PCM_IOPLUG_HW_CHANNELS, card.channels, card.channels),
        range(SND_PCM_IOPLUG_HW_PERIODS, 1, card.mostPeriods),
        range(SND_PCM_IOPLUG_HW_PERIOD_BYTES, frameBytes, card.mostBufferFrames * frameBytes),
        range(SND_PCM_IOPLUG_HW_BUFFER_BYTES, frameBytes, card.mostBufferFrames * frameBytes),
    };
    for (const int result : results)
        if (result < 0) return result;
    return 0;
}

int openCard(snd_pcm_t** pcm, const char* name, snd_pcm_stream_t stream, int mode) {
    note(stream == SND_PCM_STREAM_CAPTURE ? "capture open" : "playback open");
    auto plug = std::make_unique<Plug>();
    plug->io.version = SND_PCM_IOPLUG_VERSION;
    plug->io.name = "Card of the tests";
    plug->io.flags = SND_PCM_IOPLUG_FLAG_MONOTONIC | SND_PCM_IOPLUG_FLAG_BOUNDARY_WA;
    plug->io.callback = stream == SND_PCM_STREAM_CAPTURE ? &kCaptureCallbacks : &kPlaybackCallbacks;
    plug->io.private_data = plug.get();
    plug->io.poll_fd = eventfd(1, EFD_CLOEXEC);  // always ready
    plug->io.poll_events = POLLIN;
    if (const int error = snd_pcm_ioplug_create(&plug->io, name, stream, mode); error < 0) return error;
    snd_pcm_ioplug_t* const io = &plug.release()->io;
    if (const int error = constrain(io, TestCard::instance()); error < 0) {
        snd_pcm_ioplug_delete(io);
        return error;
    }
    *pcm = io->pcm;
    return 0;
}

}  // namespace

TestCard& TestCard::instance() {
    static TestCard card;
    return card;
}

extern "C" {

SND_PCM_PLUGIN_DEFINE_FUNC(tarvek_test_card) {
    (void)root;
    (void)conf;
    return openCard(pcmp, name, stream, mode);
}

SND_PCM_PLUGIN_SYMBOL(tarvek_test_card)

}  // extern "C"

CardScope::CardScope() {
    card = TestCard();
    card.calls.reserve(kCallsKept);
    card.written.reserve(kWordsKept);
    Dl_info own{};
    dladdr(reinterpret_cast<const void*>(&TestCard::instance), &own);
    char path[] = "/tmp/tarvek-card-XXXXXX";
    close(mkstemp(path));
    configuration_ = path;
    std::ofstream(configuration_) << "pcm_type.tarvek_test_card { lib \"" << own.dli_fname << "\" }\n"
                                  << "pcm.hw { @args [ CARD DEV ] @args.CARD { type string } "
                                     "@args.DEV { type string } type tarvek_test_card }\n";
    setenv("ALSA_CONFIG_PATH", path, 1);
    // Without it the library takes a lock of its own around every call on a device outside the kernel.
    setenv("LIBASOUND_THREAD_SAFE", "0", 1);
    snd_config_update_free_global();
}

CardScope::~CardScope() {
    snd_config_update_free_global();
    unsetenv("ALSA_CONFIG_PATH");
    unlink(configuration_.c_str());
}
