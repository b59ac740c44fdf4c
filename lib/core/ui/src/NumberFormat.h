// Numbers as a display shows them.
#pragma once

#include <string>

// Prints a value with a format of a definition, such as "%0.1f" or "%0.0f%%". A format that is not text
// around exactly one conversion of a floating-point number is replaced by "%0.1f".
std::string formatNumber(const std::string& format, float value);
