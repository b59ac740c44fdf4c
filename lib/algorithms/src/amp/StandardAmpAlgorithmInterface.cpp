#include "algorithms/amp/StandardAmpAlgorithmInterface.h"

#include "utility/Log.h"

namespace {

void warnNotImplemented(const char* operation) {
    tvk::log::debug("Warn", "%s not implemented", operation);
}

}  // namespace

void StandardAmpAlgorithmInterface::setGain(float, bool) {
    warnNotImplemented("setGain");
}
void StandardAmpAlgorithmInterface::setBass(float, bool) {
    warnNotImplemented("setBass");
}
void StandardAmpAlgorithmInterface::setMid(float, bool) {
    warnNotImplemented("setMid");
}
void StandardAmpAlgorithmInterface::setMidLo(float, bool) {
    warnNotImplemented("setMidLo");
}
void StandardAmpAlgorithmInterface::setMidHi(float, bool) {
    warnNotImplemented("setMidHi");
}
void StandardAmpAlgorithmInterface::setMidfreq(float, bool) {
    warnNotImplemented("setMidfreq");
}
void StandardAmpAlgorithmInterface::setTreb(float, bool) {
    warnNotImplemented("setTreb");
}
void StandardAmpAlgorithmInterface::setBias(float, bool) {
    warnNotImplemented("setBias");
}
void StandardAmpAlgorithmInterface::setSag(int, bool) {
    warnNotImplemented("setSag");
}
void StandardAmpAlgorithmInterface::setMasterVolume(float, bool) {
    warnNotImplemented("setMasterVolume");
}
void StandardAmpAlgorithmInterface::setPresence(float, bool) {
    warnNotImplemented("setPresence");
}
void StandardAmpAlgorithmInterface::setBlend(float, bool) {
    warnNotImplemented("setBlend");
}
void StandardAmpAlgorithmInterface::setGain2(float, bool) {
    warnNotImplemented("setGain2");
}
void StandardAmpAlgorithmInterface::setCut(float, bool) {
    warnNotImplemented("setCut");
}
void StandardAmpAlgorithmInterface::setBrightSw(bool, bool) {
    warnNotImplemented("setBrightSw");
}
void StandardAmpAlgorithmInterface::setBodyLevel(float, bool) {
    warnNotImplemented("setBodyLevel");
}
