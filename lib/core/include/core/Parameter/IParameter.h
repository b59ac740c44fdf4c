// A parameter, whatever its value type. Control threads only, one at a time: the lists of observers, controls
// and links have no lock.
#pragma once

#include <set>
#include <string>
#include <typeinfo>

class IControl;
class IObserver;

class IParameter {
public:
    virtual ~IParameter() = default;

    virtual const std::string& getName() const = 0;
    // typeid of float, int, bool or std::string.
    virtual const std::type_info& getType() const = 0;

    // Lets the control set this parameter. Throws std::runtime_error "Bad control type" for a control of
    // another value type or null.
    virtual void connectControl(IControl* control) = 0;
    // Undoes it; a control of another type, or null, is ignored.
    virtual void disconnectControl(IControl* control) = 0;

    // addObserver, and the parameter deletes the observer when it goes.
    virtual void addOwnedObserver(IObserver* observer) = 0;
    // The observer is called at once with the current value, then at each change. Throws std::runtime_error
    // "Bad observer type" for an observer of another value type or null.
    virtual void addObserver(IObserver* observer) = 0;
    virtual void removeObserver(IObserver* observer) = 0;

    // Tells the observers of this parameter and of all that are linked to it, each parameter once.
    virtual void notify() = 0;
    // The same, past the parameters that are in visited already; those reached are entered.
    virtual void notify(std::set<IParameter*>& visited) = 0;

    // Links a parameter of the same type: its observers are told whenever this one's are. Its value does not
    // change. Not owned. Another type is an error line and no link.
    virtual void addLinkedParameter(IParameter* parameter) = 0;
    virtual void removeLinkedParameter(IParameter* parameter) = 0;
};
