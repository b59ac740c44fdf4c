#include "core/units/control/ControlledUnit.h"

void ControlledUnit::initDerived(DspArchive& archive) {
    for (const auto& control : controls_)
        control->read(archive);
}

void ControlledUnit::getArchiveDerived(DspArchive& archive) {
    for (const auto& control : controls_)
        control->write(archive);
}
