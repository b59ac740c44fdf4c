#include "proj/models/Model.h"

#include <array>
#include <chrono>
#include <filesystem>

#include "algorithms/reverb/SpringTankResponse.h"
#include "core/ProductProfile/ProductProfile.h"
#include "proj/models/audio/AudioProcessor.h"
#include "proj/models/audio/AudioProcessorThread.h"
#include "proj/platform/Platform.h"
#include "shared/Presets/BuiltInPresets.h"
#include "utility/Clock.h"
#include "utility/Log.h"

namespace {

constexpr const char* kTag = "Model";

constexpr std::uint32_t kBlockLength = 32;  // frames
constexpr int kAudioFormat = 6;             // S24_LE
constexpr float kSampleRateHz = 44100.0f;
constexpr std::chrono::milliseconds kStartPoll{100};

// As they have always been written; the third lacks its bracket.
constexpr std::array<const char*, tvk::kBuiltInPresets> kPresetLines = {
    "setAudioProcessingPreset(TestModePassthru)", "setAudioProcessingPreset(CorvinReverb65)",
    "setAudioProcessingPreset(ArvelReverb65)", "setAudioProcessingPreset(LiskoReverb65",
    "setAudioProcessingPreset(SorrelReverb)"};

constexpr const char* kFirstTestCabinet = "/home/root/IRs/TestCabinet1";
constexpr const char* kSecondTestCabinet = "/home/root/IRs/TestCabinet2";
constexpr const char* kNoCabinet = "none";

// The costs of the units: in the working directory, else beside the product profile.
std::string utilizationFile(const tvk::Platform& platform) {
    const std::filesystem::path name = "PU_Ostrel_RX.json";
    return std::filesystem::exists(name) ? name : platform.homeRoot / name;
}

AudioProcessorSettings engineSettings(const tvk::Platform& platform) {
    return {platform.captureDevice, platform.playbackDevice,   kBlockLength,       kAudioFormat,
            kSampleRateHz,          utilizationFile(platform), platform.blockTimer};
}

void logPosition(const char* name, float position) {
    tvk::log::debug(kTag, "%s(%0.3f)", name, static_cast<double>(position));
}

void logValue(const char* name, float value) {
    tvk::log::debug(kTag, "%s(%f)", name, static_cast<double>(value));
}

void logNumber(const char* name, int value) {
    tvk::log::debug(kTag, "%s(%d)", name, value);
}

}  // namespace

Model::Model(const tvk::Platform& platform)
    : productProfile_(
          std::make_unique<ProductProfile>((platform.homeRoot / "product_profile.json").string())),
      audioProcessor_(std::make_unique<AudioProcessor>(engineSettings(platform), *productProfile_)),
      audioProcessorThread_(std::make_unique<AudioProcessorThread>(*audioProcessor_)) {
    tvk::log::debug(kTag, "Constructor called");
    // The amps' tank, ready before the first preset asks for it.
    SpringTankResponse::get(kSampleRateHz);
    audioProcessorThread_->start();
    while (!audioProcessor_->isStarted())
        tvk::Clock::current().sleepFor(kStartPoll);
    tvk::log::debug(kTag, "Constructor complete");
}

Model::~Model() = default;

void Model::setAudioProcessingPreset(int slot) {
    const char* const preset = tvk::builtInPreset(slot);
    if (!preset) {
        TVK_ERROR("invalid preset selected, %d", slot);
        return;
    }
    tvk::log::debug(kTag, "%s", kPresetLines[static_cast<std::size_t>(slot)]);
    audioProcessor_->loadPreset(preset);
}

void Model::setKnob(const char* name, AmpControl control, float position) {
    logPosition(name, position);
    audioProcessor_->setKnob(control, position);
}

void Model::setSwitch(const char* name, AmpControl control, bool on) {
    logNumber(name, on);
    audioProcessor_->setSwitch(control, on);
}

void Model::setNormalVolume(float position) {
    setKnob("setNormalVolume", AmpControl::NormalVolume, position);
}

