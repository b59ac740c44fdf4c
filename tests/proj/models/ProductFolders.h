// The amplifier's two folders in a temporary one, and the log, for one test.
#pragma once

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "proj/models/Storage.h"
#include "support/LogRecorder.h"
#include "support/TemporaryFolder.h"
#include "utility/OsFiles.h"
#include "utility/ProductPaths.h"

// The machine's files, of which one can be told to fail.
class BreakableFiles : public tvk::OsFiles {
public:
    std::string unwritable;   // end of a path that cannot be opened for writing
    std::string undeletable;  // end of a path that cannot be deleted
    std::string unlistable;   // end of a folder's path

    int open(const char* path, int flags, mode_t mode) override {
        return breaks(path, flags & O_CREAT ? unwritable : std::string()) ? -1
                                                                          : OsFiles::open(path, flags, mode);
    }
    int unlink(const char* path) override { return breaks(path, undeletable) ? -1 : OsFiles::unlink(path); }
    int list(const char* path, std::vector<std::string>& names) override {
        return breaks(path, unlistable) ? -1 : OsFiles::list(path, names);
    }

private:
    static bool breaks(const std::string& path, const std::string& end) {
        errno = EIO;
        return !end.empty() && path.ends_with(end);
    }
};

class ProductFolders : public testing::Test {
protected:
    using Lines = std::vector<std::string>;

    ProductFolders() {
        std::filesystem::create_directories(folder.path() / "home/root");
        std::filesystem::create_directories(folder.path() / "mnt/user-data");
        tvk::ProductPaths::set(folder.file("home/root"), folder.file("mnt/user-data"));
    }
    ~ProductFolders() override {
        tvk::ProductPaths::set(tvk::ProductPaths::kHomeRoot, tvk::ProductPaths::kUserData);
    }

    // Paths are the amplifier's.
    static std::filesystem::path place(const std::string& path) { return tvk::ProductPaths::resolve(path); }
    static void write(const std::string& path, const std::string& text) {
        std::filesystem::create_directories(place(path).parent_path());
        std::ofstream(place(path), std::ios::binary) << text;
    }
    static std::string read(const std::string& path) {
        std::ifstream file(place(path), std::ios::binary);
        if (!file) return "(no file)";
        std::stringstream text;
        text << file.rdbuf();
        return text.str();
    }
    static bool exists(const std::string& path) { return std::filesystem::exists(place(path)); }

    Lines complaints() const { return log.complaints(); }

    TemporaryFolder folder;
    LogRecorder log;
    BreakableFiles files;
    tvk::Storage storage{files};
};
