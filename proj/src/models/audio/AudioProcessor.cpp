#include "proj/models/audio/AudioProcessor.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "core/Audio/AudioAlsaPcm.h"
#include "core/DspUnitSystem/SFAD_LoadPresetCabsim.h"
#include "core/Parameter/Parameter.h"
#include "core/ProductProfile/ProductProfile.h"
#include "core/System/DspUnitAudioBufferStorage.h"
#include "core/System/DspUnitInputVoltageMappingConfig.h"
#include "core/ui/UIStdDisplayDspUnit.h"
#include "proj/models/audio/BlockTimer.h"
#include "proj/models/audio/SampleConversion.h"
#include "shared/DspUnitInfo/DefaultDspUnitDatabase.h"
#include "utility/Clock.h"
#include "utility/Exception.h"
#include "utility/Log.h"

namespace {

constexpr const char* kTag = "AudioProcessor";
constexpr const char* kInitTag = "AudioProcessorInit";
constexpr const char* kKnobClass = "QNB";

constexpr int kGraphInputs = 2;
constexpr int kGraphOutputs = 2;
constexpr std::uint32_t kPcmChannels = 6;

int bitDepthOf(int audioFormat) {
    switch (audioFormat) {
        case SND_PCM_FORMAT_S24_LE:
            return 24;
        case SND_PCM_FORMAT_S32_LE:
            return 32;
        default:
            TVK_THROW("Specified audio format is not supported");
    }
}

std::chrono::nanoseconds timeOf(std::uint32_t frames, float sampleRateHz) {
    return std::chrono::nanoseconds(std::llround(1e9 * frames / static_cast<double>(sampleRateHz)));
}

template <typename Sample>
PcmBuffer<Sample> allocateLogged(const char* name, std::size_t bytes) {
    tvk::log::debug(kInitTag, "allocating %s: %d bytes", name, static_cast<int>(bytes));
    return PcmBuffer<Sample>(name, bytes);
}

}  // namespace

// One period each, interleaved, in the order in which they are released.
struct AudioProcessor::Buffers {
    explicit Buffers(const AudioAlsaPcm& pcm)
        : inputPcm(allocateLogged<std::int32_t>("inputAudioAlsaPcmBuffer", pcm.getCapturePeriodBytes())),
          outputPcm(allocateLogged<std::int32_t>("outputAudioAlsaPcmBuffer", pcm.getPlaybackPeriodBytes())),
          zeroedOutputPcm("zeroedOutputAudioAlsaPcmBuffer", pcm.getPlaybackPeriodBytes()),
          inputSamples(allocateLogged<float>("inputAudioSampleBuffer", pcm.getCaptureFloatBytes())),
          outputSamples(allocateLogged<float>("outputAudioSampleBuffer", pcm.getPlaybackFloatBytes())) {}

    PcmBuffer<std::int32_t> inputPcm;
    PcmBuffer<std::int32_t> outputPcm;
    PcmBuffer<std::int32_t> zeroedOutputPcm;
    PcmBuffer<float> inputSamples;
    PcmBuffer<float> outputSamples;
};

AudioProcessor::AudioProcessor(const AudioProcessorSettings& settings, const ProductProfile& productProfile)
    : sampleRate_(settings.audioSampleRate),
      blockLength_(settings.audioBlockLength),
      periodTime_(timeOf(settings.audioBlockLength, settings.audioSampleRate)),
      productProfile_(productProfile),
      blockTimer_(settings.blockTimer),
      irProcessor_(makeCabSim(static_cast<int>(blockLength_), sampleRate_)),
      unitDatabase_(std::make_unique<DefaultDspUnitDatabase>()),
      systemAudioDevice_(std::make_unique<SFAD_LoadPresetCabsim>(
          kGraphInputs, kGraphOutputs, unitDatabase_.get(), static_cast<int>(blockLength_),
          settings.processorUtilizationFilename, irProcessor_, sampleRate_)),
      inputBuffer0_(blockLength_),
      inputBuffer1_(blockLength_),
      summedInput_(blockLength_),
      inputStage_(sampleRate_, productProfile.getDreGainDeltaDb()),
      fade0_(sampleRate_),
      fade1_(sampleRate_),
      audioBitDepth_((logSettings(settings), bitDepthOf(settings.audioFormat))) {
    openPcm(settings);
    allocateBuffers();
    wireGraph();
    DspUnitInputVoltageMappingConfig::set(productProfile_.getInputVoltageMapping());
}

