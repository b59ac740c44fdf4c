// The one-pole high-pass by block look-ahead: a prefix sum with weights gives a vector of steps at once, so
// the recursion's latency is paid once a vector and not once a sample (Blelloch: Prefix Sums and Their
// Applications, 1990, section 1.4).
namespace {

template <int Phases>
inline void highPassGroup(const fft::HighPassRecursion& filter, Vector (&x)[Phases], Vector& lastIn,
                          Vector& lastOut) {
    const float pole = filter.polePower[0];
    // The outputs that each group of phases would have after an output of 0.
    Vector local[Phases];
    local[0] = pole * (x[0] - later1(x[Phases - 1], lastIn));
    for (int p = 1; p < Phases; ++p)
        local[p] = pole * (x[p] - x[p - 1] + local[p - 1]);

    const Vector zero = {};
    Vector sum = local[Phases - 1];
    sum += filter.groupPower[0] * later1(sum, zero);
    sum += filter.groupPower[1] * later2(sum, zero);
#if TARVEK_LANES == 8
    sum += filter.groupPower[3] * later4(sum, zero);
#endif
    const Vector out = sum + load(filter.groupPower) * lastLane(lastOut);
    const Vector before = later1(out, lastOut);
    lastIn = x[Phases - 1];
    lastOut = out;
    for (int p = 0; p < Phases - 1; ++p)
        x[p] = local[p] + filter.polePower[p] * before;
    x[Phases - 1] = out;
}

template <int Phases>
inline void highPass(fft::HighPassRecursion& filter, float* planes, int stride, int count) {
    if (count <= 0) return;
    const float newLastIn = planes[(Phases - 1) * stride + count - 1];
    Vector lastIn = broadcast(filter.lastIn);
    Vector lastOut = broadcast(filter.lastOut);
    Vector x[Phases];
    int n = 0;
    for (; n + kLanes <= count; n += kLanes) {
        for (int p = 0; p < Phases; ++p)
            x[p] = load(planes + p * stride + n);
        highPassGroup<Phases>(filter, x, lastIn, lastOut);
        for (int p = 0; p < Phases; ++p)
            store(planes + p * stride + n, x[p]);
    }
    if (n < count) {
        for (int p = 0; p < Phases; ++p)
            x[p] = loadFirst(planes + p * stride + n, count - n);
        highPassGroup<Phases>(filter, x, lastIn, lastOut);
        for (int p = 0; p < Phases; ++p)
            storeFirst(planes + p * stride + n, x[p], count - n);
    }
    filter.lastIn = newLastIn;
    filter.lastOut = planes[(Phases - 1) * stride + count - 1];
}

void onePoleHighPass(fft::HighPassRecursion& filter, float* planes, int stride, int count) {
    switch (filter.phases) {
        case 1:
            return highPass<1>(filter, planes, stride, count);
        case 2:
            return highPass<2>(filter, planes, stride, count);
        case 3:
            return highPass<3>(filter, planes, stride, count);
        case 4:
            return highPass<4>(filter, planes, stride, count);
        case 5:
            return highPass<5>(filter, planes, stride, count);
    }
}

}  // namespace
