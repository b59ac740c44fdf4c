#include "proj/controllers/Controller.h"

#include <array>
#include <string>

#include "proj/models/CabsimModel.h"
#include "proj/models/FactoryIRModel.h"
#include "proj/models/Model.h"
#include "proj/network/ClientManager.h"
#include "utility/Log.h"

namespace {

constexpr const char* kTag = "Controller";

constexpr int kTestPreset = 0;
constexpr int kCabsimPositions = 3;
constexpr int kPressesForTestMode = 5;

struct Amplifier {
    const char* line;
    int preset;
};

// By product id.
constexpr std::array<Amplifier, 4> kAmplifiers = {{{"Loading Arvel preset", 2},
                                                   {"Loading Corvin preset", 1},
                                                   {"Loading Lisko preset", 3},
                                                   {"Loading Sorrel Reverb preset", 4}}};

// The only product whose panel has bright switches and middle knobs.
constexpr int kProductWithMiddle = 0;

bool isCabsimPosition(int position) {
    return position >= 0 && position < kCabsimPositions;
}

void logPosition(const char* name, float position) {
    tvk::log::debug(kTag, "%s(%f)", name, static_cast<double>(position));
}

void logNumber(const char* name, int value) {
    tvk::log::debug(kTag, "%s(%d)", name, value);
}

}  // namespace

Controller::Controller(Model& model, tvk::CabsimModel& cabsimModel, tvk::ClientManager& clientManager,
                       tvk::FactoryIRModel& factoryIRModel)
    : model_(model),
      cabsimModel_(cabsimModel),
      factoryIRModel_(factoryIRModel),
      clientManager_(clientManager) {
    clientManager_.addObserver(this, tvk::ClientManager::kClientId);
}

Controller::~Controller() {
    clientManager_.removeObserver(this);
}

void Controller::turn(const char* name, float position, void (Model::*apply)(float),
                      PanelValue<float> PanelState::*stored) {
    const Lock lock(mutex_);
    logPosition(name, position);
    (model_.*apply)(position);
    (model_.panel().*stored).set(position);
}

void Controller::vibratoReverbController(float position) {
    turn("vibratoReverbController", position, &Model::setVibratoReverb, &PanelState::vibratoReverb);
}

void Controller::vibratoBassController(float position) {
    turn("vibratoBassController", position, &Model::setVibratoBass, &PanelState::vibratoBass);
}

void Controller::vibratoMiddleController(float position) {
    turn("vibratoMiddleController", position, &Model::setVibratoMiddle, &PanelState::vibratoMiddle);
}

void Controller::vibratoTrebleController(float position) {
    turn("vibratoTrebleController", position, &Model::setVibratoTreble, &PanelState::vibratoTreble);
}

void Controller::vibratoVolumeController(float position) {
    turn("vibratoVolumeController", position, &Model::setVibratoVolume, &PanelState::vibratoVolume);
}

void Controller::normalBassController(float position) {
    turn("normalBassController", position, &Model::setNormalBass, &PanelState::normalBass);
}

void Controller::normalMiddleController(float position) {
    turn("normalMiddleController", position, &Model::setNormalMiddle, &PanelState::normalMiddle);
}

void Controller::normalTrebleController(float position) {
    turn("normalTrebleController", position, &Model::setNormalTreble, &PanelState::normalTreble);
}

void Controller::normalVolumeController(float position) {
    turn("normalVolumeController", position, &Model::setNormalVolume, &PanelState::normalVolume);
}

void Controller::vibratoIntensityController(float position) {
    turn("vibratoIntensityController", position, &Model::setVibratoIntensity, &PanelState::vibratoIntensity);
}

void Controller::vibratoSpeedController(float position) {
    turn("vibratoSpeedController", position, &Model::setVibratoSpeed, &PanelState::vibratoSpeed);
}

void Controller::standbySwitchController(bool on) {
    const Lock lock(mutex_);
    logNumber("standbySwitchController", on);
    model_.setStandbySwitch(on);
    model_.panel().standby.set(on);
}

void Controller::vibratoBrightSwitchController(bool on) {
    const Lock lock(mutex_);
    logNumber("vibratoBrightSwitchController", on);
    model_.setVibratoBrightSwitch(on);
    model_.panel().vibratoBright.set(on);
}

void Controller::normalBrightSwitchController(bool on) {
    const Lock lock(mutex_);
    logNumber("normalBrightSwitchController", on);
    model_.setNormalBrightSwitch(on);
    model_.panel().normalBright.set(on);
}

void Controller::footswitchReverbController(int on) {
    const Lock lock(mutex_);
    logNumber("footswitchReverbController", on);
    model_.setVibratoReverbMute((on ^ 1) != 0);
    model_.panel().footswitchReverb.set(on != 0);
}

void Controller::footswitchVibratoController(int on) {
    const Lock lock(mutex_);
    logNumber("footswitchVibratoController", on);
    model_.setVibratoTremoloMute((on ^ 1) != 0);
    model_.panel().footswitchVibrato.set(on != 0);
}

