// A long FIR section on a short block: a group of output vectors stays in registers while the taps pass by,
// and each vector of input serves several taps, those a whole vector apart.
namespace {

// Taps a vector apart that share their input vectors, and the sets of sums they alternate between: enough of
// both that neither the loads nor one chain of additions holds the multipliers up.
constexpr int kSharedTaps = 4;
constexpr int kFirTapGroup = kSharedTaps * kLanes;

template <int Vectors, int Sets>
inline void longFirGroup(const float* in, const float* coefficients, int taps, float* out) {
    Vector sum[Sets][Vectors] = {};
    for (int j = 0; j < taps; j += kFirTapGroup) {
        for (int lane = 0; lane < kLanes; ++lane) {
            const float* x = in + j + lane;
            const float* c = coefficients + j + lane;
            Vector tap[kSharedTaps];
            for (int t = 0; t < kSharedTaps; ++t)
                tap[t] = broadcast(c[t * kLanes]);
            for (int i = 0; i < Vectors + kSharedTaps - 1; ++i) {
                const Vector samples = load(x + i * kLanes);
                for (int t = 0; t < kSharedTaps; ++t) {
                    const int v = i - t;
                    if (v >= 0 && v < Vectors) sum[t % Sets][v] += tap[t] * samples;
                }
            }
        }
    }
    for (int v = 0; v < Vectors; ++v) {
        Vector total = sum[0][v];
        for (int s = 1; s < Sets; ++s)
            total += sum[s][v];
        store(out + v * kLanes, total);
    }
}

void longFir(const float* in, const float* coefficients, int taps, float* out, int count) {
    int n = 0;
    for (; n + 4 * kLanes <= count; n += 4 * kLanes)
        longFirGroup<4, 2>(in + n, coefficients, taps, out + n);
    for (; n < count; n += kLanes)
        longFirGroup<1, 4>(in + n, coefficients, taps, out + n);
}

}  // namespace
