#include "math/UpDownSampler.h"

#include "math/UpSampleFilters.h"
#include "utility/Log.h"

namespace {

using FilterPointer = std::unique_ptr<UpDownSampler::UpSampleFilter>;
using Maker = FilterPointer (*)(SamplerPath, int blockLength);

template <typename Filter>
FilterPointer make(SamplerPath path, int blockLength) {
    return std::make_unique<Filter>(path, blockLength);
}

struct Row {
    int rate;
    int length;
    Maker block;
    Maker shortBlock;
};

constexpr Row kRows[] = {
    {2, 8, make<UpSampleFilter28>, make<UpSampleFilter28SBS>},
    {2, 12, make<UpSampleFilter212>, make<UpSampleFilter212SBS>},
    {3, 6, make<UpSampleFilter36>, make<UpSampleFilter36>},
    {3, 10, make<UpSampleFilter310>, make<UpSampleFilter310SBS>},
    {4, 6, make<UpSampleFilter46>, make<UpSampleFilter46>},
    {4, 10, make<UpSampleFilter410>, make<UpSampleFilter410SBS>},
    {4, 12, make<UpSampleFilter412>, make<UpSampleFilter412SBS>},
    {5, 6, make<UpSampleFilter56>, make<UpSampleFilter56>},
    {5, 10, make<UpSampleFilter510>, make<UpSampleFilter510SBS>},
};

}  // namespace

UpDownSampler::UpDownSampler(int blockLength, int rate, int length)
    : blockLength_(blockLength), oversampledLength_(blockLength * rate), rate_(rate) {
    for (const Row& row : kRows) {
        if (row.rate != rate || row.length != length) continue;
        const Maker maker =
            blockLength <= ShortBlockPolyphaseFilter::kLongestBlock ? row.shortBlock : row.block;
        up_ = maker(SamplerPath::Up, blockLength);
        down_ = maker(SamplerPath::Down, blockLength);
        planes_.resize(static_cast<std::size_t>(planesLength()));
        return;
    }
    TVK_ERROR("invalid combination: %d, %d", rate, length);
}

void UpDownSampler::up(const float* in, float* out) {
    if (!up_) return;
    upToPlanes(in, planes_.data());
    for (int p = 0; p < rate_; ++p) {
        const float* plane = planes_.data() + p * planeStride();
        for (int n = 0; n < blockLength_; ++n)
            out[n * rate_ + p] = plane[n];
    }
}

void UpDownSampler::down(const float* in, float* out) {
    if (!down_) return;
    for (int p = 0; p < rate_; ++p) {
        float* plane = planes_.data() + p * planeStride();
        for (int n = 0; n < blockLength_; ++n)
            plane[n] = in[n * rate_ + p];
    }
    downFromPlanes(planes_.data(), out);
}

void UpDownSampler::upToPlanes(const float* in, float* planes) {
    if (up_) up_->process(in, planes);
}

void UpDownSampler::downFromPlanes(const float* planes, float* out) {
    if (down_) down_->process(planes, out);
}
