#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "support/LogRecorder.h"
#include "support/TemporaryFolder.h"
#include "utility/TarvekFileSystem.h"

namespace {

// Writes down every call on a path, and fails the n-th of a kind.
class WatchedFiles : public tvk::OsFiles {
public:
    std::vector<std::string> calls;
    std::string failing;  // as it stands in calls, such as "sync a.tmp"

    int open(const char* path, int flags, mode_t mode) override {
        const std::string kind = (flags & O_TRUNC) ? "truncate " : (flags & O_APPEND) ? "append " : "open ";
        if (fails(kind + nameOf(path))) return -1;
        const int descriptor = OsFiles::open(path, flags, mode);
        paths_[descriptor] = nameOf(path);
        return descriptor;
    }
    ssize_t write(int descriptor, const void* bytes, std::size_t count) override {
        if (fails("write " + paths_[descriptor])) return -1;
        return OsFiles::write(descriptor, bytes, count > 3 ? count / 2 : count);  // the kernel may write less
    }
    int sync(int descriptor) override {
        return fails("sync " + paths_[descriptor]) ? -1 : OsFiles::sync(descriptor);
    }
    int close(int descriptor) override {
        const bool broken = fails("close " + paths_[descriptor]);
        const int result = OsFiles::close(descriptor);
        return broken ? -1 : result;
    }
    int rename(const char* from, const char* to) override {
        return fails("rename " + nameOf(from) + " " + nameOf(to)) ? -1 : OsFiles::rename(from, to);
    }
    int unlink(const char* path) override {
        return fails("unlink " + nameOf(path)) ? -1 : OsFiles::unlink(path);
    }

private:
    static std::string nameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }
    bool fails(const std::string& call) {
        if (calls.empty() || calls.back() != call) calls.push_back(call);
        errno = EIO;
        return call == failing;
    }
    std::map<int, std::string> paths_;
};

class TarvekFileSystemTest : public testing::Test {
protected:
    std::string content(const std::string& name) {
        std::string text = "(no file)";
        TarvekFileSystem plain;
        if (plain.exists(folder.file(name))) plain.loadFile(folder.file(name), text);
        return text;
    }
    // Breaks one call of an atomic save over an existing file and returns what the log says.
    std::vector<std::string> warningsWhenFailing(const std::string& call) {
        TarvekFileSystem().saveFile(path, "old");
        files.failing = call;
        files.calls.clear();
        log.clear();
        EXPECT_FALSE(fileSystem.saveFileAtomic(path, "new text"));
        return log.lines();
    }

    TemporaryFolder folder;
    LogRecorder log;
    WatchedFiles files;
    TarvekFileSystem fileSystem{files};
    const std::string path = folder.file("a");
    const std::string folderName = folder.path().filename().string();
};

using Lines = std::vector<std::string>;

