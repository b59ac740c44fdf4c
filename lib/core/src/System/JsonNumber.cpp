#include "System/JsonNumber.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

int toInt(const nlohmann::ordered_json& value) {
    const double number = value.get<double>();  // exact for every integer within the range of int
    if (std::isnan(number)) return 0;
    constexpr double lowest = std::numeric_limits<int>::min();
    constexpr double highest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(number, lowest, highest));
}

float toFloat(const nlohmann::ordered_json& value) {
    constexpr double highest = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(value.get<double>(), -highest, highest));
}
