// FIR sections vectorised across samples: a group of vectors stays in registers while the taps pass by.
namespace {

// Tap 0 sets the sums and the others add to it: that keeps the sums out of memory.
template <int Phases, int Vectors>
inline void splitGroup(const float* in, const float* coefficients, int taps, float* out, int stride) {
    Vector sum[Phases][Vectors];
    for (int v = 0; v < Vectors; ++v) {
        const Vector x = load(in + v * kLanes);
        for (int p = 0; p < Phases; ++p)
            sum[p][v] = coefficients[p * taps] * x;
    }
    for (int k = 1; k < taps; ++k) {
        Vector x[Vectors];
        for (int v = 0; v < Vectors; ++v)
            x[v] = load(in + v * kLanes - k);
        for (int p = 0; p < Phases; ++p) {
            const Vector tap = broadcast(coefficients[p * taps + k]);
            for (int v = 0; v < Vectors; ++v)
                sum[p][v] += tap * x[v];
        }
    }
    for (int p = 0; p < Phases; ++p) {
        for (int v = 0; v < Vectors; ++v)
            store(out + p * stride + v * kLanes, sum[p][v]);
    }
}

// One chain of additions a phase: a sample's sum is in the same order in every group size.
template <int Phases, int Vectors>
inline void mergeGroup(const float* in, int stride, const float* coefficients, int taps, float* out) {
    Vector sum[Phases][Vectors];
    for (int p = 0; p < Phases; ++p) {
        for (int v = 0; v < Vectors; ++v)
            sum[p][v] = coefficients[p * taps] * load(in + p * stride + v * kLanes);
    }
    for (int k = 1; k < taps; ++k) {
        for (int p = 0; p < Phases; ++p) {
            const Vector tap = broadcast(coefficients[p * taps + k]);
            for (int v = 0; v < Vectors; ++v)
                sum[p][v] += tap * load(in + p * stride + v * kLanes - k);
        }
    }
    for (int v = 0; v < Vectors; ++v) {
        Vector total = sum[0][v];
        for (int p = 1; p < Phases; ++p)
            total += sum[p][v];
        store(out + v * kLanes, total);
    }
}

// Groups of four vectors as long as their sums fit sixteen registers, else of two.
template <int Phases>
constexpr int groupVectors() {
    return Phases <= 3 ? 4 : 2;
}

template <int Phases>
inline void split(const float* in, const float* coefficients, int taps, float* out, int stride, int count) {
    constexpr int kGroup = groupVectors<Phases>();
    int n = 0;
    for (; n + kGroup * kLanes <= count; n += kGroup * kLanes) {
        splitGroup<Phases, kGroup>(in + n, coefficients, taps, out + n, stride);
    }
    for (; n < count; n += kLanes)
        splitGroup<Phases, 1>(in + n, coefficients, taps, out + n, stride);
}

template <int Phases>
inline void merge(const float* in, int stride, const float* coefficients, int taps, float* out, int count) {
    constexpr int kGroup = groupVectors<Phases>();
    int n = 0;
    for (; n + kGroup * kLanes <= count; n += kGroup * kLanes) {
        mergeGroup<Phases, kGroup>(in + n, stride, coefficients, taps, out + n);
    }
    for (; n < count; n += kLanes)
        mergeGroup<Phases, 1>(in + n, stride, coefficients, taps, out + n);
}

void firSplit(const float* in, const float* coefficients, int phases, int taps, float* out, int stride,
              int count) {
    switch (phases) {
        case 1:
            return split<1>(in, coefficients, taps, out, stride, count);
        case 2:
            return split<2>(in, coefficients, taps, out, stride, count);
        case 3:
            return split<3>(in, coefficients, taps, out, stride, count);
        case 4:
            return split<4>(in, coefficients, taps, out, stride, count);
        case 5:
            return split<5>(in, coefficients, taps, out, stride, count);
    }
}

void firMerge(const float* in, int stride, const float* coefficients, int phases, int taps, float* out,
              int count) {
    switch (phases) {
        case 1:
            return merge<1>(in, stride, coefficients, taps, out, count);
        case 2:
            return merge<2>(in, stride, coefficients, taps, out, count);
        case 3:
            return merge<3>(in, stride, coefficients, taps, out, count);
        case 4:
            return merge<4>(in, stride, coefficients, taps, out, count);
        case 5:
            return merge<5>(in, stride, coefficients, taps, out, count);
    }
}

}  // namespace
