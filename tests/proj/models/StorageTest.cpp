#include <sys/stat.h>

#include "ProductFolders.h"
#include "utility/Exception.h"

namespace {

using tvk::Storage;
namespace fs = std::filesystem;

constexpr const char* kFile = "/mnt/user-data/a.json";
constexpr const char* kFolder = "/mnt/user-data/folder/";

class StorageTest : public ProductFolders {
protected:
    Storage::Load load(const std::string& path = kFile) {
        text = "before";
        return storage.load(path, text);
    }
    std::string text;
};

TEST_F(StorageTest, WhatWasSavedIsLoaded) {
    EXPECT_TRUE(storage.save(kFile, "text", storage.ticket()));
    EXPECT_EQ(load(), Storage::Load::Done);
    EXPECT_EQ(text, "text");
    EXPECT_EQ(read(kFile), "text");
    EXPECT_FALSE(exists(std::string(kFile) + ".tmp"));
}

TEST_F(StorageTest, AFileThatIsNotThereIsAbsentAndLeavesTheText) {
    EXPECT_EQ(load(), Storage::Load::Absent);
    EXPECT_EQ(load("/mnt/user-data/missing/a.json"), Storage::Load::Absent);
    EXPECT_EQ(text, "before");
}

TEST_F(StorageTest, AMebibyteIsLoadedAndNotOneByteMore) {
    const std::string most(std::size_t{1} << 20, 'x');
    write(kFile, most);
    EXPECT_EQ(load(), Storage::Load::Done);
    EXPECT_EQ(text, most);
    write(kFile, most + "x");
    EXPECT_EQ(load(), Storage::Load::TooLarge);
    EXPECT_EQ(text, "before");
}

TEST_F(StorageTest, NothingButARegularFileIsLoaded) {
    fs::create_directory(place("/mnt/user-data/a"));
    EXPECT_EQ(load("/mnt/user-data/a"), Storage::Load::Unreadable);
    ASSERT_EQ(mkfifo(place("/mnt/user-data/pipe").c_str(), 0600), 0);
    EXPECT_EQ(load("/mnt/user-data/pipe"), Storage::Load::Unreadable);
}

TEST_F(StorageTest, InTheUsersDataALinkIsNoFile) {
    write("/home/root/real", "text");
    fs::create_symlink(place("/home/root/real"), place(kFile));
    EXPECT_EQ(load(), Storage::Load::Unreadable);
    EXPECT_FALSE(storage.isFile(kFile));
    fs::create_symlink(place("/home/root/real"), place("/home/root/link"));
    EXPECT_EQ(load("/home/root/link"), Storage::Load::Done);
    EXPECT_TRUE(storage.isFile("/home/root/link"));
}

TEST_F(StorageTest, OfTwoTextsTheOneThatWasSettledLastStays) {
    const Storage::Ticket first = storage.ticket();
    const Storage::Ticket second = storage.ticket();
    EXPECT_TRUE(storage.save(kFile, "second", second));
    EXPECT_TRUE(storage.save(kFile, "first", first)) << "overtaken is as good as saved";
    EXPECT_EQ(read(kFile), "second");
    EXPECT_TRUE(storage.save("/mnt/user-data/b.json", "first", first)) << "another file";
    EXPECT_EQ(read("/mnt/user-data/b.json"), "first");
}

TEST_F(StorageTest, ALaterTextThatFailedDoesNotKeepAnEarlierOneOff) {
    const Storage::Ticket first = storage.ticket();
    files.unwritable = "a.json.tmp";
    EXPECT_FALSE(storage.save(kFile, "second", storage.ticket()));
    files.unwritable.clear();
    EXPECT_TRUE(storage.save(kFile, "first", first));
    EXPECT_EQ(read(kFile), "first");
}

TEST_F(StorageTest, AFailedSaveLeavesTheOldFile) {
    write(kFile, "old");
    files.unwritable = "a.json.tmp";
    EXPECT_FALSE(storage.save(kFile, "new", storage.ticket()));
    EXPECT_EQ(read(kFile), "old");
}

TEST_F(StorageTest, WhatIsNotThereCountsAsRemoved) {
    write(kFile, "text");
    storage.remove(kFile);
    EXPECT_FALSE(exists(kFile));
    EXPECT_NO_THROW(storage.remove(kFile));
    EXPECT_NO_THROW(storage.remove("/mnt/user-data/missing/a"));
    EXPECT_TRUE(complaints().empty());
}

TEST_F(StorageTest, WhatCannotBeRemovedIsAnException) {
    write(kFile, "text");
    files.undeletable = "a.json";
    EXPECT_THROW(storage.remove(kFile), tvk::Exception);
    EXPECT_EQ(read(kFile), "text");
}

TEST_F(StorageTest, AFileThatWasRemovedCanBeSavedAgain) {
    EXPECT_TRUE(storage.save(kFile, "one", storage.ticket()));
    storage.remove(kFile);
    EXPECT_TRUE(storage.save(kFile, "two", storage.ticket()));
    EXPECT_EQ(read(kFile), "two");
}

TEST_F(StorageTest, AWipeDeletesTheFilesAndEmptiesTheFolder) {
    write(kFile, "text");
    write("/mnt/user-data/other.json", "stays");
    write(std::string(kFolder) + "b.wav", "b");
    fs::create_symlink("/nowhere", place(std::string(kFolder) + "link"));
    storage.wipe({kFile, "/mnt/user-data/missing.json"}, kFolder);
    EXPECT_FALSE(exists(kFile));
    EXPECT_EQ(read("/mnt/user-data/other.json"), "stays");
    EXPECT_TRUE(storage.listFolder(kFolder).empty());
    EXPECT_TRUE(exists(kFolder));
    EXPECT_NO_THROW(storage.wipe({kFile}, "/mnt/user-data/missing/"));
}

TEST_F(StorageTest, AWipeStopsAtWhatStays) {
    write(kFile, "text");
    write(std::string(kFolder) + "b.wav", "b");
    files.undeletable = "b.wav";
    EXPECT_THROW(storage.wipe({kFile}, kFolder), tvk::Exception);
    EXPECT_FALSE(exists(kFile));
}

TEST_F(StorageTest, WhatWasSettledBeforeAWipeNeverLandsAfterIt) {
    const Storage::Ticket before = storage.ticket();
    storage.wipe({kFile}, kFolder);
    EXPECT_FALSE(storage.save(kFile, "old", before));
    EXPECT_FALSE(exists(kFile));
    EXPECT_TRUE(storage.save(kFile, "new", storage.ticket()));
    EXPECT_EQ(read(kFile), "new");
}

TEST_F(StorageTest, AFolderIsMadeOnce) {
    EXPECT_TRUE(storage.makeFolder(kFolder));
    EXPECT_TRUE(storage.makeFolder(kFolder));
    EXPECT_TRUE(fs::is_directory(place(kFolder)));
    EXPECT_FALSE(storage.makeFolder("/mnt/user-data/missing/deeper/"));
}

TEST_F(StorageTest, AFolderThatIsNotThereListsNothing) {
    EXPECT_TRUE(storage.listFolder(kFolder).empty());
    write(std::string(kFolder) + "b", "");
    write(std::string(kFolder) + "a", "");
    EXPECT_EQ(storage.listFolder(kFolder), (Lines{"a", "b"}));
}

}  // namespace
