#include "System/JsonNesting.h"

#include <nlohmann/json.hpp>

void requireNestingWithinLimit(const std::string& text) {
    int depth = 0;
    bool inString = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (inString) {
            if (c == '\\') ++at;
            if (c == '"') inString = false;
        } else if (c == '"') {
            inString = true;
        } else if (c == '[' || c == '{') {
            if (++depth > kMaxJsonNesting) {
                throw nlohmann::ordered_json::parse_error::create(
                    101, at + 1, "nested deeper than " + std::to_string(kMaxJsonNesting) + " levels",
                    nullptr);
            }
        } else if (c == ']' || c == '}') {
            --depth;
        }
    }
}
