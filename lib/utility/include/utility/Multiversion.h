// Function multiversioning, so that one release binary runs on any x86-64 and uses AVX2 and FMA where they
// are.
//
//   TARVEK_MULTIVERSION void scale(float* x, int n, float g) { for (...) x[i] *= g; }
//
// compiles the function twice and lets the loader pick. For free functions with plain loops that the compiler
// vectorises itself: the attribute reaches neither lambdas nor calls that are not inlined, and generic vector
// types lose their width in an inlined callee. Kernels that need more than that lie in
// math/fft/VectorKernels.h.
#pragma once

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(TARVEK_SANITIZED)
#define TARVEK_MULTIVERSION __attribute__((target_clones("arch=x86-64-v3", "default")))
#else
#define TARVEK_MULTIVERSION
#endif
