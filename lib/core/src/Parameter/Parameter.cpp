#include "core/Parameter/Parameter.h"

#include <memory>
#include <stdexcept>
#include <utility>

#include "core/Parameter/Control.h"
#include "core/Parameter/Observer.h"
#include "utility/Log.h"

template <typename T>
Parameter<T>::Parameter(std::string name, const PropertySlotBase<T>& slot)
    : Property<T>(slot), name_(std::move(name)) {}

template <typename T>
Parameter<T>::~Parameter() {
    for (IObserver* observer : ownedObservers_)
        delete observer;
}

template <typename T>
void Parameter<T>::connectControl(IControl* control) {
    auto* typed = dynamic_cast<Control<T>*>(control);
    if (!typed) throw std::runtime_error("Bad control type");
    typed->addSlot(std::make_unique<SlotConnector<T, Parameter>>(this, &Parameter::set));
    typed->onConnect(this);
}

template <typename T>
void Parameter<T>::disconnectControl(IControl* control) {
    auto* typed = dynamic_cast<Control<T>*>(control);
    if (!typed) return;
    typed->removeSlots(SlotConnector<T, Parameter>(this, &Parameter::set));
}

template <typename T>
void Parameter<T>::addOwnedObserver(IObserver* observer) {
    addObserver(observer);
    ownedObservers_.push_back(observer);
}

template <typename T>
void Parameter<T>::addObserver(IObserver* observer) {
    auto* typed = dynamic_cast<Observer<T>*>(observer);
    if (!typed) throw std::runtime_error("Bad observer type");
    observers_.push_back(observer);
    typed->update(this->get());
}

template <typename T>
void Parameter<T>::removeObserver(IObserver* observer) {
    if (!dynamic_cast<Observer<T>*>(observer)) {
        TVK_ERROR("Bad observer type");
        return;
    }
    observers_.remove(observer);
}

template <typename T>
void Parameter<T>::notify() {
    std::set<IParameter*> visited;
    notify(visited);
}

template <typename T>
void Parameter<T>::notify(std::set<IParameter*>& visited) {
    for (IObserver* observer : observers_)
        static_cast<Observer<T>*>(observer)->update(this->get());
    visited.insert(this);
    for (IParameter* linked : linkedParameters_) {
        if (!visited.contains(linked)) linked->notify(visited);
    }
}

template <typename T>
void Parameter<T>::addLinkedParameter(IParameter* parameter) {
    if (!dynamic_cast<Parameter*>(parameter)) {
        TVK_ERROR("type mismatch");
        return;
    }
    linkedParameters_.push_back(parameter);
}

template <typename T>
void Parameter<T>::removeLinkedParameter(IParameter* parameter) {
    if (!dynamic_cast<Parameter*>(parameter)) {
        TVK_ERROR("type mismatch");
        return;
    }
    linkedParameters_.remove(parameter);
}

template <typename T>
void Parameter<T>::set(const T& value) {
    tvk::log::debug("Parameter", "In Parameter::set");
    Property<T>::set(value);
    notify();
}

template <typename T>
void Parameter<T>::init(const T& value) {
    tvk::log::debug("Parameter", "In Parameter::init");
    Property<T>::init(value);
}

template class Parameter<float>;
template class Parameter<int>;
template class Parameter<bool>;
template class Parameter<std::string>;
