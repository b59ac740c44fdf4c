// Reads bytes as an archive and walks whatever came of it.
//
// Laws: a bad text throws the parser's error and leaves the archive empty; a good one is written back to a
// text that reads the same; a copy reads as its original at every place and shares nothing with it; numbers
// come out finite; leaving as often as entering ends at the root.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "Require.h"
#include "core/System/DspArchive.h"

namespace {

constexpr std::size_t kMaxKeys = 24;
constexpr int kMaxItems = 8;
constexpr int kMaxPlaces = 400;
// A change adds up to three levels, and a text deeper than 64 is not read back.
constexpr int kMaxDepthToChange = 60;

// Texts between quotes: among them are the keys of the document.
std::vector<std::string> keysOf(const std::string& json) {
    std::vector<std::string> keys{""};
    std::size_t open = json.find('"');
    while (open != std::string::npos && keys.size() < kMaxKeys) {
        const std::size_t close = json.find('"', open + 1);
        if (close == std::string::npos) break;
        keys.push_back(json.substr(open + 1, close - open - 1));
        open = json.find('"', close + 1);
    }
    return keys;
}

class Walker {
public:
    explicit Walker(std::vector<std::string> keys) : keys_(std::move(keys)) {}

    void walk(DspArchive& archive) {
        if (++places_ > kMaxPlaces) return;
        readHere(archive);
        if (depth_ < kMaxDepthToChange) copyHere(archive);
        ++depth_;
        const void* const here = archive.getCursor();
        for (const std::string& key : keys_) {
            if (archive.enterObject(key)) {
                walk(archive);
                archive.leaveObject();
                REQUIRE(archive.getCursor() == here);
            }
        }
        for (int i = 0; i < std::min(archive.getArraySize(), kMaxItems); ++i) {
            REQUIRE(archive.enterArrayItem(i));
            walk(archive);
            archive.leaveObject();
            REQUIRE(archive.getCursor() == here);
        }
        REQUIRE(!archive.enterArrayItem(archive.getArraySize()));
        --depth_;
    }

private:
    template <typename Get>
    static void readAll(Get get) {
        std::string text;
        int integer = 0;
        float single = 0.0f;
        double real = 0.0;
        bool flag = false;
        get(text);
        get(integer);
        get(single);
        get(real);
        get(flag);
        REQUIRE(std::isfinite(single) && std::isfinite(real));
    }

    void readHere(const DspArchive& archive) const {
        for (const std::string& key : keys_)
            readAll([&](auto& value) { archive.get(key, value); });
        for (int i = -1; i <= std::min(archive.getArraySize(), kMaxItems); ++i)
            readAll([&](auto& value) { archive.getArrayItem(i, value); });
    }

    void copyHere(const DspArchive& archive) const {
        const std::string before = archive.toString();
        DspArchive copy(archive);
        REQUIRE(copy.toString() == before);
        change(copy);
        copy.rewind();
        REQUIRE(DspArchive(copy.toString()).toString() == copy.toString());
        REQUIRE(archive.toString() == before);
    }

    void change(DspArchive& archive) const {
        const std::string& key = keys_[static_cast<std::size_t>(places_) % keys_.size()];
        const DspArchive item("{\"item\":1}");
        archive.set(key, 0.5f);
        archive.replace(key, key);
        archive.remove(places_ % 4 - 1);
        archive.replace(0, item);
        if (places_ % 2 == 0) archive.remove(key);
        archive.set("items", item);
        archive.beginObject(key);
        archive.set("new", places_);
        archive.endObject();
        archive.beginArray("list");
        archive.beginObject("");
        archive.set("text", key);
        archive.endObject();
        archive.endArray();
    }

    const std::vector<std::string> keys_;
    int places_ = 0;
    int depth_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static QuietLog quiet;
    const std::string json(reinterpret_cast<const char*>(data), size);
    DspArchive archive;
    try {
        archive = DspArchive(json);
    } catch (const std::exception& error) {
        REQUIRE(std::string(error.what()).rfind("[json.exception.parse_error", 0) == 0);
        return 0;
    }
    const std::string text = archive.toString();
    REQUIRE(DspArchive(text).toString() == text);
    Walker(keysOf(json)).walk(archive);
    REQUIRE(archive.getCursor() == archive.getRoot());
    REQUIRE(archive.toString() == text);
    return 0;
}
