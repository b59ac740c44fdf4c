#include "core/units/amp/ModelControl.h"

#include <set>
#include <utility>

#include "core/System/DspArchive.h"
#include "utility/Log.h"

namespace {

void logValue(const char* tag, const char* verb, const char* name, float value) {
    tvk::log::debug(tag, "%s%s(%0.3f)", verb, name, value);
}

void logValue(const char* tag, const char* verb, const char* name, int value) {
    tvk::log::debug(tag, "%s%s(%d)", verb, name, value);
}

void logValue(const char* tag, const char* verb, const char* name, const std::string& value) {
    tvk::log::debug(tag, "%s%s(%s)", verb, name, value.c_str());
}

}  // namespace

template <typename T>
ModelControl<T>::ModelControl(const char* tag, const char* parameterName, const char* logName,
                              const T& initial, Apply apply)
    : tag_(tag),
      logName_(logName),
      apply_(std::move(apply)),
      value_(initial),
      parameter_(parameterName,
                 PropertySlot(this, &ModelControl::get, &ModelControl::set, &ModelControl::init)) {
    init(initial);
}

template <typename T>
void ModelControl<T>::set(const T& value) {
    logValue(tag_, "set", logName_, value);
    value_ = value;
    apply_(value_, false);
}

template <typename T>
void ModelControl<T>::init(const T& value) {
    logValue(tag_, "init", logName_, value);
    value_ = value;
    apply_(value_, true);
}

template <typename T>
void ModelControl<T>::read(DspArchive& archive) {
    T value = value_;
    archive.get(parameter_.getName(), value);
    parameter_.init(value);
    std::set<IParameter*> visited;
    parameter_.notify(visited);
}

template <typename T>
void ModelControl<T>::write(DspArchive& archive) const {
    archive.set(parameter_.getName(), value_);
}

template class ModelControl<float>;
template class ModelControl<int>;
template class ModelControl<bool>;
template class ModelControl<std::string>;
