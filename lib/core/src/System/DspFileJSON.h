// The document as JSON. An object keeps its keys in the order in which they were written.
#pragma once

#include <deque>
#include <nlohmann/json.hpp>

#include "core/System/IDspFileImpl.h"

class DspFileJSON final : public IDspFileImpl {
public:
    DspFileJSON();
    DspFileJSON(const DspFileJSON& other);
    DspFileJSON& operator=(const DspFileJSON&) = delete;

    void read(std::istream& stream) override;
    void write(std::ostream& stream) const override;
    std::string toString() const override;
    void clear() override;
    void rewind() override;

    void get(const std::string& key, std::string& value) const override;
    void get(const std::string& key, int& value) const override;
    void get(const std::string& key, float& value) const override;
    void get(const std::string& key, double& value) const override;
    void get(const std::string& key, bool& value) const override;

    const void* getRoot() const override;
    const void* getCursor() const override;

    void remove(const std::string& key) override;
    void remove(int index) override;

    void replace(int index, const IDspFileImpl& archive) override;
    void replace(const std::string& key, const IDspFileImpl& archive) override;
    void replace(const std::string& key, float value) override;
    void replace(const std::string& key, int value) override;
    void replace(const std::string& key, double value) override;
    void replace(const std::string& key, bool value) override;
    void replace(const std::string& key, const std::string& value) override;

    void set(const std::string& key, float value) override;
    void set(const std::string& key, int value) override;
    void set(const std::string& key, double value) override;
    void set(const std::string& key, bool value) override;
    void set(const std::string& key, const std::string& value) override;
    void set(const std::string& key, const IDspFileImpl& archive) override;

    bool enterObject(const std::string& key) override;
    void leaveObject() override;
    void beginObject(const std::string& key) override;
    void endObject() override;
    void beginArray(const std::string& key) override;
    void endArray() override;

    int getArraySize() const override;
    bool enterArrayItem(int index) override;
    void getArrayItem(int index, std::string& value) const override;
    void getArrayItem(int index, float& value) const override;
    void getArrayItem(int index, double& value) const override;
    void getArrayItem(int index, bool& value) const override;
    void getArrayItem(int index, int& value) const override;

    bool isEmpty() const override;
    std::unique_ptr<IDspFileImpl> clone() const override;

private:
    using Json = nlohmann::ordered_json;

    static const Json& rootOf(const IDspFileImpl& archive);
    void push(Json* value);
    void pop();
    void begin(const std::string& key, Json::value_t type);

    template <typename T>
    void getValue(const std::string& key, T& value, const char* missingFormat) const;
    template <typename T>
    void getItem(int index, T& value) const;
    template <typename T>
    void setValue(const std::string& key, const T& value);
    template <typename T>
    void replaceValue(const std::string& key, const T& value);

    Json root_;
    Json* cursor_ = &root_;
    // Every value from the root to the cursor. Changes are made at the cursor only, so that no value on this
    // path ever moves.
    std::deque<Json*> stack_;
};
