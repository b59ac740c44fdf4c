// The eight-segment cubic. A segment's index is the count of breakpoints below the value, which is where the
// comparison tree ends; the coefficients come from eight-entry tables that fit one or two registers.
namespace {

#if TARVEK_LANES == 8
inline Vector pick(const float (&table)[8], IntVector index) {
    return (Vector)_mm256_permutevar8x32_ps((__m256)load(table), (__m256i)index);
}
// The second operand of min and max passes a not-a-number on.
inline Vector limitToUnit(Vector x) {
    const __m256 one = _mm256_set1_ps(1.0f);
    return (Vector)_mm256_max_ps(-one, _mm256_min_ps(one, (__m256)x));
}
#elif defined(__aarch64__)
inline Vector pick(const float (&table)[8], IntVector index) {
    const uint8x16x2_t bytes = {
        {vreinterpretq_u8_f32(vld1q_f32(table)), vreinterpretq_u8_f32(vld1q_f32(table + 4))}};
    const IntVector firstByte = index * 0x04040404 + 0x03020100;
    return (Vector)vreinterpretq_f32_u8(vqtbl2q_u8(bytes, (uint8x16_t)firstByte));
}
inline Vector limitToUnit(Vector x) {
    return (Vector)vmaxq_f32(vdupq_n_f32(-1.0f), vminq_f32(vdupq_n_f32(1.0f), (float32x4_t)x));
}
#else
inline Vector pick(const float (&table)[8], IntVector index) {
    return Vector{table[index[0]], table[index[1]], table[index[2]], table[index[3]]};
}
inline Vector limitToUnit(Vector x) {
    const Vector one = broadcast(1.0f);
    x = x > one ? one : x;
    return x < -one ? -one : x;
}
#endif

inline Vector cubicOf(const fft::CubicSegments& curve, float range, Vector in) {
    const Vector x = limitToUnit(in / range);
    IntVector index = {};
    for (int i = 0; i < 7; ++i)
        index -= x > curve.breakpoints[i];
    const Vector t = x - pick(curve.centre, index);
    const Vector square = pick(curve.c3, index) * t + pick(curve.c2, index);
    return (square * t + pick(curve.c1, index)) * t + pick(curve.c0, index);
}

void cubicSegments(const fft::CubicSegments& curve, float range, const float* in, float* out, int count) {
    // A copy on the stack cannot overlap out, so its rows stay in registers.
    const fft::CubicSegments rows = curve;
    int n = 0;
    for (; n + kLanes <= count; n += kLanes)
        store(out + n, cubicOf(rows, range, load(in + n)));
    if (n < count) storeFirst(out + n, cubicOf(rows, range, loadFirst(in + n, count - n)), count - n);
}

}  // namespace
