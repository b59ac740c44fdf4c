// A file that comes to be whole or not at all: written under a name of its own, renamed at the end.
#pragma once

#include <string>

namespace tvk::render {

class PendingFile {
public:
    // Nothing is created yet; an empty path stands for no file.
    explicit PendingFile(std::string path);
    // Removes what was not committed.
    ~PendingFile();
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;

    bool isWanted() const { return !path_.empty(); }
    // The name to write under, beside the final one.
    const std::string& temporary() const { return temporary_; }
    // Throws tvk::Exception when the file cannot be put in its place.
    void commit();

private:
    const std::string path_;
    const std::string temporary_;
    bool isCommitted_ = false;
};

}  // namespace tvk::render
