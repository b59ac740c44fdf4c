// The POSIX side of Directory.
#pragma once

#include <string>
#include <vector>

#include "utility/OsFiles.h"

namespace tvk {

class DirectoryImpl {
public:
    static bool exists(const std::string& path, OsFiles& files);
    static void remove(const std::string& path, OsFiles& files);
    static void copy(const std::string& source, const std::string& target, OsFiles& files);
    static std::vector<std::string> listFiles(const std::string& path, OsFiles& files);
};

}  // namespace tvk
