#include "math/ParametricBiquad.h"

#include <cmath>

#include "FilterArguments.h"
#include "FrequencyLimit.h"

namespace {

constexpr double kTwoPi = 6.2831855;

}  // namespace

template <typename T>
ParametricBiquad<T>::ParametricBiquad(const BiquadLaw& law, T gainDb, T freqHz, T q, T sampleRate)
    : Biquad<T>({}), law_(law), sampleRate_(checkedSampleRate(law.name, sampleRate)) {
    storeGainDb(gainDb);
    storeFrequency(freqHz);
    storeQ(q, 0.707);
    design();
}

template <typename T>
void ParametricBiquad<T>::setGainDb(T gainDb) {
    storeGainDb(gainDb);
    design();
}

template <typename T>
void ParametricBiquad<T>::setGainLinear(T gain) {
    gain_ = gain;
    design();
}

template <typename T>
void ParametricBiquad<T>::setFrequency(T freqHz) {
    storeFrequency(freqHz);
    design();
}

template <typename T>
void ParametricBiquad<T>::setQ(T q) {
    storeQ(q, 1.0);
    design();
}

template <typename T>
void ParametricBiquad<T>::setAll(T gainDb, T freqHz, T q) {
    storeGainDb(gainDb);
    storeFrequency(freqHz);
    storeQ(q, 1.0);
    design();
}

template <typename T>
double ParametricBiquad<T>::gainDb() const {
    return std::log10(gain_) / law_.decibelScale;
}

template <typename T>
void ParametricBiquad<T>::storeGainDb(T gainDb) {
    gain_ = std::pow(10.0, static_cast<double>(gainDb) * law_.decibelScale);
}

template <typename T>
void ParametricBiquad<T>::storeFrequency(T freqHz) {
    w0_ = kTwoPi * truncatedFrequencyHz(freqHz, sampleRate_) / sampleRate_;
}

template <typename T>
void ParametricBiquad<T>::storeQ(T q, double fallback) {
    q_ = checkedQ(law_.name, q, fallback) * law_.qScale;
}

template <typename T>
void ParametricBiquad<T>::design() {
    this->publish(law_.design(gain_, w0_, q_).template rounded<T>());
}

template class ParametricBiquad<float>;
template class ParametricBiquad<double>;
