#include "utility/OsFiles.h"

#include <cerrno>
#include <cstdio>
#include <unistd.h>

namespace tvk {

int OsFiles::open(const char* path, int flags, mode_t mode) {
    return ::open(path, flags | O_CLOEXEC, mode);
}

ssize_t OsFiles::read(int descriptor, void* bytes, std::size_t count) {
    return ::read(descriptor, bytes, count);
}

ssize_t OsFiles::write(int descriptor, const void* bytes, std::size_t count) {
    return ::write(descriptor, bytes, count);
}

int OsFiles::sync(int descriptor) {
    return ::fsync(descriptor);
}

int OsFiles::close(int descriptor) {
    return ::close(descriptor);
}

int OsFiles::rename(const char* from, const char* to) {
    return std::rename(from, to);
}

int OsFiles::unlink(const char* path) {
    return ::unlink(path);
}

int OsFiles::status(int descriptor, struct stat* result) {
    return ::fstat(descriptor, result);
}

bool OsFiles::writeAll(int descriptor, const void* bytes, std::size_t count) {
    const char* next = static_cast<const char*>(bytes);
    while (count > 0) {
        const ssize_t written = write(descriptor, next, count);
        if (written == -1 && errno == EINTR) continue;
        if (written == -1) return false;
        next += written;
        count -= static_cast<std::size_t>(written);
    }
    return true;
}

OsFiles& OsFiles::machine() {
    static OsFiles files;
    return files;
}

}  // namespace tvk
