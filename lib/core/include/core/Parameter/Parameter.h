// A named, observable value of a unit: the whole way from a panel, a client or a preset into a running
// algorithm. T is one of float, int, bool and std::string.
//
//   Parameter<float> level{"level", PropertySlot(this, &Boost::getLevel, &Boost::setLevel,
//   &Boost::initLevel)};
//
// set and init run the owner's setter on the caller's thread, a control thread; the setter leaves the value
// in one word that the audio thread reads. The audio thread never calls anything here: notify allocates.
#pragma once

#include <list>
#include <string>

#include "core/Parameter/IParameter.h"
#include "core/Parameter/Property.h"

template <typename T>
class Parameter final : public IParameter, public Property<T> {
public:
    Parameter(std::string name, const PropertySlotBase<T>& slot);
    ~Parameter() override;
    Parameter(const Parameter&) = delete;
    Parameter& operator=(const Parameter&) = delete;

    const std::string& getName() const override { return name_; }
    const std::type_info& getType() const override { return typeid(T); }

    void connectControl(IControl* control) override;
    void disconnectControl(IControl* control) override;
    void addOwnedObserver(IObserver* observer) override;
    void addObserver(IObserver* observer) override;
    void removeObserver(IObserver* observer) override;
    void notify() override;
    void notify(std::set<IParameter*>& visited) override;
    void addLinkedParameter(IParameter* parameter) override;
    void removeLinkedParameter(IParameter* parameter) override;

    // The owner's setter, then the observers.
    void set(const T& value) override;
    // The owner's initter; tells nobody. Follow it with notify.
    void init(const T& value) override;

private:
    std::string name_;
    std::list<IObserver*> observers_;
    std::list<IObserver*> ownedObservers_;
    std::list<IParameter*> linkedParameters_;
};

extern template class Parameter<float>;
extern template class Parameter<int>;
extern template class Parameter<bool>;
extern template class Parameter<std::string>;
