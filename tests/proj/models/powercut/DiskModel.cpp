#include "DiskModel.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace {

bool isDeletion(const std::string& removed, const std::string& added) {
    return !removed.empty() && added.empty();
}

}  // namespace

DiskModel::DiskModel(DiskKind kind, const DiskContents& contents) : kind_(kind) {
    for (const auto& [path, content] : contents) {
        const auto node = std::make_shared<Node>();
        node->isFolder = path.ends_with('/');
        node->content = node->durable = content;
        names_[plain(path.c_str())] = node;
    }
    durableNames_ = names_;
}

void DiskModel::arm(const DiskFault& fault) {
    const std::lock_guard lock(mutex_);
    fault_ = fault;
    isArmed_ = true;
}

bool DiskModel::isArmed() const {
    const std::lock_guard lock(mutex_);
    return isArmed_;
}

std::vector<DiskCall> DiskModel::calls() const {
    const std::lock_guard lock(mutex_);
    return calls_;
}

std::string DiskModel::plain(const char* path) {
    std::string name = path;
    while (name.size() > 1 && name.back() == '/')
        name.pop_back();
    return name;
}

std::string DiskModel::folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
}

int DiskModel::fail(int error) {
    errno = error;
    return -1;
}

bool DiskModel::breaks(const char* name, std::size_t bytes, bool canFillTheDisk) {
    errno = EIO;
    if (isDead_) return true;
    if (!isArmed_) return false;
    ++lastCall_;
    calls_.push_back({name, bytes, canFillTheDisk});
    if (isCallOf(DiskFault::Kind::Dies)) isDead_ = true;
    if (isCallOf(DiskFault::Kind::FillsUp)) isFull_ = true;
    if (isDead_) return true;
    const bool fails = isCallOf(DiskFault::Kind::Fails);
    if (fails) errno = fault_.error;
    const bool takesSome = isCallOf(DiskFault::Kind::FillsUp) && fault_.bytes > 0;
    if (isFull_ && canFillTheDisk && !takesSome) {
        errno = ENOSPC;
        return true;
    }
    return fails;
}

void DiskModel::apply(const NameChange& change, Names& names) {
    if (!change.removed.empty()) names.erase(change.removed);
    if (!change.added.empty()) names[change.added] = change.node;
}

void DiskModel::change(NameChange change) {
    apply(change, names_);
    pending_.push_back(std::move(change));
}

void DiskModel::makeDurable(bool (*isDue)(const NameChange&, const std::string&), const std::string& path) {
    std::vector<NameChange> left;
    for (const NameChange& change : pending_) {
        if (isDue(change, path))
            apply(change, durableNames_);
        else
            left.push_back(change);
    }
    pending_ = std::move(left);
}

int DiskModel::open(const char* path, int flags, mode_t) {
    const std::lock_guard lock(mutex_);
    const std::string name = plain(path);
    const auto found = names_.find(name);
    const bool creates = (flags & O_CREAT) != 0 && found == names_.end();
    if (breaks("open", 0, creates)) return -1;
    if (found == names_.end() && !creates) return fail(ENOENT);
    if (creates) {
        const auto folder = names_.find(folderOf(name));
        if (folder == names_.end() || !folder->second->isFolder) return fail(ENOENT);
        change({"", name, std::make_shared<Node>()});
    }
    const NodePointer node = names_.at(name);
    if (node->isFolder && (flags & O_ACCMODE) != O_RDONLY) return fail(EISDIR);
    if (flags & O_TRUNC) node->content.clear();
    descriptors_[nextDescriptor_] = {node, name, 0};
    return nextDescriptor_++;
}

ssize_t DiskModel::read(int descriptor, void* bytes, std::size_t count) {
    const std::lock_guard lock(mutex_);
    if (breaks("read")) return -1;
    Descriptor& file = descriptors_.at(descriptor);
    const std::size_t taken = std::min(count, file.node->content.size() - file.position);
    std::memcpy(bytes, file.node->content.data() + file.position, taken);
    file.position += taken;
    return static_cast<ssize_t>(taken);
}

ssize_t DiskModel::write(int descriptor, const void* bytes, std::size_t count) {
    const std::lock_guard lock(mutex_);
    if (breaks("write", count, true)) return -1;
    const bool isCut = isCallOf(DiskFault::Kind::Tears) || isCallOf(DiskFault::Kind::FillsUp);
    const std::size_t taken = isCut ? std::min(count, fault_.bytes) : count;
    Descriptor& file = descriptors_.at(descriptor);
    file.node->content.resize(std::max(file.node->content.size(), file.position + taken));
    file.node->content.replace(file.position, taken, static_cast<const char*>(bytes), taken);
    file.position += taken;
    if (!isCallOf(DiskFault::Kind::Tears)) return static_cast<ssize_t>(taken);
    isDead_ = true;
    return fail(EIO);
}