TEST_F(TarvekFileSystemTest, AnAtomicSaveSyncsTheTextBeforeTheNamePointsAtItAndTheNameAfterwards) {
    EXPECT_TRUE(fileSystem.saveFileAtomic(path, "new text"));
    EXPECT_EQ(files.calls, (Lines{"truncate a.tmp", "write a.tmp", "close a.tmp", "open a.tmp", "sync a.tmp",
                                  "close a.tmp", "rename a.tmp a", "open a", "sync a", "close a",
                                  "open " + folderName, "sync " + folderName, "close " + folderName}));
    EXPECT_EQ(content("a"), "new text");
    EXPECT_EQ(content("a.tmp"), "(no file)");
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(TarvekFileSystemTest, AnAtomicSaveTruncatesWhatALossOfPowerLeft) {
    TarvekFileSystem().saveFile(path, "old");
    TarvekFileSystem().saveFile(path + ".tmp", std::string(5000, 'x'));
    EXPECT_TRUE(fileSystem.saveFileAtomic(path, "new text"));
    EXPECT_EQ(content("a"), "new text");
    EXPECT_EQ(content("a.tmp"), "(no file)");
}

TEST_F(TarvekFileSystemTest, UntilTheRenameEveryCallLeavesTheOldFileWhole) {
    // A loss of power is the end of all calls: what the file holds at each of them is what would be left.
    class Observer : public WatchedFiles {
    public:
        explicit Observer(std::string file) : file_(std::move(file)) {}
        int sync(int descriptor) override {
            note();
            return WatchedFiles::sync(descriptor);
        }
        int rename(const char* from, const char* to) override {
            note();
            const int result = WatchedFiles::rename(from, to);
            note();
            return result;
        }
        Lines seen;

    private:
        void note() {
            std::string text;
            TarvekFileSystem().loadFile(file_, text);
            seen.push_back(text);
        }
        const std::string file_;
    };
    TarvekFileSystem().saveFile(path, "old");
    Observer observer(path);
    EXPECT_TRUE(TarvekFileSystem(observer).saveFileAtomic(path, "new text"));
    EXPECT_EQ(observer.seen, (Lines{"old", "old", "new text", "new text", "new text"}));
}

TEST_F(TarvekFileSystemTest, AFailureToOpenTheTemporaryStopsTheSave) {
    EXPECT_EQ(warningsWhenFailing("truncate a.tmp"), Lines{"Warn Failed to open file \"" + path + ".tmp\"."});
    EXPECT_EQ(content("a"), "old");
}

TEST_F(TarvekFileSystemTest, AFailureToWriteTheTemporaryStopsTheSave) {
    EXPECT_EQ(warningsWhenFailing("write a.tmp"), Lines{"Warn Failed to write file \"" + path + ".tmp\"."});
    EXPECT_EQ(content("a"), "old");
    EXPECT_EQ(content("a.tmp"), "(no file)");
}

TEST_F(TarvekFileSystemTest, AFailureToReopenTheTemporaryStopsTheSave) {
    EXPECT_EQ(warningsWhenFailing("open a.tmp"), Lines{"Warn Failed to open file " + path + ".tmp."});
    EXPECT_EQ(content("a"), "old");
}

TEST_F(TarvekFileSystemTest, AFailureToSyncTheTemporaryStopsTheSave) {
    EXPECT_EQ(warningsWhenFailing("sync a.tmp"), Lines{"Warn Failed to sync file " + path + ".tmp."});
    EXPECT_EQ(content("a"), "old");
    EXPECT_EQ(content("a.tmp"), "(no file)");
}

TEST_F(TarvekFileSystemTest, AFailureToRenameLeavesTheOldFile) {
    EXPECT_EQ(warningsWhenFailing("rename a.tmp a"),
              Lines{"Warn Failed to rename file from \"" + path + ".tmp\" to \"" + path + "\"."});
    EXPECT_EQ(content("a"), "old");
    EXPECT_EQ(content("a.tmp"), "(no file)");
}

TEST_F(TarvekFileSystemTest, AFailureAfterTheRenameIsReportedWithTheNewTextInPlace) {
    EXPECT_EQ(warningsWhenFailing("open a"), Lines{"Warn Failed to open file " + path + "."});
    EXPECT_EQ(content("a"), "new text");
    EXPECT_EQ(warningsWhenFailing("sync a"), Lines{"Warn Failed to sync file " + path + "."});
    EXPECT_EQ(content("a"), "new text");
    const std::string where = folder.path().string();
    EXPECT_EQ(warningsWhenFailing("open " + folderName), Lines{"Warn Failed to open file " + where + "."});
    EXPECT_EQ(warningsWhenFailing("sync " + folderName), Lines{"Warn Failed to sync file " + where + "."});
    EXPECT_EQ(content("a"), "new text");
}

TEST_F(TarvekFileSystemTest, AnAtomicSaveFollowsNoLinkAndTheNextOneHasItsPlaceBack) {
    TarvekFileSystem().saveFile(folder.file("elsewhere"), "kept");
    std::filesystem::create_symlink(folder.file("elsewhere"), path + ".tmp");
    EXPECT_FALSE(fileSystem.saveFileAtomic(path, "new text"));
    EXPECT_EQ(content("elsewhere"), "kept");
    EXPECT_TRUE(fileSystem.saveFileAtomic(path, "new text"));
    EXPECT_EQ(content("elsewhere"), "kept");
    EXPECT_EQ(content("a"), "new text");
}

// Interrupts every kind of call the first time that it is made on a file.
class InterruptedFiles : public WatchedFiles {
public:
    int open(const char* path, int flags, mode_t mode) override {
        return interrupts("open ", path) ? -1 : OsFiles::open(path, flags, mode);
    }
    ssize_t write(int descriptor, const void* bytes, std::size_t count) override {
        return interrupts("write ", std::to_string(descriptor)) ? -1
                                                                : OsFiles::write(descriptor, bytes, count);
    }
    int sync(int descriptor) override {
        return interrupts("sync ", std::to_string(descriptor)) ? -1 : OsFiles::sync(descriptor);
    }
    int close(int descriptor) override {
        OsFiles::close(descriptor);
        return interrupts("close ", std::to_string(descriptor)) ? -1 : 0;
    }
    int rename(const char* from, const char* to) override {
        return interrupts("rename ", from) ? -1 : OsFiles::rename(from, to);
    }

    std::set<std::string> interrupted;

private:
    bool interrupts(const std::string& kind, const std::string& on) {
        errno = EINTR;
        return interrupted.insert(kind + on).second;
    }
};

TEST_F(TarvekFileSystemTest, ASignalInAnyCallOfAnAtomicSaveIsNoFailure) {
    InterruptedFiles interrupting;
    EXPECT_TRUE(TarvekFileSystem(interrupting).saveFileAtomic(path, "new text"));
    EXPECT_EQ(content("a"), "new text");
    EXPECT_GE(interrupting.interrupted.size(), 7u);
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(TarvekFileSystemTest, TextAndBytesComeBackAsTheyWereSaved) {
    const std::vector<std::uint8_t> bytes{0, 255, 10, 0, 128};
    EXPECT_TRUE(fileSystem.saveFile(path, bytes));
    std::vector<std::uint8_t> loaded;
    EXPECT_TRUE(fileSystem.loadFile(path, loaded));
    EXPECT_EQ(loaded, bytes);
    const std::string text(100000, 'y');
    EXPECT_TRUE(fileSystem.saveFile(path, text));
    EXPECT_EQ(content("a"), text);
    EXPECT_TRUE(fileSystem.exists(path));
    EXPECT_FALSE(fileSystem.exists(path + "b"));
}

TEST_F(TarvekFileSystemTest, AFailedSaveWarnsWithThePath) {
    const std::string below = folder.file("missing/a");
    EXPECT_FALSE(fileSystem.saveFile(below, std::string("text")));
    EXPECT_FALSE(fileSystem.saveFile(below, std::vector<std::uint8_t>{1}));
    const std::string warning = "Warn TarvekFileSystem::saveFile unable to open file " + below;
    EXPECT_EQ(log.lines(), (Lines{warning, warning}));
}

TEST_F(TarvekFileSystemTest, AFailedLoadLeavesTheResultUntouched) {
    std::string text = "before";
    EXPECT_FALSE(fileSystem.loadFile(folder.file("missing"), text));
    EXPECT_EQ(text, "before");
    EXPECT_FALSE(fileSystem.loadFile(folder.path().string(), text)) << "a folder can be opened but not read";
    EXPECT_EQ(text, "before");
}

TEST_F(TarvekFileSystemTest, LogDataAppendsAndWarnsWhenItCannot) {
    EXPECT_TRUE(fileSystem.logData(path, "one\n"));
    EXPECT_TRUE(fileSystem.logData(path, "two\n"));
    EXPECT_EQ(content("a"), "one\ntwo\n");
    const std::string below = folder.file("missing/a");
    EXPECT_FALSE(fileSystem.logData(below, "x"));
    EXPECT_EQ(log.lines(), Lines{"Warn TarvekFileSystem::logData unable to open file " + below});
}

TEST_F(TarvekFileSystemTest, PresetsOnACardLoadAndSaveAndSayWhyWhenTheyCannot) {
    std::string text;
    EXPECT_FALSE(fileSystem.loadPreset(path, text));
    EXPECT_EQ(log.lines(), (Lines{"Warn Unable to open preset file from SD card " + path,
                                  "Warn Error No such file or directory opening file " + path}));
    EXPECT_TRUE(fileSystem.savePreset(path, "{}"));
    EXPECT_TRUE(fileSystem.loadPreset(path, text));
    EXPECT_EQ(text, "{}");
    log.clear();
    const std::string below = folder.file("missing/a");
    EXPECT_FALSE(fileSystem.savePreset(below, "{}"));
    EXPECT_EQ(log.lines(), Lines{"Warn Error No such file or directory opening file " + below});
}

TEST_F(TarvekFileSystemTest, MissingSettingsBecomeTheDefaultsOnDiskAndInMemory) {
    std::string text;
    EXPECT_TRUE(fileSystem.loadSettings(path, "{\"a\":1}", text));
    EXPECT_EQ(text, "{\"a\":1}");
    EXPECT_EQ(content("a"), "{\"a\":1}");
    EXPECT_EQ(log.lines(), Lines{"Warn problem reading settings, No such file or directory"});

    log.clear();
    EXPECT_TRUE(fileSystem.loadSettings(path, "{}", text));
    EXPECT_EQ(text, "{\"a\":1}") << "what is on disk wins";
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(TarvekFileSystemTest, SettingsThatCanBeNeitherReadNorWrittenAreTheDefaultsWithAWarning) {
    std::string text;
    const std::string below = folder.file("missing/a");
    EXPECT_FALSE(fileSystem.loadSettings(below, "{}", text));
    EXPECT_EQ(text, "{}");
    EXPECT_TRUE(log.has("Warn problem setting default settings, " + below));
}

}  // namespace
