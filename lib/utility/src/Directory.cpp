#include "utility/Directory.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>

#include "DirectoryImpl.h"
#include "utility/Exception.h"

namespace tvk {

namespace {

constexpr std::size_t kCopyBlockBytes = 16384;

// An open descriptor that closes itself.
class Descriptor {
public:
    Descriptor(OsFiles& files, int number) : files_(files), number_(number) {}
    ~Descriptor() {
        if (isOpen()) files_.close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool isOpen() const { return number_ != -1; }
    int number() const { return number_; }
    bool close() {
        const int number = number_;
        number_ = -1;
        return files_.close(number) == 0;
    }

private:
    OsFiles& files_;
    int number_;
};

bool copyBytes(OsFiles& files, int source, int target) {
    std::array<char, kCopyBlockBytes> block;
    for (;;) {
        const ssize_t count = files.read(source, block.data(), block.size());
        if (count == -1 && errno == EINTR) continue;
        if (count <= 0) return count == 0;
        if (!files.writeAll(target, block.data(), static_cast<std::size_t>(count))) return false;
    }
}

}  // namespace

bool DirectoryImpl::exists(const std::string& path, OsFiles& files) {
    struct stat status {};
    return OsFiles::resumed([&] { return files.pathStatus(path.c_str(), true, &status); }) == 0;
}

void DirectoryImpl::remove(const std::string& path, OsFiles& files) {
    int result = OsFiles::resumed([&] { return files.unlink(path.c_str()); });
    if (result != 0 && errno == EISDIR)
        result = OsFiles::resumed([&] { return files.removeDirectory(path.c_str()); });
    if (result != 0) TVK_THROW("Error deleting file '%s': %s", path.c_str(), std::strerror(errno));
}

void DirectoryImpl::copy(const std::string& source, const std::string& target, OsFiles& files) {
    if (!exists(source, files)) TVK_THROW("file '%s' doesn't exist", source.c_str());
    const Descriptor from(files, files.open(source.c_str(), O_RDONLY, 0));
    if (!from.isOpen()) TVK_THROW("Can't open file '%s': %s", source.c_str(), std::strerror(errno));
    struct stat status {};
    if (files.status(from.number(), &status) != 0)
        TVK_THROW("Can't stat file '%s': %s", source.c_str(), std::strerror(errno));
    Descriptor to(files, files.open(target.c_str(), O_WRONLY | O_CREAT | O_TRUNC, status.st_mode & 07777));
    if (!to.isOpen())
        TVK_THROW("Can't open/create/truncate file '%s': %s", target.c_str(), std::strerror(errno));
    if (!copyBytes(files, from.number(), to.number()) || !to.close())
        TVK_THROW("Copy file '%s': %s", source.c_str(), std::strerror(errno));
}

std::vector<std::string> DirectoryImpl::listFiles(const std::string& path, OsFiles& files) {
    std::vector<std::string> names;
    if (OsFiles::resumed([&] { return files.list(path.c_str(), names); }) != 0)
        TVK_THROW("Can't open directory '%s': %s", path.c_str(), std::strerror(errno));
    std::sort(names.begin(), names.end());
    return names;
}

bool Directory::exists(const std::string& path) const {
    return DirectoryImpl::exists(path, files_);
}

void Directory::remove(const std::string& path) const {
    DirectoryImpl::remove(path, files_);
}

void Directory::copy(const std::string& source, const std::string& target) const {
    DirectoryImpl::copy(source, target, files_);
}

std::vector<std::string> Directory::listFiles(const std::string& path) const {
    return DirectoryImpl::listFiles(path, files_);
}

}  // namespace tvk
