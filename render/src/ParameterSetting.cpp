#include "render/ParameterSetting.h"

#include <charconv>
#include <cmath>
#include <typeinfo>

#include "core/Parameter/Parameter.h"
#include "utility/Exception.h"

namespace tvk::render {

namespace {

// The whole text as a number, in the C locale whatever the machine's.
template <typename Number>
bool readWhole(const std::string& text, Number& number) {
    const char* const begin = text.data() + (text.size() > 1 && text[0] == '+' ? 1 : 0);
    const char* const end = text.data() + text.size();
    const auto [stop, fault] = std::from_chars(begin, end, number);
    return fault == std::errc() && stop == end;
}

[[noreturn]] void refuse(const ParameterSetting& setting, const char* wanted) {
    TVK_THROW("parameter '%s' takes %s, not '%s'", setting.parameter.c_str(), wanted, setting.value.c_str());
}

}  // namespace

ParameterSetting ParameterSetting::parse(const std::string& text) {
    const std::size_t equals = text.find('=');
    const std::string target = text.substr(0, equals);
    const std::size_t dot = target.rfind('.');
    ParameterSetting setting;
    if (dot != std::string::npos) setting.node = target.substr(0, dot);
    setting.parameter = dot == std::string::npos ? target : target.substr(dot + 1);
    if (equals == std::string::npos || setting.parameter.empty() || dot == 0)
        TVK_THROW("'%s' is not of the form [NODE.]PARAM=VALUE", text.c_str());
    setting.value = text.substr(equals + 1);
    return setting;
}

float floatValue(const ParameterSetting& setting) {
    float number = 0.0f;
    if (!readWhole(setting.value, number) || !std::isfinite(number)) refuse(setting, "a number");
    return number;
}

int intValue(const ParameterSetting& setting) {
    int number = 0;
    if (!readWhole(setting.value, number)) refuse(setting, "a whole number");
    return number;
}

bool boolValue(const ParameterSetting& setting) {
    if (setting.value != "true" && setting.value != "false") refuse(setting, "true or false");
    return setting.value == "true";
}

void checkValue(const ParameterSetting& setting, const IParameter& parameter) {
    const std::type_info& type = parameter.getType();
    if (type == typeid(float)) floatValue(setting);
    if (type == typeid(int)) intValue(setting);
    if (type == typeid(bool)) boolValue(setting);
}

void setLive(IParameter& parameter, const ParameterSetting& setting) {
    if (auto* number = dynamic_cast<Parameter<float>*>(&parameter))
        number->set(floatValue(setting));
    else if (auto* whole = dynamic_cast<Parameter<int>*>(&parameter))
        whole->set(intValue(setting));
    else if (auto* flag = dynamic_cast<Parameter<bool>*>(&parameter))
        flag->set(boolValue(setting));
    else
        dynamic_cast<Parameter<std::string>&>(parameter).set(setting.value);
}

}  // namespace tvk::render
