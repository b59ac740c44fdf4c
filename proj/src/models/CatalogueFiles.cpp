#include "CatalogueFiles.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "JsonText.h"
#include "proj/models/IRName.h"
#include "utility/EscapedText.h"
#include "utility/Log.h"

namespace tvk {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kFactoryIRs = "factoryIRs";
constexpr const char* kUserIRs = "userIRs";
constexpr const char* kName = "name";
constexpr const char* kExists = "exists";

// Iterating a scalar would read it as a list of one.
const Json& listAt(const Json& json, const char* key) {
    const Json& list = json.at(key);
    if (!list.is_array()) throw Json::type_error::create(302, "type must be array", &list);
    return list;
}

bool isFit(const std::string& name, bool isNameValid, bool isRepeated) {
    if (isNameValid && !isRepeated) return true;
    TVK_WARN("IR \"%s\" left out of its catalogue", escaped(name).c_str());
    return false;
}

}  // namespace

std::vector<std::string> parseFactoryCatalogue(const std::string& text) {
    const Json json = parseJson(text);
    std::vector<std::string> names;
    for (const Json& record : listAt(json, kFactoryIRs)) {
        const auto& name = record.at(kName).get_ref<const std::string&>();
        const bool isRepeated = std::find(names.begin(), names.end(), name) != names.end();
        if (isFit(name, isValidIRName(name), isRepeated)) names.push_back(name);
    }
    return names;
}

std::vector<UserIR> parseUserCatalogue(const std::string& text) {
    const Json json = parseJson(text);
    std::vector<UserIR> records;
    for (const Json& record : listAt(json, kUserIRs)) {
        const auto& name = record.at(kName).get_ref<const std::string&>();
        const bool exists = record.at(kExists).get<bool>();
        const bool isRepeated = std::any_of(records.begin(), records.end(),
                                            [&name](const UserIR& other) { return other.name == name; });
        if (isFit(name, isValidUserIRName(name), isRepeated)) records.push_back({name, exists});
    }
    return records;
}

std::string userCatalogueText(const std::vector<UserIR>& records) {
    Json list = Json::array();
    for (const UserIR& record : records)
        list.push_back(Json::object({{kName, record.name}, {kExists, record.exists}}));
    return jsonText(Json::object({{kUserIRs, std::move(list)}}));
}

}  // namespace tvk
