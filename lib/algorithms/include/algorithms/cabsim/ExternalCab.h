// A bare cabinet: the stage of IRBase around a convolver of its owner's.
#pragma once

#include "algorithms/cabsim/IRBase.h"

class ExternalCab : public IRBase {
public:
    using IRBase::IRBase;

    // As the base's, in the log under this class's name.
    void setHPF(float hz, bool isInit);
    void setLPF(float hz, bool isInit);
    void setOutputLevel(float db, bool isInit);
};
