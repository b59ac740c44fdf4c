// The storage behind a DspArchive: a tree document with a cursor.
//
// "At the key" means: a member of the object at the cursor. No exception leaves get, set, replace, remove or
// getArrayItem: a fault is one warning, and the caller's variable keeps its value. Control threads only.
#pragma once

#include <iosfwd>
#include <memory>
#include <string>

class IDspFileImpl {
public:
    virtual ~IDspFileImpl() = default;

    // Clears, then parses the stream. Throws the parser's error, text "[json.exception.parse_error...";
    // the document is empty then. Nesting deeper than 64 levels is such an error.
    virtual void read(std::istream& stream) = 0;
    // Writes the whole document, compact; invalid UTF-8 comes out as U+FFFD.
    virtual void write(std::ostream& stream) const = 0;
    // The value at the cursor as text, compact, as write does it.
    virtual std::string toString() const = 0;
    virtual void clear() = 0;
    // Puts the cursor on the root.
    virtual void rewind() = 0;

    // Reads the member at the key; a missing one or one of another type warns and leaves value as it was.
    // Integers and floats convert into each other: clamped to the range of the target, fraction cut off.
    virtual void get(const std::string& key, std::string& value) const = 0;
    virtual void get(const std::string& key, int& value) const = 0;
    virtual void get(const std::string& key, float& value) const = 0;
    virtual void get(const std::string& key, double& value) const = 0;
    virtual void get(const std::string& key, bool& value) const = 0;

    // Identity of the root and of the value at the cursor, for comparison only.
    virtual const void* getRoot() const = 0;
    virtual const void* getCursor() const = 0;

    virtual void remove(const std::string& key) = 0;
    virtual void remove(int index) = 0;

    // Overwrites what is there; a key or an index that is not there warns. An archive is taken from its root.
    virtual void replace(int index, const IDspFileImpl& archive) = 0;
    virtual void replace(const std::string& key, const IDspFileImpl& archive) = 0;
    virtual void replace(const std::string& key, float value) = 0;
    virtual void replace(const std::string& key, int value) = 0;
    virtual void replace(const std::string& key, double value) = 0;
    virtual void replace(const std::string& key, bool value) = 0;
    virtual void replace(const std::string& key, const std::string& value) = 0;

    // Writes a member, new or not. A null at the cursor becomes an object.
    virtual void set(const std::string& key, float value) = 0;
    virtual void set(const std::string& key, int value) = 0;
    virtual void set(const std::string& key, double value) = 0;
    virtual void set(const std::string& key, bool value) = 0;
    virtual void set(const std::string& key, const std::string& value) = 0;
    // Appends the archive's root to the array at the key, which is made if it isn't there.
    virtual void set(const std::string& key, const IDspFileImpl& archive) = 0;

    // Moves to the member at the key, object or array; false, without a move, if there is none.
    virtual bool enterObject(const std::string& key) = 0;
    // Back to the parent; the root stays. endObject and endArray are the same.
    virtual void leaveObject() = 0;
    // Moves to the object at the key and creates it; in an array, appends an object and moves there.
    virtual void beginObject(const std::string& key) = 0;
    virtual void endObject() = 0;
    // The same with an array.
    virtual void beginArray(const std::string& key) = 0;
    virtual void endArray() = 0;

    // Items of the array at the cursor; 0 for anything else.
    virtual int getArraySize() const = 0;
    // Moves to an item of the array at the cursor; false, without a move, if there is none.
    virtual bool enterArrayItem(int index) = 0;
    virtual void getArrayItem(int index, std::string& value) const = 0;
    virtual void getArrayItem(int index, float& value) const = 0;
    virtual void getArrayItem(int index, double& value) const = 0;
    virtual void getArrayItem(int index, bool& value) const = 0;
    virtual void getArrayItem(int index, int& value) const = 0;

    // True if the root is null.
    virtual bool isEmpty() const = 0;

    // A deep copy, with the cursor on the same place of the copy.
    virtual std::unique_ptr<IDspFileImpl> clone() const = 0;
};
