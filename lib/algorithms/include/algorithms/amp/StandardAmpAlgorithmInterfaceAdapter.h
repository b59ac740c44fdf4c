// Turns an amp's parameter changes into calls of its algorithm: the slots of a generic amp's parameters bind
// to these handlers.
//
// Each control has a set (live change), an init (preset load) and a get. set and init keep the value, log it
// and call the algorithm with isInit false or true. Knobs are positions 0 to 1. Control side, one thread at a
// time; nothing throws.
#pragma once

#include <string>

#include "algorithms/amp/IStandardAmpAlgorithmInterface.h"

class StandardAmpAlgorithmInterfaceAdapter {
public:
    // amp is not owned and outlives the adapter.
    explicit StandardAmpAlgorithmInterfaceAdapter(IStandardAmpAlgorithmInterface* amp) : amp_(amp) {}

    void setGain(float value);
    void initGain(float value);
    float getGain() const { return gain_; }

    void setTreb(float value);
    void initTreb(float value);
    float getTreb() const { return treb_; }

    void setMid(float value);
    void initMid(float value);
    float getMid() const { return mid_; }

    void setMidLo(float value);
    void initMidLo(float value);
    float getMidLo() const { return midLo_; }

    void setMidHi(float value);
    void initMidHi(float value);
    float getMidHi() const { return midHi_; }

    void setMidfreq(float value);
    void initMidfreq(float value);
    float getMidfreq() const { return midfreq_; }

    void setBass(float value);
    void initBass(float value);
    float getBass() const { return bass_; }

    void setBias(float value);
    void initBias(float value);
    float getBias() const { return bias_; }

    void setMaster(float value);
    void initMaster(float value);
    float getMaster() const { return master_; }

    void setPresence(float value);
    void initPresence(float value);
    float getPresence() const { return presence_; }

    void setBlend(float value);
    void initBlend(float value);
    float getBlend() const { return blend_; }

    void setGain2(float value);
    void initGain2(float value);
    float getGain2() const { return gain2_; }

    void setCut(float value);
    void initCut(float value);
    float getCut() const { return cut_; }

    // "less", "match" or "more". Anything else is an error line and changes nothing.
    void setSag(const std::string& value);
    void initSag(const std::string& value);
    const std::string& getSag() const { return sag_; }

    void setBright(bool on);
    void initBright(bool on);
    bool getBright() const { return bright_; }

    void setBodyLevel(float value);
    void initBodyLevel(float value);
    float getBodyLevel() const { return bodyLevel_; }

private:
    using Operation = void (IStandardAmpAlgorithmInterface::*)(float, bool);
    void set(const char* name, float& field, float value, Operation operation);
    void init(const char* name, float& field, float value, Operation operation);
    void applySag(const std::string& value, bool isInit);

    float gain_ = 0.5f;
    float treb_ = 0.5f;
    float mid_ = 0.5f;
    float midLo_ = 0.0f;
    float midHi_ = 0.0f;
    float midfreq_ = 0.0f;
    float bass_ = 0.5f;
    std::string sag_ = "match";
    float bias_ = 0.0f;
    float master_ = 0.5f;
    float presence_ = 0.0f;
    float blend_ = 0.0f;
    float gain2_ = 0.0f;
    float cut_ = 0.0f;
    bool bright_ = false;
    float bodyLevel_ = 0.0f;
    IStandardAmpAlgorithmInterface* amp_;
};