void Controller::cabsimController(int position) {
    const Lock lock(mutex_);
    logNumber("cabsimController", position);
    const int effective = isCabsimPosition(position) ? position : 0;
    if (effective != position) TVK_WARN("Unsupported cabsim value %d", position);
    if (isTestMode_)
        model_.setCabsimTestMode(effective);
    else if (!clientManager_.isConnectionOpen(tvk::ClientManager::kClientId))
        applyCabinet(static_cast<std::uint32_t>(effective));
    model_.panel().cabsim.set(position);
}

void Controller::applyCabinet(std::uint32_t slot) {
    const tvk::CabsimModel::ApplyLock applying = cabsimModel_.lockApply();
    const std::string path = cabsimModel_.getCabsimIRFilePath(slot);
    const float highPassHz = cabsimModel_.getCabHPF(slot);
    const float lowPassHz = cabsimModel_.getCabLPF(slot);
    const float levelDb = cabsimModel_.getCabLevel(slot);
    model_.setCabsim(path);
    model_.setCabsimHPF(highPassHz);
    model_.setCabsimLPF(lowPassHz);
    model_.setCabsimLevel(levelDb);
}

void Controller::productIdController(int id) {
    const Lock lock(mutex_);
    logNumber("productIdController", id);
    if (id >= 0 && id < static_cast<int>(kAmplifiers.size())) {
        const Amplifier& amplifier = kAmplifiers[static_cast<std::size_t>(id)];
        tvk::log::debug(kTag, "%s", amplifier.line);
        model_.setAudioProcessingPreset(amplifier.preset);
        model_.panel().productId.set(id);
        factoryIRModel_.amplifierChanged(id);
        cabsimModel_.amplifierChanged(id);
    } else {
        TVK_WARN("Invalid product id (%d), loading test preset", id);
        model_.setAudioProcessingPreset(kTestPreset);
        model_.panel().productId.set(id);
        isTestMode_ = true;
    }
    replayPanel();
}

void Controller::firmwareUpdateController() {
    const Lock lock(mutex_);
    ++updateButtonPresses_;
    tvk::log::debug(kTag, "buttonPressed(FirmwareUpdate) %d times", updateButtonPresses_);
    if (updateButtonPresses_ < kPressesForTestMode) return;
    model_.setAudioProcessingPreset(kTestPreset);
    isTestMode_ = true;
    replayPanel();
    updateButtonPresses_ = 0;
}

// Volume comes last: a preset is heard when its tone is set.
void Controller::replayPanel() {
    const PanelState& panel = model_.panel();
    cabsimController(panel.cabsim.get());
    giveClientItsCabinet();
    normalTrebleController(panel.normalTreble.get());
    normalBassController(panel.normalBass.get());
    vibratoTrebleController(panel.vibratoTreble.get());
    vibratoBassController(panel.vibratoBass.get());
    if (panel.productId.get() == kProductWithMiddle) {
        normalBrightSwitchController(panel.normalBright.get());
        normalMiddleController(panel.normalMiddle.get());
        vibratoBrightSwitchController(panel.vibratoBright.get());
        vibratoMiddleController(panel.vibratoMiddle.get());
    }
    vibratoReverbController(panel.vibratoReverb.get());
    vibratoIntensityController(panel.vibratoIntensity.get());
    vibratoSpeedController(panel.vibratoSpeed.get());
    footswitchReverbController(panel.footswitchReverb.get());
    footswitchVibratoController(panel.footswitchVibrato.get());
    standbySwitchController(panel.standby.get() != 0);
    normalVolumeController(panel.normalVolume.get());
    vibratoVolumeController(panel.vibratoVolume.get());
    replayed();
}

// The switch says nothing while a client is connected, and the new preset knows no cabinet.
void Controller::giveClientItsCabinet() {
    if (!isTestMode_ && clientManager_.isConnectionOpen(tvk::ClientManager::kClientId))
        cabsimModel_.reapplyVirtualCabsim();
}

void Controller::connectionStateChanged(bool connected) {
    const Lock lock(mutex_);
    // A change of the other direction may have overtaken this one.
    if (clientManager_.isConnectionOpen(tvk::ClientManager::kClientId) != connected) return;
    const int position = model_.panel().cabsim.get();
    if (connected) {
        cabsimModel_.setVirtualCabsim(static_cast<std::uint32_t>(isCabsimPosition(position) ? position : 0));
    } else {
        cabsimModel_.syncCurrentState();
        cabsimController(position);
    }
}

void Controller::setPageController(int pageNumber) {
    const Lock lock(mutex_);
    pageNumber_ = pageNumber;
    tvk::log::debug(kTag, "setPageController set pageNumber: %d", pageNumber_);
}

void Controller::testBoolController(bool) {
    tvk::log::debug(kTag, "testBoolController  Do nothing");
}

bool Controller::isTestMode() const {
    const Lock lock(mutex_);
    return isTestMode_;
}