AudioProcessor::~AudioProcessor() {
    tvk::log::debug(kTag, "destructor called");
    tvk::log::debug(kTag, "deleting audioAlsaPcm");
    audioAlsaPcm_.reset();
    tvk::log::debug(kTag, "freeing inputAudioAlsaPcmBuffer\n");
    buffers_->inputPcm.free();
    tvk::log::debug(kTag, "freeing outputAudioAlsaPcmBuffer\n");
    buffers_->outputPcm.free();
    tvk::log::debug(kTag, "freeing zeroedOutputAudioAlsaPcmBuffer\n");
    buffers_->zeroedOutputPcm.free();
    tvk::log::debug(kTag, "freeing inputAudioSampleBuffer\n");
    buffers_->inputSamples.free();
    tvk::log::debug(kTag, "freeing outputAudioSampleBuffer\n");
    buffers_->outputSamples.free();
    tvk::log::debug(kTag, "deleting audio buffering\n");
    DspUnitAudioBufferStorage::setAddr(DspUnitAudioBufferStorage::kDryGuitar, nullptr);
}

void AudioProcessor::logSettings(const AudioProcessorSettings& settings) const {
    tvk::log::debug(kInitTag, "audioSampleRate %0.0f", static_cast<double>(settings.audioSampleRate));
    tvk::log::debug(kInitTag, "audioBlockLength %0d", static_cast<int>(settings.audioBlockLength));
    tvk::log::debug(kInitTag, "inputDevice %s", settings.inputDevice.c_str());
    tvk::log::debug(kInitTag, "outputDevice %s", settings.outputDevice.c_str());
    tvk::log::debug(kInitTag, "audioFormat %d", settings.audioFormat);
    tvk::log::debug(kInitTag, "dreGainDeltaDb is %f",
                    static_cast<double>(productProfile_.getDreGainDeltaDb()));
}

void AudioProcessor::openPcm(const AudioProcessorSettings& settings) {
    PcmConfiguration playback;
    playback.device = settings.outputDevice.c_str();
    playback.rate = static_cast<std::uint32_t>(settings.audioSampleRate);
    playback.periodFrames = blockLength_;
    playback.channels = kPcmChannels;
    playback.format = static_cast<snd_pcm_format_t>(settings.audioFormat);
    PcmConfiguration capture = playback;
    capture.device = settings.inputDevice.c_str();
    audioAlsaPcm_ = std::make_unique<AudioAlsaPcm>(playback, capture, true);
}

void AudioProcessor::allocateBuffers() {
    buffers_ = std::make_unique<Buffers>(*audioAlsaPcm_);
    inputSampleCount_ = blockLength_ * audioAlsaPcm_->getCaptureConfiguration().channels;
    outputSampleCount_ = blockLength_ * audioAlsaPcm_->getPlaybackConfiguration().channels;
}

// The inputs are bound here and not in the first cycle, since a graph keeps lists of its connections and a
// list allocates.
void AudioProcessor::wireGraph() {
    systemAudioDevice_->connectInput(0, inputBuffer0_.data(), 0);
    systemAudioDevice_->connectInput(1, inputBuffer1_.data(), 1);
    graphOutput0_ = systemAudioDevice_->getOutputAddr(0);
    graphOutput1_ = systemAudioDevice_->getOutputAddr(1);
    DspUnitAudioBufferStorage::setAddr(DspUnitAudioBufferStorage::kDryGuitar, summedInput_.data());
}

void AudioProcessor::process() {
    if (restartRequested_)
        restartStreams();
    else if (startRequested_)
        startStreams();
    if (!readPeriod()) return;
    if (!audioAlsaPcm_->write(buffers_->outputPcm.data())) restartRequested_ = true;

    if (blockTimer_) blockTimer_->blockStarts();
    computeBlock();
    if (blockTimer_) blockTimer_->blockEnds();
    started_.store(true, std::memory_order_relaxed);
}

void AudioProcessor::computeBlock() {
    convertRawToFloat(buffers_->inputPcm.data(), buffers_->inputSamples.data(), inputSampleCount_);
    inputStage_.process(buffers_->inputSamples.data(), kPcmChannels, blockLength_, inputBuffer0_.data(),
                        inputBuffer1_.data(), summedInput_.data());
    systemAudioDevice_->process();
    fadeIntoFrames();
    convertFloatToRaw(buffers_->outputSamples.data(), buffers_->outputPcm.data(), outputSampleCount_,
                      audioBitDepth_);
}

