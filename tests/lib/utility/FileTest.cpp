#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

#include "support/LogRecorder.h"
#include "support/TemporaryFolder.h"
#include "utility/Directory.h"
#include "utility/Exception.h"
#include "utility/File.h"

namespace {

using tvk::File;

template <typename Action>
std::string textThrownBy(Action action) {
    try {
        action();
    } catch (const tvk::Exception& e) {
        return e.what();
    }
    return "nothing thrown";
}

std::string contentOf(const std::string& path) {
    std::ifstream stream(path);
    std::stringstream text;
    text << stream.rdbuf();
    return text.str();
}

class FileTest : public testing::Test {
protected:
    TemporaryFolder folder;
    LogRecorder log;
};

TEST_F(FileTest, AnEmptyPathThrows) {
    EXPECT_EQ(textThrownBy([] { File("", File::IoMode::Read); }),
              "FileImpl::FileImpl() pathName parameter is empty");
}

TEST_F(FileTest, AnUnknownModeThrows) {
    EXPECT_EQ(textThrownBy([&] { File(folder.file("a"), static_cast<File::IoMode>(7)); }),
              "FileImpl::FileImpl() ioMode parameter has unknown value");
}

TEST_F(FileTest, AMissingFileThrowsWithItsNameItsModeAndTheReason) {
    const std::string path = folder.file("missing");
    EXPECT_EQ(textThrownBy([&] { File(path, File::IoMode::Read); }),
              "Can't open file '" + path + "' (using mode r+): No such file or directory");
    const std::string below = folder.file("missing/deeper");
    EXPECT_EQ(textThrownBy([&] { File(below, File::IoMode::Write); }),
              "Can't open file '" + below + "' (using mode w+): No such file or directory");
    EXPECT_EQ(textThrownBy([&] { File(below, File::IoMode::Append); }),
              "Can't open file '" + below + "' (using mode a+): No such file or directory");
}

TEST_F(FileTest, WriteEmptiesAppendKeepsAndReadGivesLinesWithoutTheirEnds) {
    const std::string path = folder.file("text");
    File(path, File::IoMode::Write).write("gone\n");
    File(path, File::IoMode::Write).write("one\n");
    File(path, File::IoMode::Append).write("\ntwo");
    File file(path, File::IoMode::Read);
    std::string line;
    EXPECT_TRUE(file.readLine(line));
    EXPECT_EQ(line, "one");
    EXPECT_TRUE(file.readLine(line));
    EXPECT_EQ(line, "");
    EXPECT_TRUE(file.readLine(line));
    EXPECT_EQ(line, "two");
    EXPECT_FALSE(file.readLine(line));
}

TEST_F(FileTest, FlushedTextIsInTheFileWhileItIsOpen) {
    const std::string path = folder.file("text");
    File file(path, File::IoMode::Write);
    file.write("here");
    file.flush();
    EXPECT_EQ(contentOf(path), "here");
}

// /dev/full takes no byte: a small write fails when it is flushed, one larger than any buffer at once.
TEST_F(FileTest, AFullDeviceFailsTheFlush) {
    EXPECT_EQ(textThrownBy([] {
                  File file("/dev/full", File::IoMode::Append);
                  file.write("x");
                  file.flush();
              }),
              "Can't flush to file '/dev/full': No space left on device");
}

TEST_F(FileTest, AFullDeviceFailsALargeWrite) {
    EXPECT_EQ(textThrownBy([] {
                  File file("/dev/full", File::IoMode::Append);
                  file.write(std::string(1 << 20, 'x'));
              }),
              "Can't write to file '/dev/full': No space left on device");
}

TEST_F(FileTest, AFailedCloseIsAWarning) {
    {
        File file("/dev/full", File::IoMode::Append);
        file.write("x");
    }
    EXPECT_EQ(log.lines(), std::vector<std::string>{"Warn Can't close file '/dev/full'"});
}

// Address 0 of a process is never mapped, so that reading it is an input error.
TEST_F(FileTest, AnInputErrorFailsReadLine) {
    EXPECT_EQ(textThrownBy([] {
                  File file("/proc/self/mem", File::IoMode::Read);
                  std::string line;
                  file.readLine(line);
              }),
              "Can't read line from file '/proc/self/mem': Input/output error");
}

TEST_F(FileTest, AListingLeavesOutTheFolderItselfAndItsParent) {
    File(folder.file("b"), File::IoMode::Write);
    File(folder.file("a"), File::IoMode::Write);
    File(folder.file(".hidden"), File::IoMode::Write);
    EXPECT_EQ(tvk::Directory().listFiles(folder.path()), (std::vector<std::string>{".hidden", "a", "b"}));
}

TEST_F(FileTest, AnEmptyFolderListsNothing) {
    EXPECT_TRUE(tvk::Directory().listFiles(folder.path()).empty());
}

TEST_F(FileTest, AMissingFolderCannotBeListed) {
    const std::string path = folder.file("missing");
    EXPECT_EQ(textThrownBy([&] { tvk::Directory().listFiles(path); }),
              "Can't open directory '" + path + "': No such file or directory");
}

TEST_F(FileTest, RemoveRemovesAndThrowsForWhatIsNotThere) {
    const std::string path = folder.file("a");
    File(path, File::IoMode::Write);
    const tvk::Directory directory;
    EXPECT_TRUE(directory.exists(path));
    directory.remove(path);
    EXPECT_FALSE(directory.exists(path));
    EXPECT_EQ(textThrownBy([&] { directory.remove(path); }),
              "Error deleting file '" + path + "': No such file or directory");
}

TEST_F(FileTest, AnEmptyFolderIsRemovedAndAFullOneIsNot) {
    const tvk::Directory directory;
    const std::string empty = folder.file("empty");
    const std::string full = folder.file("full");
    std::filesystem::create_directory(empty);
    std::filesystem::create_directory(full);
    File(full + "/a", File::IoMode::Write);
    directory.remove(empty);
    EXPECT_FALSE(directory.exists(empty));
    EXPECT_EQ(textThrownBy([&] { directory.remove(full); }),
              "Error deleting file '" + full + "': Directory not empty");
}

TEST_F(FileTest, ACopyHasTheSourcesBytesAndPermissions) {
    const std::string source = folder.file("a");
    const std::string target = folder.file("b");
    std::string text;
    for (int i = 0; i < 50000; ++i)
        text += static_cast<char>(i * 7);
    File(source, File::IoMode::Write).write(text);
    std::filesystem::permissions(source,
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    File(target, File::IoMode::Write).write(std::string(100000, 'x'));
    tvk::Directory().copy(source, target);
    EXPECT_EQ(contentOf(target), text);
    const std::string fresh = folder.file("c");
    tvk::Directory().copy(source, fresh);
    EXPECT_EQ(std::filesystem::status(fresh).permissions(), std::filesystem::status(source).permissions());
}

// Fails one of the calls that a copy makes.
class BrokenFiles : public tvk::OsFiles {
public:
    int opensUntilFailure = 1000;
    bool statusFails = false;
    bool writeFails = false;

    int open(const char* path, int flags, mode_t mode) override {
        if (--opensUntilFailure < 0) return fail(EACCES);
        return OsFiles::open(path, flags, mode);
    }
    int status(int descriptor, struct stat* result) override {
        return statusFails ? fail(EIO) : OsFiles::status(descriptor, result);
    }
    ssize_t write(int descriptor, const void* bytes, std::size_t count) override {
        return writeFails ? fail(ENOSPC) : OsFiles::write(descriptor, bytes, count);
    }

private:
    static int fail(int error) {
        errno = error;
        return -1;
    }
};

TEST_F(FileTest, EveryStepOfACopyFailsInItsOwnWords) {
    const std::string source = folder.file("a");
    const std::string target = folder.file("b");
    const auto copyWith = [&](BrokenFiles files) {
        return textThrownBy([&] { tvk::Directory(files).copy(source, target); });
    };
    EXPECT_EQ(copyWith({}), "file '" + source + "' doesn't exist");

    File(source, File::IoMode::Write).write("text");
    BrokenFiles files;
    files.opensUntilFailure = 0;
    EXPECT_EQ(copyWith(files), "Can't open file '" + source + "': Permission denied");
    files = {};
    files.statusFails = true;
    EXPECT_EQ(copyWith(files), "Can't stat file '" + source + "': Input/output error");
    files = {};
    files.opensUntilFailure = 1;
    EXPECT_EQ(copyWith(files), "Can't open/create/truncate file '" + target + "': Permission denied");
    files = {};
    files.writeFails = true;
    EXPECT_EQ(copyWith(files), "Copy file '" + source + "': No space left on device");
    EXPECT_EQ(copyWith({}), "nothing thrown");
}

}  // namespace