void Model::setNormalTreble(float position) {
    setKnob("setNormalTreble", AmpControl::NormalTreble, position);
}

void Model::setNormalMiddle(float position) {
    setKnob("setNormalMiddle", AmpControl::NormalMiddle, position);
}

void Model::setNormalBass(float position) {
    setKnob("setNormalBass", AmpControl::NormalBass, position);
}

void Model::setNormalBrightSwitch(bool on) {
    setSwitch("setNormalBrightSwitch", AmpControl::NormalBrightSwitch, on);
}

void Model::setVibratoVolume(float position) {
    setKnob("setVibratoVolume", AmpControl::VibratoVolume, position);
}

void Model::setVibratoTreble(float position) {
    setKnob("setVibratoTreble", AmpControl::VibratoTreble, position);
}

void Model::setVibratoMiddle(float position) {
    setKnob("setVibratoMiddle", AmpControl::VibratoMiddle, position);
}

void Model::setVibratoBass(float position) {
    setKnob("setVibratoBass", AmpControl::VibratoBass, position);
}

void Model::setVibratoReverb(float position) {
    setKnob("setVibratoReverb", AmpControl::VibratoReverb, position);
}

void Model::setVibratoReverbMute(bool muted) {
    setSwitch("setVibratoReverbMute", AmpControl::VibratoReverbMute, muted);
}

void Model::setVibratoSpeed(float position) {
    setKnob("setVibratoSpeed", AmpControl::VibratoSpeed, position);
}

void Model::setVibratoIntensity(float position) {
    setKnob("setVibratoIntensity", AmpControl::VibratoIntensity, position);
}

void Model::setVibratoBrightSwitch(bool on) {
    setSwitch("setVibratoBrightSwitch", AmpControl::VibratoBrightSwitch, on);
}

void Model::setVibratoTremoloMute(bool muted) {
    setSwitch("setVibratoTremoloMute", AmpControl::VibratoTremoloMute, muted);
}

void Model::setStandbySwitch(bool on) {
    logNumber("setStandbySwitch", on);
}

void Model::setCabsim(const std::string& name) {
    tvk::log::debug(kTag, "setCabsim(%s)", name.c_str());
    audioProcessor_->setCabinet(name);
}

void Model::setCabsimHPF(float frequencyHz) {
    logValue("setCabsimHPF", frequencyHz);
    audioProcessor_->setCabinetHPF(frequencyHz);
}

void Model::setCabsimLPF(float frequencyHz) {
    logValue("setCabsimLPF", frequencyHz);
    audioProcessor_->setCabinetLPF(frequencyHz);
}

void Model::setCabsimLevel(float levelDb) {
    logValue("setCabsimLevel", levelDb);
    audioProcessor_->setCabinetLevel(levelDb);
}

void Model::setCabsimTestMode(int position) {
    logNumber("setCabsimTestMode", position);
    switch (position) {
        case 0:
            audioProcessor_->setCabinet(kFirstTestCabinet);
            break;
        case 1:
            audioProcessor_->setCabinet(kNoCabinet);
            break;
        case 2:
            audioProcessor_->setCabinet(kSecondTestCabinet);
            break;
        default:
            TVK_ERROR("invalid cabsim selected, %d", position);
    }
}

void Model::setReverbTaper(int type) {
    logNumber("setReverbTaper", type);
    audioProcessor_->setReverbTaper(type);
}

void Model::setMasterVolume(float value) {
    logPosition("setMasterVolume", value);
    audioProcessor_->setMasterVolume(value);
}

std::shared_ptr<IRProcessor> Model::getIrProcessor() const {
    return audioProcessor_->getIrProcessor();
}

float Model::getSampleRate() const {
    return audioProcessor_->getSampleRate();
}

const std::string& Model::getProductFamily() const {
    return productProfile_->getProductFamily();
}

long Model::getXrunCount() const {
    return audioProcessor_->getXrunCount();
}
