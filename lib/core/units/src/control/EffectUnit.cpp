#include "core/units/control/EffectUnit.h"

void EffectUnit::initDerived(DspArchive& archive) {
    for (const auto& control : controls_)
        control->read(archive);
}

void EffectUnit::getArchiveDerived(DspArchive& archive) {
    for (const auto& control : controls_)
        control->write(archive);
}
