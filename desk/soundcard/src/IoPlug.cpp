// The ALSA library's view of the card: an external PCM of type "tarvek_card", one object a direction.
//
// Waiting: the library asks for poll descriptors just before it waits. Under the real clock the descriptor is
// a timer set to the end of the running period; under the virtual clock the wait happens right there, and the
// descriptor is one that is always ready.
#include <algorithm>
#include <alsa/asoundlib.h>
#include <alsa/pcm_external.h>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <memory>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include "desk/soundcard/VirtualCard.h"

namespace tvk::desk {

namespace {

constexpr std::size_t kFramesAtOnce = VirtualCard::kPeriodFrames;

struct Plug {
    snd_pcm_ioplug_t io{};
    VirtualCard* card = nullptr;
    VirtualCard::Direction direction = VirtualCard::Direction::Capture;
    bool isVirtual = false;
    int descriptor = -1;
    std::array<float, kFramesAtOnce * VirtualCard::kChannels> frames{};

    ~Plug() {
        if (descriptor >= 0) ::close(descriptor);
    }
};

Plug& plugOf(snd_pcm_ioplug_t* io) {
    return *static_cast<Plug*>(io->private_data);
}

// Full scale of a word: 2^23 in the 24-bit format (whose word carries it sign-extended), 2^31 in the 32-bit
// one.
double fullScale(snd_pcm_format_t format) {
    return format == SND_PCM_FORMAT_S24_LE ? 0x1p23 : 0x1p31;
}

std::int32_t toWord(float sample, double scale) {
    return static_cast<std::int32_t>(std::clamp(std::nearbyint(sample * scale), -scale, scale - 1.0));
}

float toSample(std::int32_t word, snd_pcm_format_t format) {
    // The upper byte of a 24-bit word is not the card's concern.
    if (format == SND_PCM_FORMAT_S24_LE)
        word = static_cast<std::int32_t>(static_cast<std::uint32_t>(word) << 8) >> 8;
    return static_cast<float>(word / fullScale(format));
}

std::int32_t* wordAt(const snd_pcm_channel_area_t& area, snd_pcm_uframes_t frame) {
    return reinterpret_cast<std::int32_t*>(static_cast<char*>(area.addr) +
                                           (area.first + frame * area.step) / 8);
}

int onStart(snd_pcm_ioplug_t* io) {
    return plugOf(io).card->start(plugOf(io).direction);
}

int onStop(snd_pcm_ioplug_t* io) {
    plugOf(io).card->stop(plugOf(io).direction);
    return 0;
}

int onPrepare(snd_pcm_ioplug_t* io) {
    return plugOf(io).card->prepare(plugOf(io).direction, io->buffer_size);
}

snd_pcm_sframes_t onPointer(snd_pcm_ioplug_t* io) {
    return plugOf(io).card->position(plugOf(io).direction);
}

snd_pcm_sframes_t onCapture(snd_pcm_ioplug_t* io, const snd_pcm_channel_area_t* areas,
                            snd_pcm_uframes_t offset, snd_pcm_uframes_t size) {
    Plug& plug = plugOf(io);
    const snd_pcm_uframes_t count = std::min<snd_pcm_uframes_t>(size, kFramesAtOnce);
    if (const int error = plug.card->capture(plug.frames.data(), count); error < 0) return error;
    const double scale = fullScale(io->format);
    for (snd_pcm_uframes_t i = 0; i < count; ++i)
        for (unsigned channel = 0; channel < io->channels; ++channel)
            *wordAt(areas[channel], offset + i) =
                toWord(plug.frames[i * VirtualCard::kChannels + channel], scale);
    return static_cast<snd_pcm_sframes_t>(count);
}

snd_pcm_sframes_t onPlay(snd_pcm_ioplug_t* io, const snd_pcm_channel_area_t* areas, snd_pcm_uframes_t offset,
                         snd_pcm_uframes_t size) {
    Plug& plug = plugOf(io);
    const snd_pcm_uframes_t count = std::min<snd_pcm_uframes_t>(size, kFramesAtOnce);
    for (snd_pcm_uframes_t i = 0; i < count; ++i)
        for (unsigned channel = 0; channel < io->channels; ++channel)
            plug.frames[i * VirtualCard::kChannels + channel] =
                toSample(*wordAt(areas[channel], offset + i), io->format);
    if (const int error = plug.card->play(plug.frames.data(), count); error < 0) return error;
    return static_cast<snd_pcm_sframes_t>(count);
}

int onDrain(snd_pcm_ioplug_t* io) {
    if (plugOf(io).direction == VirtualCard::Direction::Playback) plugOf(io).card->drainPlayback();
    return 0;
}

int onClose(snd_pcm_ioplug_t* io) {
    delete &plugOf(io);
    return 0;
}

int onPollDescriptors(snd_pcm_ioplug_t* io, pollfd* descriptors, unsigned space) {
    if (space < 1) return 0;
    Plug& plug = plugOf(io);
    if (plug.isVirtual) {
        // Nothing will ever move on a card that does not run.
        if (io->state != SND_PCM_STATE_RUNNING) return -EIO;
        plug.card->awaitProgress(plug.direction);
    } else {
        const std::int64_t ns = (plug.card->epoch() + plug.card->nextProgress(plug.direction)).count();
        itimerspec timer{};
        timer.it_value.tv_sec = ns / 1000000000;
        timer.it_value.tv_nsec = ns % 1000000000;
        timerfd_settime(plug.descriptor, TFD_TIMER_ABSTIME, &timer, nullptr);
    }
    descriptors[0] = {plug.descriptor, POLLIN, 0};
    return 1;
}

int onPollEvents(snd_pcm_ioplug_t* io, pollfd* descriptors, unsigned count, unsigned short* events) {
    const bool isReady = count == 1 && (descriptors[0].revents & POLLIN) != 0;
    const bool isCapture = plugOf(io).direction == VirtualCard::Direction::Capture;
    *events = static_cast<unsigned short>(!isReady ? 0 : isCapture ? POLLIN : POLLOUT);
    return 0;
}

snd_pcm_ioplug_callback_t callbacks(VirtualCard::Direction direction) {
    snd_pcm_ioplug_callback_t table{};
    table.start = onStart;
    table.stop = onStop;
    table.prepare = onPrepare;
    table.pointer = onPointer;
    table.transfer = direction == VirtualCard::Direction::Capture ? onCapture : onPlay;
    table.drain = onDrain;
    table.close = onClose;
    table.poll_descriptors = onPollDescriptors;
    table.poll_revents = onPollEvents;
    return table;
}

const snd_pcm_ioplug_callback_t kCaptureCallbacks = callbacks(VirtualCard::Direction::Capture);
const snd_pcm_ioplug_callback_t kPlaybackCallbacks = callbacks(VirtualCard::Direction::Playback);

// What the hardware can do. Periods have one length; a buffer may hold two to sixteen of them.
int setConstraints(snd_pcm_ioplug_t* io, unsigned rateHz) {
    constexpr unsigned kBytesPerPeriod =
        VirtualCard::kPeriodFrames * VirtualCard::kChannels * sizeof(std::int32_t);
    const unsigned accesses[] = {SND_PCM_ACCESS_RW_INTERLEAVED};
    const unsigned formats[] = {SND_PCM_FORMAT_S24_LE, SND_PCM_FORMAT_S32_LE};
    int error = snd_pcm_ioplug_set_param_list(io, SND_PCM_IOPLUG_HW_ACCESS, std::size(accesses), accesses);
    if (error >= 0)
        error = snd_pcm_ioplug_set_param_list(io, SND_PCM_IOPLUG_HW_FORMAT, std::size(formats), formats);
    const auto limit = [&](int parameter, unsigned least, unsigned most) {
        if (error >= 0) error = snd_pcm_ioplug_set_param_minmax(io, parameter, least, most);
    };
    limit(SND_PCM_IOPLUG_HW_CHANNELS, VirtualCard::kChannels, VirtualCard::kChannels);
    limit(SND_PCM_IOPLUG_HW_RATE, rateHz, rateHz);
    limit(SND_PCM_IOPLUG_HW_PERIOD_BYTES, kBytesPerPeriod, kBytesPerPeriod);
    limit(SND_PCM_IOPLUG_HW_BUFFER_BYTES, 2 * kBytesPerPeriod, 16 * kBytesPerPeriod);
    limit(SND_PCM_IOPLUG_HW_PERIODS, 2, 16);
    return error;
}

int openCard(snd_pcm_t** pcm, const char* name, snd_pcm_stream_t stream, int mode) {
    auto plug = std::make_unique<Plug>();
    plug->card = &VirtualCard::instance();
    plug->direction =
        stream == SND_PCM_STREAM_CAPTURE ? VirtualCard::Direction::Capture : VirtualCard::Direction::Playback;
    plug->isVirtual = plug->card->settings().clock == VirtualCard::ClockMode::Virtual;
    plug->descriptor = plug->isVirtual ? eventfd(1, EFD_CLOEXEC)
                                       : timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK);
    if (plug->descriptor < 0) return -errno;
    plug->io.version = SND_PCM_IOPLUG_VERSION;
    plug->io.name = "Virtual sound card";
    // Positions grow without wrapping at the buffer's end, so that none is ever ambiguous.
    plug->io.flags = SND_PCM_IOPLUG_FLAG_MONOTONIC | SND_PCM_IOPLUG_FLAG_BOUNDARY_WA;
    plug->io.callback = stream == SND_PCM_STREAM_CAPTURE ? &kCaptureCallbacks : &kPlaybackCallbacks;
    plug->io.private_data = plug.get();
    plug->io.poll_fd = plug->descriptor;
    plug->io.poll_events = POLLIN;
    if (const int error = snd_pcm_ioplug_create(&plug->io, name, stream, mode); error < 0) return error;
    // From here on the library closes the object through onClose.
    Plug* const opened = plug.release();
    if (const int error = setConstraints(&opened->io, opened->card->settings().rateHz); error < 0) {
        snd_pcm_ioplug_delete(&opened->io);
        return error;
    }
    *pcm = opened->io.pcm;
    return 0;
}

}  // namespace

}  // namespace tvk::desk

extern "C" {

// The entry that the ALSA library looks up. The card number and device arrive in the configuration and do not
// matter: there is one card.
SND_PCM_PLUGIN_DEFINE_FUNC(tarvek_card) {
    (void)root;
    (void)conf;
    return tvk::desk::openCard(pcmp, name, stream, mode);
}

SND_PCM_PLUGIN_SYMBOL(tarvek_card)

}  // extern "C"
