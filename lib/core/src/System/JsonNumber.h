// Numbers of a JSON document as the program's types.
//
// Both throw the JSON library's type_error, "type must be number, but is ...", for anything but a number.
#pragma once

#include <nlohmann/json_fwd.hpp>

// Any number, clamped to the range of int, a fraction cut off, not-a-number as 0.
int toInt(const nlohmann::ordered_json& value);

// Any number, clamped to the finite range of float.
float toFloat(const nlohmann::ordered_json& value);
