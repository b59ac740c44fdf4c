// What the unit half of an amp may tell its algorithm half: one setter for each control an amp can have.
//
// Every setter takes the new value and isInit. True: the value is the load-time value and is taken at once,
// without a ramp. False: a live change, which the algorithm may smooth. Knobs are positions 0 to 1 unless an
// algorithm says otherwise. Control threads call the setters; no setter throws.
#pragma once

class IStandardAmpAlgorithmInterface {
public:
    virtual ~IStandardAmpAlgorithmInterface() = default;

    virtual void setGain(float value, bool isInit) = 0;
    virtual void setBass(float value, bool isInit) = 0;
    virtual void setMid(float value, bool isInit) = 0;
    virtual void setMidLo(float value, bool isInit) = 0;
    virtual void setMidHi(float value, bool isInit) = 0;
    virtual void setMidfreq(float value, bool isInit) = 0;
    virtual void setTreb(float value, bool isInit) = 0;
    virtual void setBias(float value, bool isInit) = 0;
    // 0 less, 1 match, 2 more.
    virtual void setSag(int value, bool isInit) = 0;
    virtual void setMasterVolume(float value, bool isInit) = 0;
    virtual void setPresence(float value, bool isInit) = 0;
    virtual void setBlend(float value, bool isInit) = 0;
    virtual void setGain2(float value, bool isInit) = 0;
    virtual void setCut(float value, bool isInit) = 0;
    virtual void setBrightSw(bool value, bool isInit) = 0;
    virtual void setBodyLevel(float value, bool isInit) = 0;
};
