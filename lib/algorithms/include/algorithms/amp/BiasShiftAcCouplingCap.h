// The coupling capacitor ahead of an output valve: it charges while the grid conducts and shifts the bias.
//
//   v = gain x - state
//   v > threshold: state <- e state + (1 - e) (v - threshold)      charging through the grid
//   otherwise:     state <- r state                                discharging through the leak resistor
//   e = exp(-1 / (excursionTau fs)),  excursionTau = (R2 R3 / (R2 + R3) + R1) kExcursion c
//   r = exp(-1 / (recoveryTau fs)),   recoveryTau  = (R3 + R1) kRecovery c
//
// R1 is the source, R2 the grid and R3 the leak resistance (ohms), c the capacitor (farads), the threshold
// the voltage at which the grid starts to conduct. Excursion is fast and recovery slow: the blocking
// distortion of heavy chords. The output is the bias shift in volts; the caller takes it off its signal.
//
// Audio thread. The state starts at 0.
#pragma once

class BiasShiftAcCouplingCap {
public:
    // length: samples per call of process, at sampleRateHz.
    BiasShiftAcCouplingCap(float gain, int length, float kExcursion, float kRecovery, float cFarads,
                           float rSourceOhms, float rGridOhms, float rLeakOhms, float thresholdVolts,
                           float sampleRateHz);

    // One sample in, the bias shift out. Both futures are worked out ahead of the choice between them, so
    // that the recursion is one multiplication, addition and choice deep.
    float tick(float x) {
        const float overdrive = x * gain_ - threshold_;
        const float charged = chargeFeedback_ * state_ + (1.0f - excursionCoef_) * overdrive;
        const float discharged = recoveryCoef_ * state_;
        state_ = overdrive > state_ ? charged : discharged;
        return state_;
    }

    // One block of bias shift.
    void process(const float* in, float* out);

private:
    float gain_;
    int length_;
    float threshold_;
    float excursionCoef_;
    float recoveryCoef_;
    float chargeFeedback_;  // e - (1 - e), the weight of the state in e state + (1 - e) (gain x - state -
                            // threshold)
    float state_ = 0.0f;
};
