// JSON of the models' files, to text and back.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace tvk {

// Throws the library's exceptions. Takes a document of any depth: nothing here copies one or writes it back.
nlohmann::ordered_json parseJson(const std::string& text);

// Indented; what is not well-formed UTF-8 comes out as U+FFFD.
std::string jsonText(const nlohmann::ordered_json& json);

}  // namespace tvk
