// A disk that can lose its power: what the program sees of a file, and what would be left of it, are two
// things.
//
// Contents become durable when the file is synced. Names, that is files that were created, renamed, deleted,
// and folders that were made, become durable in the order in which they were given: on one kind of disk when
// their folder is synced, on the other when the file is synced that has the name. After a loss of power any
// part of what was not durable may be left: contents all or nothing, and of the names any number, from the
// first.
//
// Any thread.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "utility/OsFiles.h"

// Contents by path; folders end in "/" and hold nothing.
using DiskContents = std::map<std::string, std::string>;

enum class DiskKind {
    NamesByFolder,  // as POSIX has it
    NamesByFile  // the flash file system: a file's name is durable with the file; deletions with the folder
};

// What happens to one of the calls.
struct DiskFault {
    enum class Kind {
        None,
        Dies,     // the machine ends before the call
        Tears,    // it ends within the write, after `bytes`
        Fails,    // the call fails with `error`
        FillsUp,  // the disk is full from here on, a write takes `bytes` yet; until something is deleted
    };
    Kind kind = Kind::None;
    long call = -1;  // counted from 0 from arm on
    std::size_t bytes = 0;
    int error = 0;
};

// One call that was made.
struct DiskCall {
    std::string name;
    std::size_t bytes = 0;  // of a write
    bool canFillTheDisk = false;
};

class DiskModel final : public tvk::OsFiles {
public:
    DiskModel(DiskKind kind, const DiskContents& contents);

    // Counts the calls from here on, and has the fault happen.
    void arm(const DiskFault& fault);
    bool isArmed() const;
    std::vector<DiskCall> calls() const;

    // Everything as the program sees it.
    DiskContents seen() const;

    // Every disk that could be left if the power went now, or when the machine ended. The last is `seen`,
    // which a process that was killed leaves.
    std::vector<DiskContents> leftovers() const;

    // What is left if nothing is left of what was not durable.
    DiskContents durable() const;

    int open(const char* path, int flags, mode_t mode) override;
    ssize_t read(int descriptor, void* bytes, std::size_t count) override;
    ssize_t write(int descriptor, const void* bytes, std::size_t count) override;
    int sync(int descriptor) override;
    int close(int descriptor) override;
    int rename(const char* from, const char* to) override;
    int unlink(const char* path) override;
    int status(int descriptor, struct stat* result) override;
    int pathStatus(const char* path, bool followLinks, struct stat* result) override;
    int makeDirectory(const char* path, mode_t mode) override;
    int removeDirectory(const char* path) override;
    int list(const char* path, std::vector<std::string>& names) override;

private:
    struct Node {
        bool isFolder = false;
        std::string content;  // as seen
        std::string durable;
    };
    using NodePointer = std::shared_ptr<Node>;
    using Names = std::map<std::string, NodePointer>;

    // A change of names that is not durable yet.
    struct NameChange {
        std::string removed;  // path, or empty
        std::string added;    // path, or empty
        NodePointer node;     // behind it
    };

    struct Descriptor {
        NodePointer node;
        std::string path;
        std::size_t position = 0;
    };

    static std::string plain(const char* path);
    static std::string folderOf(const std::string& path);
    static void apply(const NameChange& change, Names& names);
    static DiskContents contentsOf(const Names& names, bool withUnsynced);
    static int fail(int error);
    static void fill(const Node& node, struct stat* result);

    // Under the mutex: true, with errno set, when the call is not to be made.
    bool breaks(const char* name, std::size_t bytes = 0, bool canFillTheDisk = false);
    bool isCallOf(DiskFault::Kind kind) const { return fault_.kind == kind && lastCall_ == fault_.call; }
    void change(NameChange change);
    void makeDurable(bool (*isDue)(const NameChange&, const std::string&), const std::string& path);

    mutable std::mutex mutex_;
    const DiskKind kind_;
    Names names_;  // as seen
    Names durableNames_;
    std::vector<NameChange> pending_;
    std::map<int, Descriptor> descriptors_;
    int nextDescriptor_ = 100;

    DiskFault fault_;
    bool isArmed_ = false;
    bool isDead_ = false;
    bool isFull_ = false;
    long lastCall_ = -1;
    std::vector<DiskCall> calls_;
};
