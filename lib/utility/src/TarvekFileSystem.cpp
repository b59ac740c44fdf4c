#include "utility/TarvekFileSystem.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>

#include "utility/AtomicSave.h"
#include "utility/Directory.h"
#include "utility/Log.h"

namespace {

constexpr mode_t kFileMode = 0644;
constexpr std::size_t kReadBlockBytes = 16384;

// False with errno set on failure.
template <typename Bytes>
bool readWhole(tvk::OsFiles& files, const std::string& path, Bytes& result) {
    const int descriptor = files.open(path.c_str(), O_RDONLY, 0);
    if (descriptor == -1) return false;
    Bytes bytes;
    std::array<char, kReadBlockBytes> block;
    ssize_t count = 0;
    do {
        count = files.read(descriptor, block.data(), block.size());
        if (count > 0) bytes.insert(bytes.end(), block.begin(), block.begin() + count);
    } while (count > 0 || (count == -1 && errno == EINTR));
    const int error = errno;
    files.close(descriptor);
    errno = error;
    if (count == -1) return false;
    result = std::move(bytes);
    return true;
}

// flags: O_TRUNC or O_APPEND. False with errno set on failure.
bool writeWhole(tvk::OsFiles& files, const std::string& path, int flags, const void* bytes,
                std::size_t count) {
    const int descriptor = files.open(path.c_str(), O_WRONLY | O_CREAT | flags, kFileMode);
    if (descriptor == -1) return false;
    const bool written = files.writeAll(descriptor, bytes, count);
    const int error = errno;
    const bool closed = files.close(descriptor) == 0;
    if (!written) errno = error;
    return written && closed;
}

void warnSave(const std::string& path) {
    TVK_WARN("TarvekFileSystem::saveFile unable to open file %s", path.c_str());
}

void warnLoad(const std::string& path) {
    TVK_WARN("TarvekFileSystem::loadFile unable to open file %s", path.c_str());
}

}  // namespace

bool TarvekFileSystem::exists(const std::string& path) const {
    return tvk::Directory(files_).exists(path);
}

bool TarvekFileSystem::loadFile(const std::string& path, std::string& text) const {
    const bool loaded = readWhole(files_, path, text);
    if (!loaded) warnLoad(path);
    return loaded;
}

bool TarvekFileSystem::loadFile(const std::string& path, std::vector<std::uint8_t>& bytes) const {
    const bool loaded = readWhole(files_, path, bytes);
    if (!loaded) warnLoad(path);
    return loaded;
}

bool TarvekFileSystem::saveFile(const std::string& path, const std::string& text) {
    const bool saved = writeWhole(files_, path, O_TRUNC, text.data(), text.size());
    if (!saved) warnSave(path);
    return saved;
}

bool TarvekFileSystem::saveFile(const std::string& path, const std::vector<std::uint8_t>& bytes) {
    const bool saved = writeWhole(files_, path, O_TRUNC, bytes.data(), bytes.size());
    if (!saved) warnSave(path);
    return saved;
}

bool TarvekFileSystem::saveFileAtomic(const std::string& path, const std::string& text) {
    return tvk::atomicSave(path, text, files_);
}

bool TarvekFileSystem::logData(const std::string& path, const std::string& text) {
    const bool appended = writeWhole(files_, path, O_APPEND, text.data(), text.size());
    if (!appended) TVK_WARN("TarvekFileSystem::logData unable to open file %s", path.c_str());
    return appended;
}

bool TarvekFileSystem::loadPreset(const std::string& path, std::string& text) const {
    if (readWhole(files_, path, text)) return true;
    const int error = errno;
    TVK_WARN("Unable to open preset file from SD card %s", path.c_str());
    TVK_WARN("Error %s opening file %s", std::strerror(error), path.c_str());
    return false;
}

bool TarvekFileSystem::savePreset(const std::string& path, const std::string& text) {
    if (writeWhole(files_, path, O_TRUNC, text.data(), text.size())) return true;
    TVK_WARN("Error %s opening file %s", std::strerror(errno), path.c_str());
    return false;
}

bool TarvekFileSystem::loadSettings(const std::string& path, const std::string& defaults, std::string& text) {
    if (readWhole(files_, path, text)) return true;
    TVK_WARN("problem reading settings, %s", std::strerror(errno));
    text = defaults;
    if (tvk::atomicSave(path, defaults, files_)) return true;
    TVK_WARN("problem setting default settings, %s", path.c_str());
    return false;
}
