// The system calls on files that saves, loads and deletes are made of, as one small door, so that a test can
// make any of them fail, or put a disk of its own behind it.
//
// Each returns what its namesake returns, with errno set on failure.
#pragma once

#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <sys/types.h>
#include <vector>

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

    // stat(2), or lstat(2) where links are not followed.
    virtual int pathStatus(const char* path, bool followLinks, struct stat* result);
    virtual int makeDirectory(const char* path, mode_t mode);  // mkdir(2)
    virtual int removeDirectory(const char* path);             // rmdir(2)

    // Names of a directory's entries without "." and "..", in any order: 0, or -1 with errno set.
    virtual int list(const char* path, std::vector<std::string>& names);

    // Writes all of it, over short writes and signals; false with errno set when a write fails.
    bool writeAll(int descriptor, const void* bytes, std::size_t count);

    // Makes the call again for as long as a signal interrupts it.
    template <typename Call>
    static auto resumed(Call call) {
        auto result = call();
        while (result == -1 && errno == EINTR)
            result = call();
        return result;
    }

    // The machine's own.
    static OsFiles& machine();
};

}  // namespace tvk
