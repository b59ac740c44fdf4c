#include "core/System/DspUnitInputVoltageMappingConfig.h"

#include "utility/Log.h"

namespace {

struct Calibration {
    bool isSet = false;
    float inputVoltageMapping = 0.0f;
    float preGain = 0.0f;
    float postGain = 0.0f;
};

Calibration calibration;

}  // namespace

void DspUnitInputVoltageMappingConfig::set(float inputVoltageMapping) {
    calibration.inputVoltageMapping = inputVoltageMapping;
    calibration.isSet = true;
}

float DspUnitInputVoltageMappingConfig::get() {
    if (!calibration.isSet) TVK_ERROR("input voltage mapping is read before it was set");
    return calibration.inputVoltageMapping;
}

float DspUnitInputVoltageMappingConfig::getPreGain() {
    return calibration.preGain;
}

float DspUnitInputVoltageMappingConfig::getPostGain() {
    return calibration.postGain;
}
