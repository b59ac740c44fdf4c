// Ways in which a save could be wrong, each a layer between the models and the disk: what the check of power
// cuts has to find.
#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "DiskModel.h"

// Hands every call on to the disk.
class PassingOn : public tvk::OsFiles {
public:
    explicit PassingOn(DiskModel& disk) : disk_(disk) {}

    int open(const char* path, int flags, mode_t mode) override { return disk_.open(path, flags, mode); }
    ssize_t read(int descriptor, void* bytes, std::size_t count) override {
        return disk_.read(descriptor, bytes, count);
    }
    ssize_t write(int descriptor, const void* bytes, std::size_t count) override {
        return disk_.write(descriptor, bytes, count);
    }
    int sync(int descriptor) override { return disk_.sync(descriptor); }
    int close(int descriptor) override { return disk_.close(descriptor); }
    int rename(const char* from, const char* to) override { return disk_.rename(from, to); }
    int unlink(const char* path) override { return disk_.unlink(path); }
    int status(int descriptor, struct stat* result) override { return disk_.status(descriptor, result); }
    int pathStatus(const char* path, bool followLinks, struct stat* result) override {
        return disk_.pathStatus(path, followLinks, result);
    }
    int makeDirectory(const char* path, mode_t mode) override { return disk_.makeDirectory(path, mode); }
    int removeDirectory(const char* path) override { return disk_.removeDirectory(path); }
    int list(const char* path, std::vector<std::string>& names) override { return disk_.list(path, names); }

protected:
    DiskModel& disk_;
};

// One of the syncs, counted from 0 while the disk counts its calls, is left out.
class LeavesOutASync final : public PassingOn {
public:
    LeavesOutASync(DiskModel& disk, long which) : PassingOn(disk), which_(which) {}

    int sync(int descriptor) override {
        if (disk_.isArmed() && next_.fetch_add(1) == which_) return 0;
        return disk_.sync(descriptor);
    }

private:
    const long which_;
    std::atomic<long> next_{0};
};

// A file takes its final name as soon as it is written, before it is synced.
class RenamesFirst final : public PassingOn {
public:
    using PassingOn::PassingOn;

    int open(const char* path, int flags, mode_t mode) override {
        const bool isWritten = (flags & O_ACCMODE) != O_RDONLY;
        if (isWritten || !isTemporary(path)) {
            const int descriptor = disk_.open(path, flags, mode);
            const std::lock_guard lock(mutex_);
            if (isWritten && isTemporary(path)) written_[descriptor] = path;
            return descriptor;
        }
        return disk_.open(finalName(path).c_str(), flags, mode);
    }
    int close(int descriptor) override {
        const int result = disk_.close(descriptor);
        std::string path;
        {
            const std::lock_guard lock(mutex_);
            const auto found = written_.find(descriptor);
            if (found == written_.end()) return result;
            path = found->second;
            written_.erase(found);
        }
        return result == 0 ? disk_.rename(path.c_str(), finalName(path).c_str()) : result;
    }
    int rename(const char*, const char*) override { return 0; }

private:
    static bool isTemporary(const std::string& path) { return path.ends_with(".tmp"); }
    static std::string finalName(const std::string& path) { return path.substr(0, path.size() - 4); }

    std::mutex mutex_;
    std::map<int, std::string> written_;  // by descriptor, the temporaries that are open
};

// Nothing takes a temporary's place: the final file is written over as it lies there.
class WritesInPlace final : public PassingOn {
public:
    using PassingOn::PassingOn;

    int open(const char* path, int flags, mode_t mode) override {
        return disk_.open(finalName(path).c_str(), flags, mode);
    }
    int rename(const char*, const char*) override { return 0; }

private:
    static std::string finalName(const std::string& path) {
        return path.ends_with(".tmp") ? path.substr(0, path.size() - 4) : path;
    }
};

// Builds what lies between the models and the disk of one run.
using Layer = std::function<std::unique_ptr<tvk::OsFiles>(DiskModel&)>;
