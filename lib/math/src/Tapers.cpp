#include "math/Tapers.h"

#include <cmath>

TaperExponential::TaperExponential(double base)
    : base_(base), logScale_(1.0 / std::log(base)), scale_(1.0 / (base - 1.0)) {}

float TaperExponential::calc(float x) const {
    return static_cast<float>((std::pow(base_, static_cast<double>(x)) - 1.0) * scale_);
}

float TaperExponential::inverse(float y) const {
    return static_cast<float>(std::log(1.0 + y * (base_ - 1.0)) * logScale_);
}
