// The stdio side of File.
#pragma once

#include <cstdio>
#include <string>

#include "utility/File.h"

namespace tvk {

class FileImpl {
public:
    FileImpl(const std::string& path, File::IoMode mode);
    ~FileImpl();
    FileImpl(const FileImpl&) = delete;
    FileImpl& operator=(const FileImpl&) = delete;

    bool readLine(std::string& line);
    void write(const std::string& text);
    void flush();

private:
    std::FILE* stream_;
    std::string pathName_;
};

}  // namespace tvk
