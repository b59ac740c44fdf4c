// The impulse responses that the client uploaded: an ordered list of at most 50, kept as
// "/mnt/user-data/userIRs.json", and one file each, "/mnt/user-data/userIRs/NAME.wav".
//
// A file is whole or not there, whenever the power goes; which of the files are in the folder is looked up at
// the start. The catalogue carries the order.
//
// Threads: any but the audio thread. A thread of its own, "SaveUserIRs", writes the catalogue, and ends when
// nothing is left to write.
#pragma once

#include <cstdint>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <vector>

#include "proj/models/SaveThread.h"
#include "proj/models/Storage.h"
#include "utility/Exception.h"

namespace tvk {

struct UserIR {
    std::string name;     // without extension
    bool exists = false;  // its file is there

    bool operator==(const UserIR&) const = default;
};

// What addUserIR throws when there is no room for one more name.
class UserIRListFull : public Exception {
public:
    using Exception::Exception;
};

class UserIRModel {
public:
    static constexpr std::size_t kMaxUserIRs = 50;

    explicit UserIRModel(Storage& storage = Storage::machine());
    UserIRModel(const UserIRModel&) = delete;
    UserIRModel& operator=(const UserIRModel&) = delete;

    std::vector<UserIR> getUserIRList() const;

    // Directory and name, without extension.
    static std::string getUserIRFilePath(const std::string& name);

    // Stores any bytes under the name; over those of a record of that name, which keeps its place, also when
    // the list is full. Returns when the file is on the disk. Throws tvk::Exception for a name that may not
    // be (IRName.h), for no bytes and when the file cannot be written, UserIRListFull for a 51st name.
    void addUserIR(const std::string& name, std::string_view bytes);

    // Slots count from 1. Takes the record out of the old slot and puts it into the new one. Throws
    // tvk::Exception for a slot that is not there.
    void moveUserIR(std::uint32_t oldSlot, std::uint32_t newSlot);

    // Deletes the file, if it is there, and the record. Throws tvk::Exception for a slot that is not there
    // and when the file cannot be deleted.
    void removeUserIR(std::uint32_t slot);

    // Looks which files of the records are there, and adds those that no record tells of, by name, up to 50.
    void syncUserIRDatabase();

private:
    void load();
    std::vector<UserIR>::iterator find(const std::string& name);  // under the lock
    void requireRoomFor(const std::string& name);
    bool addRecord(const std::string& name);
    std::string nameAt(std::uint32_t slot) const;
    std::vector<std::string> namesInFolder() const;
    void requestSave();
    bool saveCatalogue() const;

    Storage& storage_;
    mutable std::shared_mutex mutex_;  // on the two that follow
    std::vector<UserIR> records_;
    Storage::Ticket saveTicket_ = 0;  // of the last change
    SaveThread saveThread_;           // last: it ends before what it saves goes
};

}  // namespace tvk
