#include "algorithms/cabsim/ExternalCab.h"

#include "utility/Log.h"

namespace {

void logSetting(const char* operation, float value, bool isInit) {
    tvk::log::debug("ExternalCab", "%s(%f, %s)", operation, value, isInit ? "true" : "false");
}

}  // namespace

void ExternalCab::setHPF(float hz, bool isInit) {
    logSetting("setHPF", hz, isInit);
    tone().setHPF(hz, isInit);
}

void ExternalCab::setLPF(float hz, bool isInit) {
    logSetting("setLPF", hz, isInit);
    tone().setLPF(hz, isInit);
}

void ExternalCab::setOutputLevel(float db, bool isInit) {
    logSetting("setOutputLevel", db, isInit);
    tone().setOutputLevel(db, isInit);
}
