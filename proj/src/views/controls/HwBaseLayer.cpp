#include "proj/views/controls/HwBaseLayer.h"

#include <memory>

#include "proj/controllers/Controller.h"
#include "proj/views/controls/FrontPanelSignals.h"
#include "proj/views/controls/UiObjectsHw.h"

namespace {

// The member function with its object.
template <typename... Values>
auto bound(Controller& controller, void (Controller::*action)(Values...)) {
    return [&controller, action](Values... values) { (controller.*action)(values...); };
}

}  // namespace

HwBaseLayer::HwBaseLayer(Controller& controller, FrontPanelSignals& signals) {
    const auto pot = [&](Pot index, void (Controller::*action)(float)) {
        add(std::make_unique<UiObjectHwPot>(signals.of(index), bound(controller, action)));
    };
    const auto onOff = [&](OnOffSwitch index, auto action) {
        add(std::make_unique<UiObjectHwOnOffSwitch>(signals.of(index), bound(controller, action)));
    };
    const auto multi = [&](MultiPositionSwitch index, void (Controller::*action)(int)) {
        add(std::make_unique<UiObjectHwMultiPositionSwitch>(signals.of(index), bound(controller, action)));
    };
    pot(Pot::VibratoReverb, &Controller::vibratoReverbController);
    pot(Pot::VibratoBass, &Controller::vibratoBassController);
    pot(Pot::VibratoMiddle, &Controller::vibratoMiddleController);
    pot(Pot::VibratoTreble, &Controller::vibratoTrebleController);
    pot(Pot::VibratoVolume, &Controller::vibratoVolumeController);
    pot(Pot::NormalBass, &Controller::normalBassController);
    pot(Pot::NormalMiddle, &Controller::normalMiddleController);
    pot(Pot::NormalTreble, &Controller::normalTrebleController);
    pot(Pot::NormalVolume, &Controller::normalVolumeController);
    onOff(OnOffSwitch::FootswitchReverb, &Controller::footswitchReverbController);
    onOff(OnOffSwitch::FootswitchVibrato, &Controller::footswitchVibratoController);
    multi(MultiPositionSwitch::Cabsim, &Controller::cabsimController);
    pot(Pot::VibratoIntensity, &Controller::vibratoIntensityController);
    pot(Pot::VibratoSpeed, &Controller::vibratoSpeedController);
    onOff(OnOffSwitch::Standby, &Controller::standbySwitchController);
    multi(MultiPositionSwitch::ProductId, &Controller::productIdController);
    onOff(OnOffSwitch::VibratoBright, &Controller::vibratoBrightSwitchController);
    onOff(OnOffSwitch::NormalBright, &Controller::normalBrightSwitchController);
    add(std::make_unique<UiObjectHwButton>(signals.of(Button::FirmwareUpdate),
                                           bound(controller, &Controller::firmwareUpdateController)));
}
