// The panels: the pages with their controls, the serial link to the control processor, and the button on the
// back panel.
//
// Built and destroyed on the main thread; whatever the panels do after that happens on the threads of the
// members.
#pragma once

#include "proj/views/controls/ControlMessageReceiver.h"
#include "proj/views/controls/FrontPanelSignals.h"
#include "proj/views/controls/PageManager.h"
#include "proj/views/controls/UpdateButtonGPIOReceiver.h"

class Controller;
class Model;

namespace tvk {
struct Platform;
class SystemInfoModel;
}  // namespace tvk

class View {
public:
    // Binds the controls, opens link and button, and asks the control processor which amplifier this is and
    // where its controls stand; the answers reach the controller on ControlMsgRx. The objects outlive the
    // view.
    View(Controller& controller, Model& model, tvk::SystemInfoModel& systemInfo,
         const tvk::Platform& platform);

private:
    FrontPanelSignals signals_;
    PageManager pageManager_;
    ControlMessageReceiver controlMessageReceiver_;
    UpdateButtonGPIOReceiver updateButtonGPIOReceiver_;
};
