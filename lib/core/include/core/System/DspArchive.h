// A tree document with a cursor: the form in which presets, unit definitions, the product profile and the
// utilisation file reach the audio side. What each operation does is told at IDspFileImpl.
//
// Read with a preset variable:   float level = 1.0f;  archive.get("level", level);   // 1.0 if it is missing
// Walk:                          if (archive.enterObject("info")) { ...; archive.leaveObject(); }
// Write:                         archive.beginArray("nodes"); archive.beginObject(""); ...;
// archive.endObject();
//
// Control threads only, one at a time.
#pragma once

#include <iosfwd>
#include <memory>
#include <string>

class IDspFileImpl;

class DspArchive {
public:
    DspArchive();
    // Parses JSON; throws as read does.
    explicit DspArchive(const std::string& json);
    // Copies are deep; the copy's cursor is on the same place of the copy.
    DspArchive(const DspArchive& other);
    DspArchive& operator=(const DspArchive& other);
    ~DspArchive();

    void read(std::istream& stream);
    void write(std::ostream& stream) const;
    std::string toString() const;
    void clear();
    void rewind();

    void get(const std::string& key, std::string& value) const;
    void get(const std::string& key, int& value) const;
    void get(const std::string& key, float& value) const;
    void get(const std::string& key, double& value) const;
    void get(const std::string& key, bool& value) const;

    const void* getRoot() const;
    const void* getCursor() const;

    void remove(const std::string& key);
    void remove(int index);

    void replace(int index, const DspArchive& archive);
    void replace(const std::string& key, const DspArchive& archive);
    void replace(const std::string& key, float value);
    void replace(const std::string& key, int value);
    void replace(const std::string& key, double value);
    void replace(const std::string& key, bool value);
    void replace(const std::string& key, const std::string& value);
    void replace(const std::string& key, const char* value);  // a literal would turn into a bool

    void set(const std::string& key, float value);
    void set(const std::string& key, int value);
    void set(const std::string& key, double value);
    void set(const std::string& key, bool value);
    void set(const std::string& key, const std::string& value);
    void set(const std::string& key, const char* value);
    void set(const std::string& key, const DspArchive& archive);

    bool enterObject(const std::string& key);
    void leaveObject();
    void beginObject(const std::string& key);
    void endObject();
    void beginArray(const std::string& key);
    void endArray();

    int getArraySize() const;
    bool enterArrayItem(int index);
    void getArrayItem(int index, std::string& value) const;
    void getArrayItem(int index, float& value) const;
    void getArrayItem(int index, double& value) const;
    void getArrayItem(int index, bool& value) const;
    void getArrayItem(int index, int& value) const;

    bool isEmpty() const;

private:
    std::unique_ptr<IDspFileImpl> impl_;
};

std::istream& operator>>(std::istream& stream, DspArchive& archive);
std::ostream& operator<<(std::ostream& stream, const DspArchive& archive);
