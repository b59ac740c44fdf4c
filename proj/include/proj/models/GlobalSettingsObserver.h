// Hears of changes of the amplifier-wide settings (GlobalSettingsModel), on the thread of who changed them
// and with no lock held.
//
// Another change may have come in between: who acts on a setting reads it from the model again.
#pragma once

namespace tvk {

class GlobalSettingsObserver {
public:
    virtual ~GlobalSettingsObserver() = default;
    virtual void reverbTaperTypeChangedHandler(int type) = 0;
    virtual void vibratoChannelBrightChangedHandler(int isOn) = 0;
};

}  // namespace tvk
