// A text file by lines, over stdio. Every failure is a tvk::Exception with the path and the system's words.
//
// One thread at a time. What was written is on its way to the disk after flush or the destructor.
#pragma once

#include <memory>
#include <string>

namespace tvk {

class FileImpl;

class File {
public:
    enum class IoMode {
        Read,   // "r+": an existing file, read and written
        Write,  // "w+": emptied or created
        Append  // "a+": created if need be, written at its end
    };

    File(const std::string& path, IoMode mode);

    // A failure to close is a warning.
    ~File();
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    // The next line without its end; false when there is none.
    bool readLine(std::string& line);

    void write(const std::string& text);
    void flush();

private:
    std::unique_ptr<FileImpl> impl_;
};

}  // namespace tvk
