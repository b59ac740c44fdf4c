#include "System/DspFileJSON.h"

#include <istream>
#include <ostream>
#include <stdexcept>

#include "System/JsonNesting.h"
#include "System/JsonNumber.h"
#include "utility/Log.h"

namespace {

constexpr const char* kTag = "DspFileJSON";
constexpr const char* kMissing = "Failed to get value at key \"%s\".";
constexpr const char* kMissingBool = "Key not found: \"%s\".";

std::string dump(const nlohmann::ordered_json& value) {
    return value.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

void convert(const nlohmann::ordered_json& from, std::string& to) {
    to = from.get<std::string>();
}
void convert(const nlohmann::ordered_json& from, bool& to) {
    to = from.get<bool>();
}
void convert(const nlohmann::ordered_json& from, int& to) {
    to = toInt(from);
}
void convert(const nlohmann::ordered_json& from, float& to) {
    to = toFloat(from);
}
void convert(const nlohmann::ordered_json& from, double& to) {
    to = from.get<double>();
}

void logWrite(const char* word, const std::string& key, const std::string& value) {
    tvk::log::debug(kTag, "%s(%s, %s)", word, key.c_str(), value.c_str());
}
void logWrite(const char* word, const std::string& key, double value) {
    tvk::log::debug(kTag, "%s(%s, %.3f)", word, key.c_str(), value);
}
void logWrite(const char* word, const std::string& key, float value) {
    logWrite(word, key, static_cast<double>(value));
}
void logWrite(const char* word, const std::string& key, int value) {
    tvk::log::debug(kTag, "%s(%s, %d)", word, key.c_str(), value);
}
void logWrite(const char* word, const std::string& key, bool value) {
    tvk::log::debug(kTag, "%s(%s, %s)", word, key.c_str(), value ? "true" : "false");
}
void logWrite(const char* word, const std::string& key, const nlohmann::ordered_json&) {
    tvk::log::debug(kTag, "%s(%s, DspArchive)", word, key.c_str());
}

}  // namespace

DspFileJSON::DspFileJSON() : stack_{&root_} {}

DspFileJSON::DspFileJSON(const DspFileJSON& other) : root_(other.root_), stack_{&root_} {
    // Follows the other's path by position: the n-th child there is the n-th child here.
    for (std::size_t level = 1; level < other.stack_.size(); ++level) {
        auto child = cursor_->begin();
        for (const Json& sibling : *other.stack_[level - 1]) {
            if (&sibling == other.stack_[level]) break;
            ++child;
        }
        push(&*child);
    }
}

void DspFileJSON::read(std::istream& stream) {
    clear();
    const std::string text(std::istreambuf_iterator<char>(stream), {});
    requireNestingWithinLimit(text);
    try {
        root_ = Json::parse(text);
    } catch (const Json::out_of_range& error) {
        // A number beyond the range of a double: the reader's caller sees one kind of error only.
        throw Json::parse_error::create(101, 0, error.what(), nullptr);
    }
}

void DspFileJSON::write(std::ostream& stream) const {
    stream << dump(root_);
}
std::string DspFileJSON::toString() const {
    return dump(*cursor_);
}

void DspFileJSON::clear() {
    root_ = Json();
    rewind();
}

void DspFileJSON::rewind() {
    stack_.assign(1, &root_);
    cursor_ = &root_;
}

template <typename T>
void DspFileJSON::getValue(const std::string& key, T& value, const char* missingFormat) const {
    tvk::log::debug(kTag, "%s(%s)", "get", key.c_str());
    if (!cursor_->is_object() || !cursor_->contains(key)) {
        TVK_WARN(missingFormat, key.c_str());
        return;
    }
    try {
        convert(cursor_->at(key), value);
    } catch (const std::exception& error) {
        TVK_WARN("Failed to get value at key \"%s\": %s", key.c_str(), error.what());
    }
}

void DspFileJSON::get(const std::string& key, std::string& value) const {
    getValue(key, value, kMissing);
}
void DspFileJSON::get(const std::string& key, int& value) const {
    getValue(key, value, kMissing);
}
void DspFileJSON::get(const std::string& key, float& value) const {
    getValue(key, value, kMissing);
}
void DspFileJSON::get(const std::string& key, double& value) const {
    getValue(key, value, kMissing);
}
void DspFileJSON::get(const std::string& key, bool& value) const {
    getValue(key, value, kMissingBool);
}

const void* DspFileJSON::getRoot() const {
    return &root_;
}
const void* DspFileJSON::getCursor() const {
    return cursor_;
}

void DspFileJSON::remove(const std::string& key) {
    tvk::log::debug(kTag, "%s(%s)", "remove", key.c_str());
    try {
        cursor_->erase(key);
    } catch (const std::exception& error) {
        TVK_WARN("Failed to remove value at key %s: %s", key.c_str(), error.what());
    }
}

void DspFileJSON::remove(int index) {
    tvk::log::debug(kTag, "%s(%d)", "remove", index);
    try {
        cursor_->erase(static_cast<std::size_t>(index));
    } catch (const std::exception& error) {
        TVK_WARN("Failed to remove value at index %d: %s", index, error.what());
    }
}

const DspFileJSON::Json& DspFileJSON::rootOf(const IDspFileImpl& archive) {
    return dynamic_cast<const DspFileJSON&>(archive).root_;
}

template <typename T>
void DspFileJSON::replaceValue(const std::string& key, const T& value) {
    logWrite("replace", key, value);
    try {
        cursor_->at(key) = value;
    } catch (const std::exception& error) {
        TVK_WARN("Failed to replace value at key %s: %s", key.c_str(), error.what());
    }
}

void DspFileJSON::replace(int index, const IDspFileImpl& archive) {
    tvk::log::debug(kTag, "%s(%d, DspArchive)", "replace", index);
    try {
        cursor_->at(static_cast<std::size_t>(index)) = Json(rootOf(archive));
    } catch (const std::exception& error) {
        TVK_WARN("Failed to replace value at index %d: %s", index, error.what());
    }
}

void DspFileJSON::replace(const std::string& key, const IDspFileImpl& archive) {
    replaceValue(key, Json(rootOf(archive)));
}
void DspFileJSON::replace(const std::string& key, float value) {
    replaceValue(key, value);
}
void DspFileJSON::replace(const std::string& key, int value) {
    replaceValue(key, value);
}
void DspFileJSON::replace(const std::string& key, double value) {
    replaceValue(key, value);
}
void DspFileJSON::replace(const std::string& key, bool value) {
    replaceValue(key, value);
}
void DspFileJSON::replace(const std::string& key, const std::string& value) {
    replaceValue(key, value);
}

template <typename T>
void DspFileJSON::setValue(const std::string& key, const T& value) {
    logWrite("set", key, value);
    try {
        (*cursor_)[key] = value;
    } catch (const std::exception& error) {
        TVK_WARN("Failed to set value at key \"%s\": %s", key.c_str(), error.what());
    }
}

void DspFileJSON::set(const std::string& key, float value) {
    setValue(key, value);
}
void DspFileJSON::set(const std::string& key, int value) {
    setValue(key, value);
}
void DspFileJSON::set(const std::string& key, double value) {
    setValue(key, value);
}
void DspFileJSON::set(const std::string& key, bool value) {
    setValue(key, value);
}
void DspFileJSON::set(const std::string& key, const std::string& value) {
    setValue(key, value);
}

void DspFileJSON::set(const std::string& key, const IDspFileImpl& archive) {
    Json item(rootOf(archive));
    logWrite("set", key, item);
    try {
        // A null that push_back meets turns into an array.
        (*cursor_)[key].push_back(std::move(item));
    } catch (const std::exception& error) {
        TVK_WARN("Failed to set value at key \"%s\": %s", key.c_str(), error.what());
    }
}

void DspFileJSON::push(Json* value) {
    stack_.push_back(value);
    cursor_ = value;
}

void DspFileJSON::pop() {
    if (stack_.size() > 1) stack_.pop_back();
    cursor_ = stack_.back();
}

bool DspFileJSON::enterObject(const std::string& key) {
    if (!cursor_->is_object() || !cursor_->contains(key)) return false;
    push(&cursor_->at(key));
    return true;
}

void DspFileJSON::begin(const std::string& key, Json::value_t type) {
    Json* place = nullptr;
    if (cursor_->is_array()) {
        place = &cursor_->emplace_back(type);
    } else if (cursor_->is_null() || cursor_->is_object()) {
        Json& member = (*cursor_)[key];
        if (member.is_null()) member = Json(type);
        if (member.type() == type) place = &member;
    }
    if (!place) {
        TVK_ERROR("Unable to push key");
        return;
    }
    push(place);
}

void DspFileJSON::leaveObject() {
    pop();
}
void DspFileJSON::beginObject(const std::string& key) {
    begin(key, Json::value_t::object);
}
void DspFileJSON::endObject() {
    pop();
}
void DspFileJSON::beginArray(const std::string& key) {
    begin(key, Json::value_t::array);
}
void DspFileJSON::endArray() {
    pop();
}

int DspFileJSON::getArraySize() const {
    return cursor_->is_array() ? static_cast<int>(cursor_->size()) : 0;
}

bool DspFileJSON::enterArrayItem(int index) {
    if (!cursor_->is_array() || index < 0 || index >= getArraySize()) return false;
    push(&(*cursor_)[static_cast<std::size_t>(index)]);
    return true;
}

template <typename T>
void DspFileJSON::getItem(int index, T& value) const {
    tvk::log::debug(kTag, "%s(%d)", "getArrayItem", index);
    try {
        convert(cursor_->at(static_cast<std::size_t>(index)), value);
    } catch (const std::exception& error) {
        TVK_WARN("Failed to get value at index %d: %s", index, error.what());
    }
}

void DspFileJSON::getArrayItem(int index, std::string& value) const {
    getItem(index, value);
}
void DspFileJSON::getArrayItem(int index, float& value) const {
    getItem(index, value);
}
void DspFileJSON::getArrayItem(int index, double& value) const {
    getItem(index, value);
}
void DspFileJSON::getArrayItem(int index, bool& value) const {
    getItem(index, value);
}
void DspFileJSON::getArrayItem(int index, int& value) const {
    getItem(index, value);
}

bool DspFileJSON::isEmpty() const {
    return root_.is_null();
}
std::unique_ptr<IDspFileImpl> DspFileJSON::clone() const {
    return std::make_unique<DspFileJSON>(*this);
}
