#include "proj/views/controls/FrontPanelProxy.h"

#include <exception>

#include "utility/Log.h"

namespace {

template <typename Signal, typename... Values>
void emit(Signal& signal, Values... values) {
    try {
        signal(values...);
    } catch (const std::exception& fault) {
        TVK_ERROR("a control of the panel was not applied: %s", fault.what());
    }
}

}  // namespace

void FrontPanelProxy::updatePot(Pot pot, float position) const {
    emit(signals_.of(pot), position);
}

void FrontPanelProxy::updateOnOffSwitch(OnOffSwitch onOff, bool on) const {
    emit(signals_.of(onOff), on);
}

void FrontPanelProxy::updateMultiPositionSwitch(MultiPositionSwitch multi, int position) const {
    tvk::log::debug("FrontPanelProxy", "updateMultiPositionSwitch(%d, %d)", static_cast<int>(multi),
                    position);
    emit(signals_.of(multi), position);
}

void FrontPanelProxy::pressButton(Button button) const {
    emit(signals_.of(button));
}
