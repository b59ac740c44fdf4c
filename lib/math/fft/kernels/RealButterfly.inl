// The step between the transform of a real block and the half-size complex transform of its even samples (as
// real parts) and odd samples (as imaginary parts) (Press et al.: Numerical Recipes, 3rd ed.,
// section 12.3.2). Bins k and M - k depend on each other alone:
//   e = scale (z[k] + conj z[M-k])   d = u[k] (z[k] - conj z[M-k])   z[k] = e + d   z[M-k] = conj(e - d)
namespace {

constexpr int kComplexLanes = kLanes / 2;

#if TARVEK_LANES == 8
inline Vector realParts(Vector v) {
    return __builtin_shufflevector(v, v, 0, 0, 2, 2, 4, 4, 6, 6);
}
inline Vector imaginaryParts(Vector v) {
    return __builtin_shufflevector(v, v, 1, 1, 3, 3, 5, 5, 7, 7);
}
inline Vector swapParts(Vector v) {
    return __builtin_shufflevector(v, v, 1, 0, 3, 2, 5, 4, 7, 6);
}
inline Vector reverseBins(Vector v) {
    return __builtin_shufflevector(v, v, 6, 7, 4, 5, 2, 3, 0, 1);
}
constexpr Vector kConjugate = {1, -1, 1, -1, 1, -1, 1, -1};
#else
inline Vector realParts(Vector v) {
    return __builtin_shufflevector(v, v, 0, 0, 2, 2);
}
inline Vector imaginaryParts(Vector v) {
    return __builtin_shufflevector(v, v, 1, 1, 3, 3);
}
inline Vector swapParts(Vector v) {
    return __builtin_shufflevector(v, v, 1, 0, 3, 2);
}
inline Vector reverseBins(Vector v) {
    return __builtin_shufflevector(v, v, 2, 3, 0, 1);
}
constexpr Vector kConjugate = {1, -1, 1, -1};
#endif

void realButterfly(float* bins, const float* twiddles, float scale, int half) {
    for (int k = 0; k < half / 2; k += kComplexLanes) {
        float* low = bins + 2 * k;
        float* high = bins + 2 * (half - k - kComplexLanes + 1);
        const Vector a = load(low);
        const Vector b = reverseBins(load(high)) * kConjugate;
        const Vector u = load(twiddles + 2 * k);
        const Vector difference = a - b;
        const Vector e = scale * (a + b);
        const Vector d = realParts(u) * difference - imaginaryParts(u) * (swapParts(difference) * kConjugate);
        store(low, e + d);
        store(high, reverseBins((e - d) * kConjugate));
    }
    float* middle = bins + half;
    middle[0] *= 2 * scale;
    middle[1] *= -2 * scale;
}

}  // namespace
