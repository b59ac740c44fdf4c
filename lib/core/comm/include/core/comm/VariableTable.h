// Where the values of received frames go: by name and type, to a variable of the program.
//
// A hash table of 101 buckets over the name, hash = character + hash * 31. An entry holds one target for each
// type; a value whose type has none is not stored.
//
// One thread at a time; the targets outlive the table and are written by store alone.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "core/comm/VariableFrame.h"

namespace tvk::comm {

class VariableTable {
public:
    static constexpr std::size_t kBuckets = 101;

    static std::uint32_t hash(std::string_view name);

    // Target is float, one of the integers of 8, 16 or 32 bits, or std::string. Replaces an earlier target of
    // the name and type.
    template <typename Target>
    void bind(const std::string& name, Target* target) {
        std::get<Target*>(entryOf(name).targets) = target;
    }

    // True when the value has been stored.
    bool store(const VariableFrame& frame);

private:
    // In the order of the type codes.
    using Targets = std::tuple<float*, std::uint8_t*, std::uint16_t*, std::uint32_t*, std::int8_t*,
                               std::int16_t*, std::int32_t*, std::string*>;
    struct Entry {
        std::string name;
        Targets targets;
    };
    using Bucket = std::vector<Entry>;

    static std::size_t bucketOf(std::string_view name) { return hash(name) % kBuckets; }
    static Entry* find(Bucket& bucket, std::string_view name);
    Entry& entryOf(const std::string& name);

    std::array<Bucket, kBuckets> buckets_;
};

}  // namespace tvk::comm
