#include "core/comm/VariableTable.h"

#include <algorithm>
#include <bit>

namespace tvk::comm {

namespace {

bool storeIn(float* target, std::span<const std::uint8_t> value) {
    if (target) *target = std::bit_cast<float>(readLittleEndian(value));
    return target != nullptr;
}

bool storeIn(std::string* target, std::span<const std::uint8_t> value) {
    if (target) target->assign(value.begin(), value.end());
    return target != nullptr;
}

template <typename Integer>
bool storeIn(Integer* target, std::span<const std::uint8_t> value) {
    if (target) *target = static_cast<Integer>(readLittleEndian(value));
    return target != nullptr;
}

}  // namespace

std::uint32_t VariableTable::hash(std::string_view name) {
    std::uint32_t hash = 0;
    for (const char c : name)
        hash = static_cast<std::uint8_t>(c) + hash * 31;
    return hash;
}

VariableTable::Entry* VariableTable::find(Bucket& bucket, std::string_view name) {
    const auto entry =
        std::find_if(bucket.begin(), bucket.end(), [name](const Entry& e) { return e.name == name; });
    return entry == bucket.end() ? nullptr : &*entry;
}

VariableTable::Entry& VariableTable::entryOf(const std::string& name) {
    Bucket& bucket = buckets_[bucketOf(name)];
    if (Entry* const entry = find(bucket, name)) return *entry;
    return bucket.emplace_back(Entry{name, {}});
}

bool VariableTable::store(const VariableFrame& frame) {
    const Entry* const entry = find(buckets_[bucketOf(frame.name)], frame.name);
    if (!entry) return false;
    switch (frame.type) {
        case VariableType::Float:
            return storeIn(std::get<float*>(entry->targets), frame.value);
        case VariableType::Uint8:
            return storeIn(std::get<std::uint8_t*>(entry->targets), frame.value);
        case VariableType::Uint16:
            return storeIn(std::get<std::uint16_t*>(entry->targets), frame.value);
        case VariableType::Uint32:
            return storeIn(std::get<std::uint32_t*>(entry->targets), frame.value);
        case VariableType::Int8:
            return storeIn(std::get<std::int8_t*>(entry->targets), frame.value);
        case VariableType::Int16:
            return storeIn(std::get<std::int16_t*>(entry->targets), frame.value);
        case VariableType::Int32:
            return storeIn(std::get<std::int32_t*>(entry->targets), frame.value);
        case VariableType::String:
            return storeIn(std::get<std::string*>(entry->targets), frame.value);
    }
    return false;
}

}  // namespace tvk::comm
