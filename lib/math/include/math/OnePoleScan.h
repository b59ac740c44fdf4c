// y[n] = v[n] + p y[n-1], four samples a step.
//
// A serial one-pole costs the latency of a multiplication and an addition for every sample. Here the four
// sums inside a step do not wait for the step before; only p^4 y[n-1] does. The result differs from the
// serial form by float rounding.
#pragma once

class OnePoleScan {
public:
    explicit OnePoleScan(float pole) : p1_(pole), p2_(pole * pole), p3_(p2_ * pole), p4_(p2_ * p2_) {}

    float pole() const { return p1_; }

    // v[0..3] becomes y[0..3]; last is y[-1].
    void step(float* v, float last) const {
        const float e0 = v[0];
        const float e1 = v[1] + p1_ * e0;
        const float e2 = v[2] + p1_ * e1;
        const float e3 = v[3] + p1_ * e2;
        v[0] = e0 + p1_ * last;
        v[1] = e1 + p2_ * last;
        v[2] = e2 + p3_ * last;
        v[3] = e3 + p4_ * last;
    }

private:
    float p1_;
    float p2_;
    float p3_;
    float p4_;
};