int DiskModel::sync(int descriptor) {
    const std::lock_guard lock(mutex_);
    if (breaks("sync", 0, true)) return -1;
    const Descriptor& file = descriptors_.at(descriptor);
    file.node->durable = file.node->content;
    const bool byFolder = kind_ == DiskKind::NamesByFolder;
    if (file.node->isFolder && byFolder)
        makeDurable(
            [](const NameChange& c, const std::string& path) {
                return folderOf(c.added.empty() ? c.removed : c.added) == path;
            },
            file.path);
    else if (file.node->isFolder)
        makeDurable(
            [](const NameChange& c, const std::string& path) {
                const bool isOfFolders = c.node && c.node->isFolder;
                return folderOf(c.added.empty() ? c.removed : c.added) == path &&
                       (isDeletion(c.removed, c.added) || isOfFolders);
            },
            file.path);
    else if (!byFolder)
        makeDurable(
            [](const NameChange& c, const std::string& path) { return c.added == path || c.removed == path; },
            file.path);
    return 0;
}

int DiskModel::close(int descriptor) {
    const std::lock_guard lock(mutex_);
    const bool broken = breaks("close");
    descriptors_.erase(descriptor);
    return broken ? -1 : 0;
}

int DiskModel::rename(const char* from, const char* to) {
    const std::lock_guard lock(mutex_);
    if (breaks("rename", 0, true)) return -1;
    const auto found = names_.find(plain(from));
    if (found == names_.end()) return fail(ENOENT);
    change({plain(from), plain(to), found->second});
    return 0;
}

int DiskModel::unlink(const char* path) {
    const std::lock_guard lock(mutex_);
    if (breaks("unlink")) return -1;
    const auto found = names_.find(plain(path));
    if (found == names_.end()) return fail(ENOENT);
    if (found->second->isFolder) return fail(EISDIR);
    change({plain(path), "", nullptr});
    isFull_ = false;
    return 0;
}

void DiskModel::fill(const Node& node, struct stat* result) {
    *result = {};
    result->st_mode = (node.isFolder ? S_IFDIR : S_IFREG) | 0644;
    result->st_size = static_cast<off_t>(node.content.size());
}

int DiskModel::status(int descriptor, struct stat* result) {
    const std::lock_guard lock(mutex_);
    if (breaks("status")) return -1;
    fill(*descriptors_.at(descriptor).node, result);
    return 0;
}

int DiskModel::pathStatus(const char* path, bool, struct stat* result) {
    const std::lock_guard lock(mutex_);
    if (breaks("pathStatus")) return -1;
    const auto found = names_.find(plain(path));
    if (found == names_.end()) return fail(ENOENT);
    fill(*found->second, result);
    return 0;
}

int DiskModel::makeDirectory(const char* path, mode_t) {
    const std::lock_guard lock(mutex_);
    const std::string name = plain(path);
    const bool isThere = names_.contains(name);
    if (breaks("makeDirectory", 0, !isThere)) return -1;
    if (isThere) return fail(EEXIST);
    const auto folder = std::make_shared<Node>();
    folder->isFolder = true;
    change({"", name, folder});
    return 0;
}

int DiskModel::removeDirectory(const char* path) {
    const std::lock_guard lock(mutex_);
    if (breaks("removeDirectory")) return -1;
    change({plain(path), "", nullptr});
    return 0;
}

int DiskModel::list(const char* path, std::vector<std::string>& names) {
    const std::lock_guard lock(mutex_);
    if (breaks("list")) return -1;
    const std::string folder = plain(path);
    if (!names_.contains(folder)) return fail(ENOENT);
    names.clear();
    for (const auto& [name, node] : names_)
        if (folderOf(name) == folder && name != folder) names.push_back(name.substr(name.rfind('/') + 1));
    return 0;
}

DiskContents DiskModel::contentsOf(const Names& names, bool withUnsynced) {
    DiskContents contents;
    for (const auto& [name, node] : names)
        if (node->isFolder || names.contains(folderOf(name)))
            contents[node->isFolder ? name + "/" : name] = withUnsynced ? node->content : node->durable;
    return contents;
}

DiskContents DiskModel::seen() const {
    const std::lock_guard lock(mutex_);
    return contentsOf(names_, true);
}

DiskContents DiskModel::durable() const {
    const std::lock_guard lock(mutex_);
    return contentsOf(durableNames_, false);
}

std::vector<DiskContents> DiskModel::leftovers() const {
    const std::lock_guard lock(mutex_);
    std::vector<DiskContents> disks;
    for (const bool withUnsynced : {false, true}) {
        Names names = durableNames_;
        disks.push_back(contentsOf(names, withUnsynced));
        for (const NameChange& change : pending_) {
            apply(change, names);
            disks.push_back(contentsOf(names, withUnsynced));
        }
    }
    return disks;
}
