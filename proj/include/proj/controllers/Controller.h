// Where events of the panels become actions: each function applies a control to the engine and keeps its
// value in the model's panel state, from which a new preset is given all of them.
//
// Threads: any control thread. One recursive mutex covers all actions; behind it come, in this order, the
// apply mutex of the cabinet model and the engine's own. Nobody calls in here with one of those held.
#pragma once

#include <cstdint>
#include <mutex>

#include "proj/models/PanelState.h"
#include "proj/network/ClientObserver.h"
#include "utility/PriorityMutex.h"
#include "utility/Signal.h"

class Model;

namespace tvk {
class CabsimModel;
class ClientManager;
class FactoryIRModel;
}  // namespace tvk

class Controller final : public tvk::ClientObserver {
public:
    // Observes the client's connection. The objects outlive the controller.
    Controller(Model& model, tvk::CabsimModel& cabsimModel, tvk::ClientManager& clientManager,
               tvk::FactoryIRModel& factoryIRModel);
    ~Controller() override;
    Controller(const Controller&) = delete;
    Controller& operator=(const Controller&) = delete;

    // Knobs: position 0 to 1.
    void vibratoReverbController(float position);
    void vibratoBassController(float position);
    void vibratoMiddleController(float position);
    void vibratoTrebleController(float position);
    void vibratoVolumeController(float position);
    void normalBassController(float position);
    void normalMiddleController(float position);
    void normalTrebleController(float position);
    void normalVolumeController(float position);
    void vibratoIntensityController(float position);
    void vibratoSpeedController(float position);

    void standbySwitchController(bool on);
    void vibratoBrightSwitchController(bool on);
    void normalBrightSwitchController(bool on);

    // 1: the effect is on.
    void footswitchReverbController(int on);
    void footswitchVibratoController(int on);

    // Cabinet switch, 0 to 2; any other position is a warning and acts as 0. While a client is connected the
    // position is only kept, since the client chooses the cabinet.
    void cabsimController(int position);

    // Which amplifier this is: 0 Arvel, 1 Corvin, 2 Lisko, 3 Sorrel. Loads its preset, tells the catalogues,
    // and gives the preset all controls. Any other id is a warning and means test mode. Blocks for the load.
    void productIdController(int id);

    // The button on the back panel has been pressed: the fifth press means test mode.
    void firmwareUpdateController();

    void setPageController(int pageNumber);
    void testBoolController(bool value);

    // A client takes the cabinet over, or gives it back to the switch.
    void connectionStateChanged(bool connected) override;

    // True from the first time that test mode was entered.
    bool isTestMode() const;

    // Emitted when a new preset has been given all controls, with the controller's mutex held.
    nod::signal_type<> replayed;

private:
    using Lock = std::lock_guard<tvk::RecursivePriorityMutex>;

    void turn(const char* name, float position, void (Model::*apply)(float),
              PanelValue<float> PanelState::*stored);
    void applyCabinet(std::uint32_t slot);
    void replayPanel();
    void giveClientItsCabinet();

    Model& model_;
    tvk::CabsimModel& cabsimModel_;
    tvk::FactoryIRModel& factoryIRModel_;
    tvk::ClientManager& clientManager_;
    mutable tvk::RecursivePriorityMutex mutex_;
    int pageNumber_ = 1;
    int updateButtonPresses_ = 0;
    bool isTestMode_ = false;
};
