#include "algorithms/amp/StandardAmpAlgorithmInterfaceAdapter.h"

#include <algorithm>
#include <cmath>

#include "utility/Log.h"

namespace {

constexpr const char* kTag = "DspUnitAmp";

using Amp = IStandardAmpAlgorithmInterface;

// The number of a sag's name, -1 for none.
int sagIndex(const std::string& name) {
    if (name == "less") return 0;
    if (name == "match") return 1;
    if (name == "more") return 2;
    return -1;
}

// The body level is logged as a whole number.
int wholeNumber(float value) {
    if (std::isnan(value)) return 0;
    return static_cast<int>(std::clamp(value, -1e9f, 1e9f));
}

}  // namespace

void StandardAmpAlgorithmInterfaceAdapter::set(const char* name, float& field, float value,
                                               Operation operation) {
    field = value;
    tvk::log::debug(kTag, "%s set, %f", name, value);
    (amp_->*operation)(value, false);
}

void StandardAmpAlgorithmInterfaceAdapter::init(const char* name, float& field, float value,
                                                Operation operation) {
    field = value;
    tvk::log::debug(kTag, "%s init, %f", name, value);
    (amp_->*operation)(value, true);
}

void StandardAmpAlgorithmInterfaceAdapter::setGain(float value) {
    set("Gain", gain_, value, &Amp::setGain);
}

void StandardAmpAlgorithmInterfaceAdapter::initGain(float value) {
    init("Gain", gain_, value, &Amp::setGain);
}

void StandardAmpAlgorithmInterfaceAdapter::setTreb(float value) {
    set("Treb", treb_, value, &Amp::setTreb);
}

void StandardAmpAlgorithmInterfaceAdapter::initTreb(float value) {
    init("Treb", treb_, value, &Amp::setTreb);
}

void StandardAmpAlgorithmInterfaceAdapter::setMid(float value) {
    set("Mid", mid_, value, &Amp::setMid);
}

void StandardAmpAlgorithmInterfaceAdapter::initMid(float value) {
    init("Mid", mid_, value, &Amp::setMid);
}

void StandardAmpAlgorithmInterfaceAdapter::setMidLo(float value) {
    set("MidLo", midLo_, value, &Amp::setMidLo);
}

void StandardAmpAlgorithmInterfaceAdapter::initMidLo(float value) {
    init("MidLo", midLo_, value, &Amp::setMidLo);
}

void StandardAmpAlgorithmInterfaceAdapter::setMidHi(float value) {
    set("MidHi", midHi_, value, &Amp::setMidHi);
}

void StandardAmpAlgorithmInterfaceAdapter::initMidHi(float value) {
    init("MidHi", midHi_, value, &Amp::setMidHi);
}

void StandardAmpAlgorithmInterfaceAdapter::setMidfreq(float value) {
    set("Midfreq", midfreq_, value, &Amp::setMidfreq);
}

void StandardAmpAlgorithmInterfaceAdapter::initMidfreq(float value) {
    init("Midfreq", midfreq_, value, &Amp::setMidfreq);
}

void StandardAmpAlgorithmInterfaceAdapter::setBass(float value) {
    set("Bass", bass_, value, &Amp::setBass);
}

void StandardAmpAlgorithmInterfaceAdapter::initBass(float value) {
    init("Bass", bass_, value, &Amp::setBass);
}

void StandardAmpAlgorithmInterfaceAdapter::setBias(float value) {
    set("Bias", bias_, value, &Amp::setBias);
}

void StandardAmpAlgorithmInterfaceAdapter::initBias(float value) {
    init("Bias", bias_, value, &Amp::setBias);
}

void StandardAmpAlgorithmInterfaceAdapter::setMaster(float value) {
    set("Master", master_, value, &Amp::setMasterVolume);
}

void StandardAmpAlgorithmInterfaceAdapter::initMaster(float value) {
    init("Master", master_, value, &Amp::setMasterVolume);
}

void StandardAmpAlgorithmInterfaceAdapter::setPresence(float value) {
    set("Presence", presence_, value, &Amp::setPresence);
}

void StandardAmpAlgorithmInterfaceAdapter::initPresence(float value) {
    init("Presence", presence_, value, &Amp::setPresence);
}

void StandardAmpAlgorithmInterfaceAdapter::setBlend(float value) {
    set("Blend", blend_, value, &Amp::setBlend);
}

void StandardAmpAlgorithmInterfaceAdapter::initBlend(float value) {
    init("Blend", blend_, value, &Amp::setBlend);
}

void StandardAmpAlgorithmInterfaceAdapter::setGain2(float value) {
    set("Gain2", gain2_, value, &Amp::setGain2);
}

void StandardAmpAlgorithmInterfaceAdapter::initGain2(float value) {
    init("Gain2", gain2_, value, &Amp::setGain2);
}

void StandardAmpAlgorithmInterfaceAdapter::setCut(float value) {
    set("Cut", cut_, value, &Amp::setCut);
}

void StandardAmpAlgorithmInterfaceAdapter::initCut(float value) {
    init("Cut", cut_, value, &Amp::setCut);
}

void StandardAmpAlgorithmInterfaceAdapter::applySag(const std::string& value, bool isInit) {
    tvk::log::debug(kTag, "Sag set, %s", value.c_str());
    const int index = sagIndex(value);
    if (index < 0) {
        TVK_ERROR("invalid sag value");
        return;
    }
    sag_ = value;
    amp_->setSag(index, isInit);
}

void StandardAmpAlgorithmInterfaceAdapter::setSag(const std::string& value) {
    applySag(value, false);
}

void StandardAmpAlgorithmInterfaceAdapter::initSag(const std::string& value) {
    tvk::log::debug(kTag, "Sag init, %s", value.c_str());
    applySag(value, true);
}

void StandardAmpAlgorithmInterfaceAdapter::setBright(bool on) {
    bright_ = on;
    tvk::log::debug(kTag, "Bright set, %d", on);
    amp_->setBrightSw(on, false);
}

void StandardAmpAlgorithmInterfaceAdapter::initBright(bool on) {
    bright_ = on;
    tvk::log::debug(kTag, "Bright init, %d", on);
    amp_->setBrightSw(on, true);
}

void StandardAmpAlgorithmInterfaceAdapter::setBodyLevel(float value) {
    bodyLevel_ = value;
    tvk::log::debug(kTag, "BodyLevel set, %d", wholeNumber(value));
    amp_->setBodyLevel(value, false);
}

// The load form has no "init" in it.
void StandardAmpAlgorithmInterfaceAdapter::initBodyLevel(float value) {
    bodyLevel_ = value;
    tvk::log::debug(kTag, "BodyLevel, %d", wholeNumber(value));
    amp_->setBodyLevel(value, true);
}
