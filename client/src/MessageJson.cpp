#include "client/MessageJson.h"

#include <google/protobuf/descriptor.h>
#include <google/protobuf/util/json_util.h>
#include <nlohmann/json.hpp>

namespace tvk::client {

std::string jsonOf(const TarvekMessage& message) {
    const auto* const field =
        TarvekMessage::descriptor()->FindFieldByNumber(static_cast<int>(message.type_case()));
    if (!field) return "{}";
    google::protobuf::util::JsonPrintOptions options;
    options.always_print_primitive_fields = true;
    options.preserve_proto_field_names = true;
    std::string text;
    const auto status = google::protobuf::util::MessageToJsonString(
        message.GetReflection()->GetMessage(message, field), &text, options);
    // Refused is only what nests too deeply, and these messages nest twice.
    if (!status.ok()) text = "null";
    std::string line = "{";
    line.append(jsonString(field->name())).append(":").append(text).append("}");
    return line;
}

std::string jsonString(const std::string& text) {
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace tvk::client
