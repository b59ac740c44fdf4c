// One control of a unit: its parameter, its stored value and the call that takes it to the algorithm.
//
// A live change runs Parameter<T>::set -> set: log, store, apply(value, false). A preset load runs
// Parameter<T>::init -> init: log, store, apply(value, true). Under the unit's tag, with NAME the log name:
//
//   ControlLog::Call       "setNAME(value)", "initNAME(value)",    floats as %0.3f      amps
//   ControlLog::Sentence   "NAME set, value", "NAME init, value",  floats as %f         effects
//
// Bools and ints are logged as %d, strings as %s.
//
// T is one of float, int, bool and std::string. Control threads only, one at a time.
#pragma once

#include <functional>
#include <string>

#include "core/Parameter/Parameter.h"

class DspArchive;

enum class ControlLog { Call, Sentence };

// A control whatever its value type, for loops over a unit's controls.
class IModelControl {
public:
    virtual ~IModelControl() = default;
    virtual IParameter* parameter() = 0;
    // From the key of the parameter's name at the archive's cursor, through init; a missing key leaves the
    // value. Then the observers are told.
    virtual void read(DspArchive& archive) = 0;
    virtual void write(DspArchive& archive) const = 0;
};

template <typename T>
class ModelControl final : public IModelControl {
public:
    using Apply = std::function<void(const T& value, bool isInit)>;

    // tag and logName are literals. initial goes to the algorithm through init at once.
    ModelControl(const char* tag, const char* parameterName, const char* logName, const T& initial,
                 Apply apply, ControlLog style = ControlLog::Call);

    IParameter* parameter() override { return &parameter_; }
    void read(DspArchive& archive) override;
    void write(DspArchive& archive) const override;

    // The algorithm has this value by another way: stores it and tells the observers.
    void adopt(const T& value);

private:
    void set(const T& value);
    void init(const T& value);
    const T& get() const { return value_; }

    const char* const tag_;
    const char* const logName_;
    const Apply apply_;
    const ControlLog style_;
    T value_;
    Parameter<T> parameter_;
};

extern template class ModelControl<float>;
extern template class ModelControl<int>;
extern template class ModelControl<bool>;
extern template class ModelControl<std::string>;
