// Spectra in chunks of 16 bins, real parts before imaginary parts, and their sums of products.
namespace {

constexpr int kChunkBins = 16;
constexpr int kChunkFloats = 2 * kChunkBins;

#if TARVEK_LANES == 8
inline void separate(Vector a, Vector b, Vector& re, Vector& im) {
    re = __builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14);
    im = __builtin_shufflevector(a, b, 1, 3, 5, 7, 9, 11, 13, 15);
}
inline void interleave(Vector re, Vector im, Vector& a, Vector& b) {
    a = __builtin_shufflevector(re, im, 0, 8, 1, 9, 2, 10, 3, 11);
    b = __builtin_shufflevector(re, im, 4, 12, 5, 13, 6, 14, 7, 15);
}
#else
inline void separate(Vector a, Vector b, Vector& re, Vector& im) {
    re = __builtin_shufflevector(a, b, 0, 2, 4, 6);
    im = __builtin_shufflevector(a, b, 1, 3, 5, 7);
}
inline void interleave(Vector re, Vector im, Vector& a, Vector& b) {
    a = __builtin_shufflevector(re, im, 0, 4, 1, 5);
    b = __builtin_shufflevector(re, im, 2, 6, 3, 7);
}
#endif

void binsToChunks(const float* bins, float* chunk, int stride, int chunks) {
    for (int c = 0; c < chunks; ++c, bins += kChunkFloats, chunk += stride) {
        for (int i = 0; i < kChunkBins; i += kLanes) {
            Vector re;
            Vector im;
            separate(load(bins + 2 * i), load(bins + 2 * i + kLanes), re, im);
            store(chunk + i, re);
            store(chunk + kChunkBins + i, im);
        }
    }
}

void chunksToBins(const float* chunk, int stride, float* bins, int chunks) {
    for (int c = 0; c < chunks; ++c, bins += kChunkFloats, chunk += stride) {
        for (int i = 0; i < kChunkBins; i += kLanes) {
            Vector a;
            Vector b;
            interleave(load(chunk + i), load(chunk + kChunkBins + i), a, b);
            store(bins + 2 * i, a);
            store(bins + 2 * i + kLanes, b);
        }
    }
}

// Two vectors of bins; the four partial products have sums of their own, so that a chain of additions meets
// one row at a time.
inline void sumProductsGroup(const float* start, const float* a, const float* b, int rows, float* sum) {
    constexpr int kGroup = 2;
    Vector reRe[kGroup] = {};
    Vector imIm[kGroup] = {};
    Vector reIm[kGroup] = {};
    Vector imRe[kGroup] = {};
    for (int v = 0; start && v < kGroup; ++v) {
        reRe[v] = load(start + v * kLanes);
        reIm[v] = load(start + kChunkBins + v * kLanes);
    }
    for (int row = 0; row < rows; ++row, a += kChunkFloats, b += kChunkFloats) {
        for (int v = 0; v < kGroup; ++v) {
            const Vector aRe = load(a + v * kLanes);
            const Vector aIm = load(a + kChunkBins + v * kLanes);
            const Vector bRe = load(b + v * kLanes);
            const Vector bIm = load(b + kChunkBins + v * kLanes);
            reRe[v] += aRe * bRe;
            imIm[v] += aIm * bIm;
            reIm[v] += aRe * bIm;
            imRe[v] += aIm * bRe;
        }
    }
    for (int v = 0; v < kGroup; ++v) {
        store(sum + v * kLanes, reRe[v] - imIm[v]);
        store(sum + kChunkBins + v * kLanes, reIm[v] + imRe[v]);
    }
}

void sumProducts(const float* start, int startStride, const float* a, int aStride, const float* b,
                 int bStride, int rows, float* sum, int chunks) {
    for (int c = 0; c < chunks; ++c, a += aStride, b += bStride, sum += kChunkFloats) {
        for (int i = 0; i < kChunkBins; i += 2 * kLanes)
            sumProductsGroup(start ? start + i : nullptr, a + i, b + i, rows, sum + i);
        if (start) start += startStride;
    }
}

constexpr int kSumsAhead = 8;

// One vector of bins of four sums: as many as stay in registers while the rows pass by.
inline void sumProductsAheadGroup(const float* a, const float* b, int rows, float* sums) {
    constexpr int kSums = kSumsAhead / 2;
    Vector re[kSums];
    Vector im[kSums];
    for (int m = 0; m < kSums; ++m) {
        re[m] = load(sums + m * kChunkFloats);
        im[m] = load(sums + m * kChunkFloats + kChunkBins);
    }
    for (int row = 0; row < rows; ++row, a += kChunkFloats, b += kChunkFloats) {
        const Vector bRe = load(b);
        const Vector bIm = load(b + kChunkBins);
        for (int m = 0; m < kSums; ++m) {
            const Vector aRe = load(a + m * kChunkFloats);
            const Vector aIm = load(a + m * kChunkFloats + kChunkBins);
            re[m] += aRe * bRe;
            im[m] += aRe * bIm;
            re[m] -= aIm * bIm;
            im[m] += aIm * bRe;
        }
    }
    for (int m = 0; m < kSums; ++m) {
        store(sums + m * kChunkFloats, re[m]);
        store(sums + m * kChunkFloats + kChunkBins, im[m]);
    }
}

void sumProductsAhead(const float* a, int aStride, const float* b, int bStride, int rows, float* sums,
                      int chunks) {
    for (int c = 0; c < chunks; ++c, a += aStride, b += bStride, sums += kSumsAhead * kChunkFloats) {
        // The second half finds the chunk's rows in the cache.
        for (int half = 0; half < kSumsAhead * kChunkFloats; half += kSumsAhead / 2 * kChunkFloats) {
            for (int i = 0; i < kChunkBins; i += kLanes)
                sumProductsAheadGroup(a + half + i, b + i, rows, sums + half + i);
        }
    }
}

}  // namespace
