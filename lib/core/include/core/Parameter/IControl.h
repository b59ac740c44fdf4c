// A sender of values to parameters, whatever its value type.
#pragma once

#include <typeinfo>

class IControl {
public:
    // The value type that the control sends.
    virtual const std::type_info& getType() const = 0;
    virtual ~IControl() = default;
};
