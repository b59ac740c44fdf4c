// A sender of values: a knob, a switch, a list. It owns its ends of the connections; connect it to a
// parameter with Parameter<T>::connectControl. T is one of float, int, bool and std::string. Control threads
// only.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/Parameter/IControl.h"
#include "core/Parameter/Slot.h"

template <typename T>
class Parameter;

template <typename T>
class Control : public IControl {
public:
    Control();
    ~Control() override;
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    const std::type_info& getType() const override { return typeid(T); }

    // Called after a connection was made; a panel control takes over the parameter's value here.
    virtual void onConnect(Parameter<T>* parameter);

    void addSlot(std::unique_ptr<Slot<T>> slot);
    // Removes every slot that equals the given one.
    void removeSlots(const Slot<T>& like);
    int getNumSlots() const { return static_cast<int>(slots_.size()); }

protected:
    // Hands a value to every connected parameter, in the order of connection.
    void send(const T& value);

private:
    void logClients() const;

    std::vector<std::unique_ptr<Slot<T>>> slots_;
};

extern template class Control<float>;
extern template class Control<int>;
extern template class Control<bool>;
extern template class Control<std::string>;
