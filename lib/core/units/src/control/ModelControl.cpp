#include "core/units/control/ModelControl.h"

#include <cstdio>
#include <set>
#include <utility>

#include "core/System/DspArchive.h"
#include "utility/Log.h"

namespace {

std::string textOf(float value, ControlLog style) {
    char text[64];
    std::snprintf(text, sizeof text, style == ControlLog::Call ? "%0.3f" : "%f", value);
    return text;
}

std::string textOf(int value, ControlLog) {
    return std::to_string(value);
}

std::string textOf(const std::string& value, ControlLog) {
    return value;
}

template <typename T>
void logValue(const char* tag, ControlLog style, const char* verb, const char* name, const T& value) {
    const std::string text = textOf(value, style);
    if (style == ControlLog::Call) {
        tvk::log::debug(tag, "%s%s(%s)", verb, name, text.c_str());
    } else {
        tvk::log::debug(tag, "%s %s, %s", name, verb, text.c_str());
    }
}

}  // namespace

template <typename T>
ModelControl<T>::ModelControl(const char* tag, const char* parameterName, const char* logName,
                              const T& initial, Apply apply, ControlLog style)
    : tag_(tag),
      logName_(logName),
      apply_(std::move(apply)),
      style_(style),
      value_(initial),
      parameter_(parameterName,
                 PropertySlot(this, &ModelControl::get, &ModelControl::set, &ModelControl::init)) {
    init(initial);
}

template <typename T>
void ModelControl<T>::set(const T& value) {
    logValue(tag_, style_, "set", logName_, value);
    value_ = value;
    apply_(value_, false);
}

template <typename T>
void ModelControl<T>::init(const T& value) {
    logValue(tag_, style_, "init", logName_, value);
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

template <typename T>
void ModelControl<T>::adopt(const T& value) {
    value_ = value;
    parameter_.notify();
}

template class ModelControl<float>;
template class ModelControl<int>;
template class ModelControl<bool>;
template class ModelControl<std::string>;
