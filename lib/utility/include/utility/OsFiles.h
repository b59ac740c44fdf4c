// The system calls on files that the save and copy functions are made of, as one small door, so that a test
// can make any of them fail.
//
// Each returns what its namesake returns, with errno set on failure.
#pragma once

#include <cstddef>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

namespace tvk {

class OsFiles {
public:
    virtual ~OsFiles() = default;
    virtual int open(const char* path, int flags, mode_t mode);
    virtual ssize_t read(int descriptor, void* bytes, std::size_t count);
    virtual ssize_t write(int descriptor, const void* bytes, std::size_t count);
    virtual int sync(int descriptor);  // fsync(2)
    virtual int close(int descriptor);
    virtual int rename(const char* from, const char* to);
    virtual int unlink(const char* path);
    virtual int status(int descriptor, struct stat* result);  // fstat(2)

    // Writes all of it, over short writes and signals; false with errno set when a write fails.
    bool writeAll(int descriptor, const void* bytes, std::size_t count);

    // The machine's own.
    static OsFiles& machine();
};

}  // namespace tvk
