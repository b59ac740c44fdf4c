#include "core/Parameter/Control.h"

#include <algorithm>
#include <utility>

#include "utility/Log.h"

template <typename T>
Control<T>::Control() = default;

template <typename T>
Control<T>::~Control() = default;

template <typename T>
void Control<T>::onConnect(Parameter<T>*) {}

template <typename T>
void Control<T>::addSlot(std::unique_ptr<Slot<T>> slot) {
    slots_.push_back(std::move(slot));
    logClients();
}

template <typename T>
void Control<T>::removeSlots(const Slot<T>& like) {
    std::erase_if(slots_, [&](const auto& slot) { return slot->equals(like); });
    logClients();
}

template <typename T>
void Control<T>::send(const T& value) {
    // By index: a setter may reach back and change the connections.
    for (std::size_t i = 0; i < slots_.size(); ++i)
        slots_[i]->call(value);
}

template <typename T>
void Control<T>::logClients() const {
    tvk::log::debug("Signal", "slot %p has %d clients", static_cast<const void*>(&slots_), getNumSlots());
}

template class Control<float>;
template class Control<int>;
template class Control<bool>;
template class Control<std::string>;
