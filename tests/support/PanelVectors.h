// The test vectors of the serial link (data/panel/uart_vectors.json, described in
// tools/data/panel_frames.py).
#pragma once

#include <cstdint>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

struct PanelVectors {
    using Bytes = std::vector<std::uint8_t>;

    struct Variable {
        int type;
        std::string name;
        Bytes value;

        bool operator==(const Variable&) const = default;
    };
    struct Checked {
        Bytes bytes;
        int crc;
    };
    struct Frame {
        Variable variable;
        std::optional<double> number;  // none for a text
        Bytes bytes;
    };
    struct Stream {
        std::string about;
        Bytes bytes;
        std::vector<Variable> accepted;
    };

    std::vector<Checked> checked;
    std::vector<Frame> frames;
    std::vector<Variable> refused;
    std::vector<Stream> streams;

    // Those of the file that the build names, read once.
    static const PanelVectors& all() {
        static const PanelVectors vectors(TARVEK_PANEL_VECTORS);
        return vectors;
    }

private:
    explicit PanelVectors(const char* file) {
        const nlohmann::json json = nlohmann::json::parse(std::ifstream(file));
        for (const auto& item : json.at("crc"))
            checked.push_back({bytesOf(item.at("bytes")), item.at("crc")});
        for (const auto& item : json.at("frames")) {
            std::optional<double> number;
            if (item.contains("number")) number = item.at("number").get<double>();
            frames.push_back({variableOf(item), number, bytesOf(item.at("bytes"))});
        }
        for (const auto& item : json.at("refused"))
            refused.push_back(variableOf(item));
        for (const auto& item : json.at("streams")) {
            Stream stream{item.at("about"), bytesOf(item.at("bytes")), {}};
            for (const auto& good : item.at("accepted"))
                stream.accepted.push_back(variableOf(good));
            streams.push_back(std::move(stream));
        }
    }

    static Bytes bytesOf(const std::string& hexadecimal) {
        Bytes bytes;
        for (std::size_t i = 0; i < hexadecimal.size(); i += 2)
            bytes.push_back(static_cast<std::uint8_t>(std::stoi(hexadecimal.substr(i, 2), nullptr, 16)));
        return bytes;
    }
    // Characters U+0080 to U+00FF take two bytes of UTF-8, of which the first holds the two high bits.
    static std::string nameOf(const std::string& utf8) {
        std::string name;
        for (std::size_t i = 0; i < utf8.size(); ++i) {
            const auto byte = static_cast<std::uint8_t>(utf8[i]);
            if (byte < 0x80)
                name += utf8[i];
            else
                name += static_cast<char>((byte & 3) << 6 | (static_cast<std::uint8_t>(utf8[++i]) & 63));
        }
        return name;
    }
    static Variable variableOf(const nlohmann::json& item) {
        return {item.at("type"), nameOf(item.at("name")), bytesOf(item.at("value"))};
    }
};

inline std::ostream& operator<<(std::ostream& out, const PanelVectors::Variable& variable) {
    out << "type " << variable.type << " \"" << variable.name << "\"";
    for (const int byte : variable.value)
        out << ' ' << byte;
    return out;
}
