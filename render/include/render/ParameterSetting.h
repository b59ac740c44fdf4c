// "[NODE.]PARAM=VALUE": a value for a parameter of a node of the graph.
#pragma once

#include <string>

class IParameter;

namespace tvk::render {

struct ParameterSetting {
    // Throws tvk::Exception when the text is not of that form.
    static ParameterSetting parse(const std::string& text);

    std::string node;  // empty for the first node
    std::string parameter;
    std::string value;
};

// The value as the type of a parameter has it: a finite number, a whole number, true or false, or any text.
// Throw tvk::Exception when it is not of that type.
float floatValue(const ParameterSetting& setting);
int intValue(const ParameterSetting& setting);
bool boolValue(const ParameterSetting& setting);

// Throws tvk::Exception unless the value is of the parameter's type.
void checkValue(const ParameterSetting& setting, const IParameter& parameter);

// Parameter<T>::set with the value, which has been checked.
void setLive(IParameter& parameter, const ParameterSetting& setting);

}  // namespace tvk::render
