// Files by name: is it there, remove, copy, list. Failures are tvk::Exception with the path and the system's
// words. Control threads; blocks for the disk.
#pragma once

#include <string>
#include <vector>

#include "utility/OsFiles.h"

namespace tvk {

class Directory {
public:
    explicit Directory(OsFiles& files = OsFiles::machine()) : files_(files) {}

    bool exists(const std::string& path) const;

    // A file, or an empty directory.
    void remove(const std::string& path) const;

    // The target is emptied or created with the source's permissions.
    void copy(const std::string& source, const std::string& target) const;

    // Names of the entries, sorted, without "." and "..".
    std::vector<std::string> listFiles(const std::string& path) const;

private:
    OsFiles& files_;
};

}  // namespace tvk
