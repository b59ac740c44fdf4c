// Every control of the front panel and the back panel's button, bound to its action.
#pragma once

#include "proj/views/controls/Layer.h"

class Controller;
class FrontPanelSignals;

class HwBaseLayer final : public Layer {
public:
    // Both outlive the layer.
    HwBaseLayer(Controller& controller, FrontPanelSignals& signals);
};
