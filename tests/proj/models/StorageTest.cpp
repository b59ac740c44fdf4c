#include <sys/stat.h>

#include "ProductFolders.h"
#include "utility/Exception.h"

namespace {

using tvk::Storage;
namespace fs = std::filesystem;

constexpr const char* kPath = "/mnt/user-data/a.json";
constexpr const char* kFolder = "/mnt/user-data/folder/";

class StorageTest : public ProductFolders {
protected:
    Storage::Load load(const std::string& path = kPath) {
        text = "before";
        return storage.load(path, text);
    }
    std::string text;
};

TEST_F(StorageTest, WhatWasSavedIsLoaded) {
    EXPECT_TRUE(storage.save(kPath, "text", storage.ticket()));
    EXPECT_EQ(load(), Storage::Load::Done);
    EXPECT_EQ(text, "text");
    EXPECT_EQ(read(kPath), "text");
    EXPECT_FALSE(exists(std::string(kPath) + ".tmp"));
}

TEST_F(StorageTest, AFileThatIsNotThereIsAbsentAndLeavesTheText) {
    EXPECT_EQ(load(), Storage::Load::Absent);
    EXPECT_EQ(load("/mnt/user-data/missing/a.json"), Storage::Load::Absent);
    EXPECT_EQ(text, "before");
}

TEST_F(StorageTest, AMebibyteIsLoadedAndNotOneByteMore) {
    const std::string most(std::size_t{1} << 20, 'x');
    write(kPath, most);
    EXPECT_EQ(load(), Storage::Load::Done);
    EXPECT_EQ(text, most);
    write(kPath, most + "x");
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
    fs::create_symlink(place("/home/root/real"), place(kPath));
    EXPECT_EQ(load(), Storage::Load::Unreadable);
    EXPECT_FALSE(storage.isFile(kPath));
    fs::create_symlink(place("/home/root/real"), place("/home/root/link"));
    EXPECT_EQ(load("/home/root/link"), Storage::Load::Done);
    EXPECT_TRUE(storage.isFile("/home/root/link"));
}

TEST_F(StorageTest, OfTwoTextsTheOneThatWasSettledLastStays) {
    const Storage::Ticket first = storage.ticket();
    const Storage::Ticket second = storage.ticket();
    EXPECT_TRUE(storage.save(kPath, "second", second));
    EXPECT_TRUE(storage.save(kPath, "first", first)) << "overtaken is as good as saved";
    EXPECT_EQ(read(kPath), "second");
    EXPECT_TRUE(storage.save("/mnt/user-data/b.json", "first", first)) << "another file";
    EXPECT_EQ(read("/mnt/user-data/b.json"), "first");
}

TEST_F(StorageTest, ALaterTextThatFailedDoesNotKeepAnEarlierOneOff) {
    const Storage::Ticket first = storage.ticket();
    files.unwritable = "a.json.tmp";
    EXPECT_FALSE(storage.save(kPath, "second", storage.ticket()));
    files.unwritable.clear();
    EXPECT_TRUE(storage.save(kPath, "first", first));
    EXPECT_EQ(read(kPath), "first");
}

TEST_F(StorageTest, AFailedSaveLeavesTheOldFile) {
    write(kPath, "old");
    files.unwritable = "a.json.tmp";
    EXPECT_FALSE(storage.save(kPath, "new", storage.ticket()));
    EXPECT_EQ(read(kPath), "old");
}

TEST_F(StorageTest, WhatIsNotThereCountsAsRemoved) {
    write(kPath, "text");
    storage.remove(kPath);
    EXPECT_FALSE(exists(kPath));
    EXPECT_NO_THROW(storage.remove(kPath));
    EXPECT_NO_THROW(storage.remove("/mnt/user-data/missing/a"));
    EXPECT_TRUE(complaints().empty());
}

TEST_F(StorageTest, WhatCannotBeRemovedIsAnException) {
    write(kPath, "text");
    files.undeletable = "a.json";
    EXPECT_THROW(storage.remove(kPath), tvk::Exception);
    EXPECT_EQ(read(kPath), "text");
}

TEST_F(StorageTest, AFileThatWasRemovedCanBeSavedAgain) {
    EXPECT_TRUE(storage.save(kPath, "one", storage.ticket()));
    storage.remove(kPath);
    EXPECT_TRUE(storage.save(kPath, "two", storage.ticket()));
    EXPECT_EQ(read(kPath), "two");
}

TEST_F(StorageTest, AWipeDeletesTheFilesAndEmptiesTheFolder) {
    write(kPath, "text");
    write("/mnt/user-data/other.json", "stays");
    write(std::string(kFolder) + "b.wav", "b");
    fs::create_symlink("/nowhere", place(std::string(kFolder) + "link"));
    storage.wipe({kPath, "/mnt/user-data/missing.json"}, kFolder);
    EXPECT_FALSE(exists(kPath));
    EXPECT_EQ(read("/mnt/user-data/other.json"), "stays");
    EXPECT_TRUE(storage.listFolder(kFolder).empty());
    EXPECT_TRUE(exists(kFolder));
    EXPECT_NO_THROW(storage.wipe({kPath}, "/mnt/user-data/missing/"));
}

TEST_F(StorageTest, AWipeStopsAtWhatStays) {
    write(kPath, "text");
    write(std::string(kFolder) + "b.wav", "b");
    files.undeletable = "b.wav";
    EXPECT_THROW(storage.wipe({kPath}, kFolder), tvk::Exception);
    EXPECT_FALSE(exists(kPath));
}

TEST_F(StorageTest, WhatWasSettledBeforeAWipeNeverLandsAfterIt) {
    const Storage::Ticket before = storage.ticket();
    storage.wipe({kPath}, kFolder);
    EXPECT_FALSE(storage.save(kPath, "old", before));
    EXPECT_FALSE(exists(kPath));
    EXPECT_TRUE(storage.save(kPath, "new", storage.ticket()));
    EXPECT_EQ(read(kPath), "new");
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
