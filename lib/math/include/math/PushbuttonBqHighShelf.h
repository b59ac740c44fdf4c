// A switch with a high shelf behind it, such as a bright switch of fixed strength.
#pragma once

#include "math/BqHighShelf.h"
#include "math/PushbuttonFilter.h"

class PushbuttonBqHighShelf : public PushbuttonFilter {
public:
    class Filter : public IFilter {
    public:
        Filter(int length, float sampleRate, float gainDb, float freqHz, float q)
            : length_(length), shelf_(gainDb, freqHz, q, sampleRate) {}
        void process(float* buffer) override { shelf_.process(buffer, length_); }
        BqHighShelf& shelf() { return shelf_; }

    private:
        const int length_;
        BqHighShelf shelf_;
    };

    // length: samples in a block; gainDb, freqHz and q as in BqHighShelf.
    PushbuttonBqHighShelf(int length, float sampleRate, float gainDb, float freqHz, float q)
        : PushbuttonFilter(length, sampleRate, &filter_), filter_(length, sampleRate, gainDb, freqHz, q) {}

    // For its setters, on the control side.
    BqHighShelf& shelf() { return filter_.shelf(); }

private:
    Filter filter_;
};
