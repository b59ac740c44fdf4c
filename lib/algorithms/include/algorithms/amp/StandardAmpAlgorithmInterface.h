// The default body of every amp control: a model overrides what its circuit has, the rest log
// "<operation> not implemented" under the tag "Warn" and change nothing, so that a preset may carry keys that
// a model ignores.
#pragma once

#include "algorithms/amp/IStandardAmpAlgorithmInterface.h"

class StandardAmpAlgorithmInterface : public IStandardAmpAlgorithmInterface {
public:
    void setGain(float value, bool isInit) override;
    void setBass(float value, bool isInit) override;
    void setMid(float value, bool isInit) override;
    void setMidLo(float value, bool isInit) override;
    void setMidHi(float value, bool isInit) override;
    void setMidfreq(float value, bool isInit) override;
    void setTreb(float value, bool isInit) override;
    void setBias(float value, bool isInit) override;
    void setSag(int value, bool isInit) override;
    void setMasterVolume(float value, bool isInit) override;
    void setPresence(float value, bool isInit) override;
    void setBlend(float value, bool isInit) override;
    void setGain2(float value, bool isInit) override;
    void setCut(float value, bool isInit) override;
    void setBrightSw(bool value, bool isInit) override;
    void setBodyLevel(float value, bool isInit) override;
};
