// The vector type of the translation unit that includes this: eight lanes with AVX2, otherwise four.
#if defined(__AVX2__)
#include <immintrin.h>
#define TARVEK_LANES 8
#elif defined(__aarch64__)
#include <arm_neon.h>
#define TARVEK_LANES 4
#else
#define TARVEK_LANES 4
#endif

namespace {

constexpr int kLanes = TARVEK_LANES;
typedef float Vector __attribute__((vector_size(4 * TARVEK_LANES)));
typedef int IntVector __attribute__((vector_size(4 * TARVEK_LANES)));
typedef float UnalignedVector __attribute__((vector_size(4 * TARVEK_LANES), aligned(4), may_alias));

inline Vector load(const float* from) {
    return *reinterpret_cast<const UnalignedVector*>(from);
}
inline void store(float* to, Vector v) {
    *reinterpret_cast<UnalignedVector*>(to) = v;
}
inline Vector broadcast(float x) {
    return x - Vector{};
}

// The first count lanes from memory, zeros behind them.
inline Vector loadFirst(const float* from, int count) {
    alignas(32) float lanes[kLanes] = {};
    for (int i = 0; i < count; ++i)
        lanes[i] = from[i];
    return load(lanes);
}
inline void storeFirst(float* to, Vector v, int count) {
    for (int i = 0; i < count; ++i)
        to[i] = v[i];
}

#if TARVEK_LANES == 8
// Lanes one, two or four later, with the last lanes of `before` moved in.
inline Vector later1(Vector v, Vector before) {
    return __builtin_shufflevector(before, v, 7, 8, 9, 10, 11, 12, 13, 14);
}
inline Vector later2(Vector v, Vector before) {
    return __builtin_shufflevector(before, v, 6, 7, 8, 9, 10, 11, 12, 13);
}
inline Vector later4(Vector v, Vector before) {
    return __builtin_shufflevector(before, v, 4, 5, 6, 7, 8, 9, 10, 11);
}
inline Vector lastLane(Vector v) {
    return __builtin_shufflevector(v, v, 7, 7, 7, 7, 7, 7, 7, 7);
}
#else
inline Vector later1(Vector v, Vector before) {
    return __builtin_shufflevector(before, v, 3, 4, 5, 6);
}
inline Vector later2(Vector v, Vector before) {
    return __builtin_shufflevector(before, v, 2, 3, 4, 5);
}
inline Vector lastLane(Vector v) {
    return __builtin_shufflevector(v, v, 3, 3, 3, 3);
}
#endif

}  // namespace
