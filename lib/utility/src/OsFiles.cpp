#include "utility/OsFiles.h"

#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <memory>
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

int OsFiles::pathStatus(const char* path, bool followLinks, struct stat* result) {
    return followLinks ? ::stat(path, result) : ::lstat(path, result);
}

int OsFiles::makeDirectory(const char* path, mode_t mode) {
    return ::mkdir(path, mode);
}

int OsFiles::removeDirectory(const char* path) {
    return ::rmdir(path);
}

int OsFiles::list(const char* path, std::vector<std::string>& names) {
    const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(path), &closedir);
    if (!directory) return -1;
    names.clear();
    errno = 0;
    while (const dirent* const entry = readdir(directory.get())) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") names.push_back(name);
        errno = 0;
    }
    return errno == 0 ? 0 : -1;
}

bool OsFiles::writeAll(int descriptor, const void* bytes, std::size_t count) {
    const char* next = static_cast<const char*>(bytes);
    while (count > 0) {
        const ssize_t written = resumed([&] { return write(descriptor, next, count); });
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