void AudioProcessor::restartStreams() {
    restartRequested_ = false;
    audioAlsaPcm_->dropAndPrepare();
    fillAndStart();
}

void AudioProcessor::startStreams() {
    startRequested_ = false;
    fillAndStart();
    fade0_.setMuted(false);
    fade1_.setMuted(false);
}

// A full playback buffer of silence, then both streams at once. A failed write shows up again in the cycle.
void AudioProcessor::fillAndStart() {
    const std::uint32_t periods = audioAlsaPcm_->getPlaybackConfiguration().periods;
    for (std::uint32_t i = 0; i < periods; ++i)
        audioAlsaPcm_->write(buffers_->zeroedOutputPcm.data());
    const int result = audioAlsaPcm_->start();
    if (result < 0) TVK_WARN("Go error: %s\n", snd_strerror(result));
}

// A device that is gone fails at once, cycle after cycle: from the second failure on the thread keeps to the
// pace of the audio instead of spinning at real-time priority.
bool AudioProcessor::readPeriod() {
    if (audioAlsaPcm_->read(buffers_->inputPcm.data())) {
        readFailedBefore_ = false;
        return true;
    }
    restartRequested_ = true;
    if (readFailedBefore_) tvk::Clock::current().sleepFor(periodTime_);
    readFailedBefore_ = true;
    return false;
}

// Channel 0 is the speaker feed, 1 the line feed, the others stay silent.
void AudioProcessor::fadeIntoFrames() {
    float* frame = buffers_->outputSamples.data();
    for (std::uint32_t i = 0; i < blockLength_; ++i, frame += kPcmChannels) {
        std::fill_n(frame, kPcmChannels, 0.0f);
        frame[0] = graphOutput0_[i] * fade0_.next();
        frame[1] = graphOutput1_[i] * fade1_.next();
    }
}

void AudioProcessor::loadPreset(const std::string& json) {
    const std::lock_guard lock(controlMutex_);
    amplifierUnit_ = nullptr;
    uiBinding_.reset();
    systemAudioDevice_->loadPreset(json);
    const std::vector<std::string> ampNodeIds = systemAudioDevice_->getNodeIds();
    if (ampNodeIds.empty()) {
        TVK_WARN("ampNodeId is empty, preset has no contents");
        return;
    }
    amplifierUnit_ = systemAudioDevice_->getDspUnit(ampNodeIds.front());
    const std::string name = amplifierUnit_->getTarvekId();
    uiBinding_ = std::make_unique<UIStdDisplayDspUnit>(*amplifierUnit_, unitDatabase_->getDefinition(name),
                                                       kKnobClass);
    tvk::log::debug(kTag, "Created UI for %s", name.c_str());
}

void AudioProcessor::setKnob(AmpControl control, float position) {
    const std::lock_guard lock(controlMutex_);
    if (uiBinding_) uiBinding_->setKnob(static_cast<int>(control), position);
}

void AudioProcessor::setSwitch(AmpControl control, bool on) {
    const std::lock_guard lock(controlMutex_);
    if (uiBinding_) uiBinding_->setSwitch(static_cast<int>(control), on);
}

template <typename T>
void AudioProcessor::setAmplifierParameter(const char* id, const T& value) {
    const std::lock_guard lock(controlMutex_);
    if (!uiBinding_) return;
    IParameter* parameter = nullptr;
    try {
        parameter = amplifierUnit_->getParameter(id);
    } catch (const std::runtime_error& unknown) {
        TVK_WARN("%s: %s", amplifierUnit_->getTarvekId().c_str(), unknown.what());
        return;
    }
    dynamic_cast<Parameter<T>&>(*parameter).set(value);
}

void AudioProcessor::setCabinet(const std::string& fileOrName) {
    setAmplifierParameter("idCabinet", fileOrName);
}

void AudioProcessor::setCabinetHPF(float frequencyHz) {
    setAmplifierParameter("idCabinetHPF", frequencyHz);
}

void AudioProcessor::setCabinetLPF(float frequencyHz) {
    setAmplifierParameter("idCabinetLPF", frequencyHz);
}

void AudioProcessor::setCabinetLevel(float levelDb) {
    setAmplifierParameter("idCabinetLevel", levelDb);
}

void AudioProcessor::setReverbTaper(int type) {
    setAmplifierParameter("idReverbTaper", type);
}

long AudioProcessor::getXrunCount() const {
    return audioAlsaPcm_->getXrunCount();
}
