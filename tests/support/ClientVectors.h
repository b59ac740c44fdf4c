// The test vectors of the client's link (data/client/hid_vectors.json, described in
// tools/data/client_frames.py).
#pragma once

#include <cstdint>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

struct ClientVectors {
    using Bytes = std::vector<std::uint8_t>;

    struct Message {
        std::string about;
        std::string json;
        Bytes bytes;
        std::vector<Bytes> frames;
    };
    struct Cut {
        Bytes bytes;
        std::vector<Bytes> frames;
    };
    struct Stream {
        std::string about;
        std::vector<Bytes> frames;
        std::vector<Bytes> messages;
    };
    struct Bad {
        std::string about;
        Bytes bytes;
    };
    struct CarriedFrame {
        Bytes frame, toHost, toDevice, hidraw;
    };

    std::vector<Message> messages;
    std::vector<Cut> cuts;
    std::vector<std::size_t> uncut;
    std::vector<Stream> streams;
    std::vector<Bad> bad;
    std::vector<CarriedFrame> reports;

    explicit ClientVectors(const char* file) {
        const nlohmann::json json = nlohmann::json::parse(std::ifstream(file));
        for (const auto& item : json.at("messages"))
            messages.push_back({item.at("about"), item.at("message").dump(), bytesOf(item.at("bytes")),
                                listOf(item.at("frames"))});
        for (const auto& item : json.at("cuts"))
            cuts.push_back({bytesOf(item.at("bytes")), listOf(item.at("frames"))});
        uncut = json.at("uncut").get<std::vector<std::size_t>>();
        for (const auto& item : json.at("streams"))
            streams.push_back({item.at("about"), listOf(item.at("frames")), listOf(item.at("messages"))});
        for (const auto& item : json.at("bad"))
            bad.push_back({item.at("about"), bytesOf(item.at("bytes"))});
        for (const auto& item : json.at("reports"))
            reports.push_back({bytesOf(item.at("frame")), bytesOf(item.at("toHost")),
                               bytesOf(item.at("toDevice")), bytesOf(item.at("hidraw"))});
    }

    static Bytes bytesOf(const std::string& hexadecimal) {
        Bytes bytes;
        for (std::size_t i = 0; i + 1 < hexadecimal.size(); i += 2)
            bytes.push_back(static_cast<std::uint8_t>(std::stoi(hexadecimal.substr(i, 2), nullptr, 16)));
        return bytes;
    }

private:
    static std::vector<Bytes> listOf(const nlohmann::json& items) {
        std::vector<Bytes> list;
        for (const std::string item : items) {
            const std::size_t star = item.find('*');
            const int count = star == std::string::npos ? 1 : std::stoi(item.substr(star + 1));
            list.insert(list.end(), static_cast<std::size_t>(count), bytesOf(item.substr(0, star)));
        }
        return list;
    }
};
