// Parameter names that mean the same in every unit.
#pragma once

#include <string>
#include <typeinfo>

// The one value type that a parameter of this name may have; null if the name is not reserved.
const std::type_info* reservedParameterType(const std::string& name);
