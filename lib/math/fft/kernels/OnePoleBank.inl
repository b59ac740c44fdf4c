// Eight one-pole low-passes at once, a filter a lane: the rows are turned so that a vector holds one sample of
// each filter, which leaves one product and sum a step in the recursion.
namespace {

#if TARVEK_LANES == 8
inline void transpose(Vector (&row)[8]) {
    Vector pair[8], quad[8];
    for (int i = 0; i < 8; i += 2) {
        pair[i] = __builtin_shufflevector(row[i], row[i + 1], 0, 8, 1, 9, 4, 12, 5, 13);
        pair[i + 1] = __builtin_shufflevector(row[i], row[i + 1], 2, 10, 3, 11, 6, 14, 7, 15);
    }
    for (int i = 0; i < 8; i += 4) {
        quad[i] = __builtin_shufflevector(pair[i], pair[i + 2], 0, 1, 8, 9, 4, 5, 12, 13);
        quad[i + 1] = __builtin_shufflevector(pair[i], pair[i + 2], 2, 3, 10, 11, 6, 7, 14, 15);
        quad[i + 2] = __builtin_shufflevector(pair[i + 1], pair[i + 3], 0, 1, 8, 9, 4, 5, 12, 13);
        quad[i + 3] = __builtin_shufflevector(pair[i + 1], pair[i + 3], 2, 3, 10, 11, 6, 7, 14, 15);
    }
    for (int i = 0; i < 4; ++i) {
        row[i] = __builtin_shufflevector(quad[i], quad[i + 4], 0, 1, 2, 3, 8, 9, 10, 11);
        row[i + 4] = __builtin_shufflevector(quad[i], quad[i + 4], 4, 5, 6, 7, 12, 13, 14, 15);
    }
}
#else
inline void transpose(Vector (&row)[4]) {
    const Vector a = __builtin_shufflevector(row[0], row[1], 0, 4, 1, 5);
    const Vector b = __builtin_shufflevector(row[0], row[1], 2, 6, 3, 7);
    const Vector c = __builtin_shufflevector(row[2], row[3], 0, 4, 1, 5);
    const Vector d = __builtin_shufflevector(row[2], row[3], 2, 6, 3, 7);
    row[0] = __builtin_shufflevector(a, c, 0, 1, 4, 5);
    row[1] = __builtin_shufflevector(a, c, 2, 3, 6, 7);
    row[2] = __builtin_shufflevector(b, d, 0, 1, 4, 5);
    row[3] = __builtin_shufflevector(b, d, 2, 3, 6, 7);
}
#endif

void onePoleBank(const float* poles, float* states, const float* const* in, float* out, int stride, int count) {
    for (int first = 0; first < 8; first += kLanes) {
        const Vector pole = load(poles + first);
        const Vector passed = 1.0f - pole;
        Vector state = load(states + first);
        float* group = out + first * stride;
        int n = 0;
        for (; n + kLanes <= count; n += kLanes) {
            Vector lanes[kLanes];
            for (int i = 0; i < kLanes; ++i)
                lanes[i] = load(in[first + i] + n);
            transpose(lanes);
            for (int i = 0; i < kLanes; ++i)
                lanes[i] = state = pole * state + passed * lanes[i];
            transpose(lanes);
            for (int i = 0; i < kLanes; ++i)
                store(group + i * stride + n, lanes[i]);
        }
        for (; n < count; ++n) {
            Vector x = {};
            for (int i = 0; i < kLanes; ++i)
                x[i] = in[first + i][n];
            state = pole * state + passed * x;
            for (int i = 0; i < kLanes; ++i)
                group[i * stride + n] = state[i];
        }
        store(states + first, state);
    }
}

}  // namespace
