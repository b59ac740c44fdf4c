#include "proj/views/controls/View.h"

#include "proj/platform/Platform.h"

namespace {

constexpr int kFirstPage = 1;

}  // namespace

View::View(Controller& controller, Model&, tvk::SystemInfoModel& systemInfo, const tvk::Platform& platform)
    : pageManager_(kFirstPage, controller, signals_),
      controlMessageReceiver_(platform.uartDevice, signals_),
      updateButtonGPIOReceiver_(signals_, systemInfo, platform.gpioRoot, platform.buttonPollEvents) {
    controlMessageReceiver_.start();
    ControlMessageSender& controlProcessor = controlMessageReceiver_.sender();
    controlProcessor.sendBooting(0);
    controlProcessor.sendGetProductId();
    controlProcessor.sendGetCurrentValues();
}
