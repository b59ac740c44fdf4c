#include "proj/models/Storage.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include "utility/AtomicSave.h"
#include "utility/Directory.h"
#include "utility/Exception.h"
#include "utility/ProductPaths.h"

namespace tvk {

namespace {

constexpr std::size_t kReadBlockBytes = 16384;
constexpr mode_t kFolderMode = 0755;

// Errors of a path that leads nowhere.
bool isAbsence(int error) {
    return error == ENOENT || error == ENOTDIR;
}

// The parent of "folder/" is what holds "folder".
std::string withoutLastSlash(std::string path) {
    if (path.ends_with('/')) path.pop_back();
    return path;
}

Storage::Load readText(OsFiles& files, int descriptor, std::string& text) {
    struct stat status {};
    if (OsFiles::resumed([&] { return files.status(descriptor, &status); }) != 0 || !S_ISREG(status.st_mode))
        return Storage::Load::Unreadable;
    std::string read;
    std::array<char, kReadBlockBytes> block{};
    for (;;) {
        const ssize_t count =
            OsFiles::resumed([&] { return files.read(descriptor, block.data(), block.size()); });
        if (count < 0) return Storage::Load::Unreadable;
        if (count == 0) break;
        read.append(block.data(), static_cast<std::size_t>(count));
        if (read.size() > Storage::kMaxTextBytes) return Storage::Load::TooLarge;
    }
    text = std::move(read);
    return Storage::Load::Done;
}

}  // namespace

Storage& Storage::machine() {
    static Storage storage(OsFiles::machine());
    return storage;
}

Storage::Load Storage::load(const std::string& path, std::string& text) const {
    const int flags = O_RDONLY | O_NONBLOCK | (ProductPaths::isUserData(path) ? O_NOFOLLOW : 0);
    const std::string place = ProductPaths::resolve(path);
    const int descriptor = OsFiles::resumed([&] { return files_.open(place.c_str(), flags, 0); });
    if (descriptor == -1) return isAbsence(errno) ? Load::Absent : Load::Unreadable;
    const Load result = readText(files_, descriptor, text);
    files_.close(descriptor);
    return result;
}

bool Storage::save(const std::string& path, std::string_view bytes, Ticket ticket) {
    const std::string place = ProductPaths::resolve(path);
    const std::lock_guard lock(mutex_);
    if (ticket < wiped_) return false;
    const auto written = written_.find(place);
    if (written != written_.end() && written->second > ticket) return true;
    if (!atomicSave(place, bytes, files_)) return false;
    written_[place] = ticket;
    return true;
}

void Storage::remove(const std::string& path) {
    const std::string place = ProductPaths::resolve(path);
    const std::lock_guard lock(mutex_);
    if (removeLocked(place) && !syncFolderOf(place, files_))
        TVK_THROW("Can't sync the folder of '%s'", place.c_str());
}

bool Storage::removeLocked(const std::string& place) {
    written_.erase(place);
    struct stat status {};
    const bool isGone =
        OsFiles::resumed([&] { return files_.pathStatus(place.c_str(), false, &status); }) != 0 &&
        isAbsence(errno);
    if (isGone) return false;
    Directory(files_).remove(place);
    return true;
}

void Storage::wipe(const std::vector<std::string>& files, const std::string& folder) {
    const std::lock_guard lock(mutex_);
    wiped_ = ticket();
    std::string deleted;
    for (const std::string& path : files)
        if (removeLocked(ProductPaths::resolve(path))) deleted = ProductPaths::resolve(path);
    const std::string place = ProductPaths::resolve(folder);
    const std::vector<std::string> names = listFolder(folder);
    for (const std::string& name : names)
        removeLocked(place + name);
    const bool isDurable =
        (deleted.empty() || syncFolderOf(deleted, files_)) && (names.empty() || syncFolderOf(place, files_));
    if (!isDurable) TVK_THROW("Can't sync the folders of what was deleted");
}

bool Storage::makeFolder(const std::string& path) {
    const std::string place = withoutLastSlash(ProductPaths::resolve(path));
    const std::lock_guard lock(mutex_);
    if (OsFiles::resumed([&] { return files_.makeDirectory(place.c_str(), kFolderMode); }) != 0)
        return errno == EEXIST;
    return syncFolderOf(place, files_);
}

bool Storage::isFile(const std::string& path) const {
    const std::string place = ProductPaths::resolve(path);
    const bool followLinks = !ProductPaths::isUserData(path);
    struct stat status {};
    return OsFiles::resumed([&] { return files_.pathStatus(place.c_str(), followLinks, &status); }) == 0 &&
           S_ISREG(status.st_mode);
}

std::vector<std::string> Storage::listFolder(const std::string& path) const {
    const std::string place = ProductPaths::resolve(path);
    std::vector<std::string> names;
    if (OsFiles::resumed([&] { return files_.list(place.c_str(), names); }) != 0) {
        if (isAbsence(errno)) return {};
        TVK_THROW("Can't open directory '%s': %s", place.c_str(),
                  std::generic_category().message(errno).c_str());
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace tvk
