#include "JsonText.h"

#include <nlohmann/json.hpp>

namespace tvk {

using Json = nlohmann::ordered_json;

Json parseJson(const std::string& text) {
    return Json::parse(text);
}

std::string jsonText(const Json& json) {
    constexpr int kIndent = 4;
    return json.dump(kIndent, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace tvk
