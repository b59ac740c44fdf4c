// One control of an amp unit: its parameter, its stored value and the call that takes it to the algorithm.
//
// A live change runs Parameter<T>::set -> set: log "setNAME(value)", store, apply(value, false). A preset
// load runs Parameter<T>::init -> init: log "initNAME(value)", store, apply(value, true). Floats are logged
// as %0.3f, bools and ints as %d, strings as %s, under the unit's tag.
//
// T is one of float, int, bool and std::string. Control threads only, one at a time.
#pragma once

#include <functional>
#include <string>

#include "core/Parameter/Parameter.h"

class DspArchive;

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
                 Apply apply);

    IParameter* parameter() override { return &parameter_; }
    void read(DspArchive& archive) override;
    void write(DspArchive& archive) const override;

private:
    void set(const T& value);
    void init(const T& value);
    const T& get() const { return value_; }

    const char* const tag_;
    const char* const logName_;
    const Apply apply_;
    T value_;
    Parameter<T> parameter_;
};

extern template class ModelControl<float>;
extern template class ModelControl<int>;
extern template class ModelControl<bool>;
extern template class ModelControl<std::string>;
