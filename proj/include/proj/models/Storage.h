// The files that the models load, save and delete, by their names on the amplifier (ProductPaths).
//
// All writing and deleting takes turns under one mutex. Who wants something saved draws a ticket at the
// moment at which the text is settled; tickets grow. So the last text wins, whichever thread comes to write
// it first, and what was asked for before a wipe never lands after it.
//
// Any thread but the audio thread; every call blocks for the disk. Nothing is called from inside the mutex
// but the system. What lies below "/mnt/user-data" is opened as a regular file only, never through a link.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "utility/OsFiles.h"

namespace tvk {

class Storage {
public:
    using Ticket = std::uint64_t;
    enum class Load { Done, Absent, TooLarge, Unreadable };

    static constexpr std::size_t kMaxTextBytes = std::size_t{1} << 20;

    explicit Storage(OsFiles& files) : files_(files) {}
    Storage(const Storage&) = delete;
    Storage& operator=(const Storage&) = delete;

    // The one of the process.
    static Storage& machine();

    // The whole file, of at most kMaxTextBytes; the text is untouched unless Done.
    Load load(const std::string& path, std::string& text) const;

    // Takes no lock.
    Ticket ticket() { return nextTicket_.fetch_add(1); }

    // The save of AtomicSave.h. True when the file holds this text, or that of a later ticket, for good.
    // False after a warning when a step failed, and without one when a wipe came after the ticket.
    bool save(const std::string& path, std::string_view bytes, Ticket ticket);

    // Deletes a file for good; one that is not there counts as deleted. Throws tvk::Exception.
    void remove(const std::string& path);

    // Deletes these files, which lie in one folder, and every entry of the folder, whose name ends in "/".
    // What is not there counts as deleted. Throws tvk::Exception at the first entry that stays.
    void wipe(const std::vector<std::string>& files, const std::string& folder);

    // Creates a folder that is not there; its parent is. False with errno set on failure.
    bool makeFolder(const std::string& path);

    bool isFile(const std::string& path) const;

    // Names of the entries, sorted; none where there is no such folder.
    std::vector<std::string> listFolder(const std::string& path) const;

private:
    bool removeLocked(const std::string& place);  // false when it was not there

    OsFiles& files_;
    std::atomic<Ticket> nextTicket_{1};
    std::mutex mutex_;
    Ticket wiped_ = 0;                       // tickets below are void
    std::map<std::string, Ticket> written_;  // by place, the ticket of what the file holds
};

}  // namespace tvk
