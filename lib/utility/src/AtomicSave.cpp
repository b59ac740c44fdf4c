#include "utility/AtomicSave.h"

#include <cerrno>
#include <fcntl.h>

#include "utility/Log.h"

namespace tvk {

namespace {

constexpr mode_t kFileMode = 0644;

// The system frees the descriptor also when a signal interrupts the call.
bool closed(OsFiles& files, int descriptor) {
    return files.close(descriptor) == 0 || errno == EINTR;
}

bool writeTemporary(const std::string& path, std::string_view text, OsFiles& files) {
    constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW;
    const int descriptor = OsFiles::resumed([&] { return files.open(path.c_str(), kFlags, kFileMode); });
    if (descriptor == -1) {
        TVK_WARN("Failed to open file \"%s\".", path.c_str());
        return false;
    }
    bool written = files.writeAll(descriptor, text.data(), text.size());
    // A network or flash file system may report a lost write at the close only.
    if (!closed(files, descriptor)) written = false;
    if (!written) TVK_WARN("Failed to write file \"%s\".", path.c_str());
    return written;
}

bool syncThroughNewDescriptor(const std::string& path, OsFiles& files) {
    const int descriptor = OsFiles::resumed([&] { return files.open(path.c_str(), O_RDONLY, 0); });
    if (descriptor == -1) {
        TVK_WARN("Failed to open file %s.", path.c_str());
        return false;
    }
    const bool synced = OsFiles::resumed([&] { return files.sync(descriptor); }) == 0;
    if (!synced) TVK_WARN("Failed to sync file %s.", path.c_str());
    files.close(descriptor);
    return synced;
}

bool renameOver(const std::string& from, const std::string& to, OsFiles& files) {
    if (OsFiles::resumed([&] { return files.rename(from.c_str(), to.c_str()); }) == 0) return true;
    TVK_WARN("Failed to rename file from \"%s\" to \"%s\".", from.c_str(), to.c_str());
    return false;
}

}  // namespace

bool atomicSave(const std::string& path, std::string_view text, OsFiles& files) {
    const std::string temporary = path + ".tmp";
    const bool replaced = writeTemporary(temporary, text, files) &&
                          syncThroughNewDescriptor(temporary, files) && renameOver(temporary, path, files);
    if (!replaced) {
        OsFiles::resumed([&] { return files.unlink(temporary.c_str()); });
        return false;
    }
    return syncThroughNewDescriptor(path, files) && syncFolderOf(path, files);
}

bool syncFolderOf(const std::string& path, OsFiles& files) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
    return syncThroughNewDescriptor(folder, files);
}

}  // namespace tvk
