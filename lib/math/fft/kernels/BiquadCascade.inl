// Second-order sections in series, one section a lane: lane j works on the sample that lane j - 1 gave a step
// before, so all sections run at once and no step waits for more than one of them. Each in transposed direct
// form II, whose output needs one product and one sum of the input.
namespace {

template <int Vectors>
inline void cascadeSteps(fft::BiquadLanes& lanes, const float* in, float* out, int count) {
    Vector t1[Vectors], t2[Vectors], y[Vectors];
    for (int v = 0; v < Vectors; ++v) {
        t1[v] = load(lanes.t1 + v * kLanes);
        t2[v] = load(lanes.t2 + v * kLanes);
        y[v] = load(lanes.y + v * kLanes);
    }
    const int lastLane = lanes.sections - 1 - (Vectors - 1) * kLanes;
    for (int n = 0; n < count; ++n) {
        // From the last vector to the first, so that each finds the earlier outputs of the one before it.
        for (int v = Vectors - 1; v >= 0; --v) {
            const Vector x = later1(y[v], v > 0 ? y[v - 1] : broadcast(in[n]));
            y[v] = load(lanes.b0 + v * kLanes) * x + t1[v];
            t1[v] = load(lanes.b1 + v * kLanes) * x + t2[v] - load(lanes.a1 + v * kLanes) * y[v];
            t2[v] = load(lanes.b2 + v * kLanes) * x - load(lanes.a2 + v * kLanes) * y[v];
        }
        alignas(32) float last[kLanes];
        store(last, y[Vectors - 1]);
        out[n] = last[lastLane];
    }
    for (int v = 0; v < Vectors; ++v) {
        store(lanes.t1 + v * kLanes, t1[v]);
        store(lanes.t2 + v * kLanes, t2[v]);
        store(lanes.y + v * kLanes, y[v]);
    }
}

void biquadCascade(fft::BiquadLanes& lanes, const float* in, float* out, int count) {
    switch ((lanes.sections + kLanes - 1) / kLanes) {
        case 1:
            return cascadeSteps<1>(lanes, in, out, count);
        case 2:
            return cascadeSteps<2>(lanes, in, out, count);
        case 3:
            return cascadeSteps<3>(lanes, in, out, count);
        case 4:
            return cascadeSteps<4>(lanes, in, out, count);
#if TARVEK_LANES == 4
        case 5:
            return cascadeSteps<5>(lanes, in, out, count);
        case 6:
            return cascadeSteps<6>(lanes, in, out, count);
        case 7:
            return cascadeSteps<7>(lanes, in, out, count);
        case 8:
            return cascadeSteps<8>(lanes, in, out, count);
#endif
    }
}

}  // namespace
