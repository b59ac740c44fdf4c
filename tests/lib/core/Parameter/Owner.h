// An owner of parameters for tests: it records through which member function each value came.
#pragma once

#include <string>
#include <vector>

#include "core/Parameter/Control.h"
#include "core/Parameter/Observer.h"
#include "core/Parameter/Parameter.h"

template <typename T>
class Owner {
public:
    explicit Owner(const std::string& name = "value")
        : parameter(name, PropertySlot(this, &Owner::get, &Owner::set, &Owner::init)) {}
    virtual ~Owner() = default;

    T get() const { return value; }
    virtual void set(const T& v) {
        value = v;
        calls.push_back("set");
    }
    void init(const T& v) {
        value = v;
        calls.push_back("init");
    }

    T value{};
    std::vector<std::string> calls;
    Parameter<T> parameter;
};

template <typename T>
class RecordingObserver : public Observer<T> {
public:
    ~RecordingObserver() override {
        if (deleted) *deleted = true;
    }
    void update(const T& value) override { seen.push_back(value); }

    std::vector<T> seen;
    bool* deleted = nullptr;
};

template <typename T>
class SendingControl : public Control<T> {
public:
    using Control<T>::send;
    void onConnect(Parameter<T>* parameter) override { connectedWith = parameter->get(); }

    T connectedWith{};
};
