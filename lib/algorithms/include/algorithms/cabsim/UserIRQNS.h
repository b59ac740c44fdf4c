// The cabinet stage inside the amps: IRBase around a convolver from the pool, and behind it the impedance
// curve of a speaker, for responses that were measured with a low-impedance source.
//
//   left, right -> IRBase's chain -> impedance curve -> both outputs
//
// The curve runs on the mono signal, and like the filters only while there is a response.
#pragma once

#include <memory>
#include <string>

#include "algorithms/cabsim/IRBase.h"
#include "algorithms/cabsim/SICQNS.h"

class UserIRQNS : public IRBase {
public:
    // Takes a share of the pool's convolver; without one the object warns and stays dry.
    UserIRQNS(int blockLength, float sampleRate);
    ~UserIRQNS() override;

    // The speaker's curve, "None" at first.
    void setSICID(const std::string& name) { impedance_.setSICID(name); }

    // As IRBase's.
    void process(const float* inL, const float* inR, float* outL, float* outR);

private:
    UserIRQNS(int blockLength, float sampleRate, std::shared_ptr<IRProcessor> share);

    std::shared_ptr<IRProcessor> share_;
    SICQNS impedance_;
};
