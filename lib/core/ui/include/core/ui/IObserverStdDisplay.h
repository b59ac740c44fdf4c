// Whoever redraws when a control's shown value has changed.
#pragma once

class IObserverStdDisplay {
public:
    virtual ~IObserverStdDisplay() = default;
    virtual void onDisplayUpdate() = 0;
};
