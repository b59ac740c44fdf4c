#include "proj/models/UserIRModel.h"

#include <algorithm>
#include <mutex>

#include "CatalogueFiles.h"
#include "proj/models/IRName.h"
#include "utility/EscapedText.h"
#include "utility/Log.h"

namespace tvk {

namespace {

constexpr const char* kTag = "UserIRModel";
constexpr const char* kCatalogue = "/mnt/user-data/userIRs.json";

std::string fileOf(const std::string& name) {
    return UserIRModel::getUserIRFilePath(name) + kIRExtension;
}

// The name of the response in a file of the folder, empty for any other file.
std::string nameOfFile(const std::string& file) {
    const std::string_view extension = kIRExtension;
    if (!file.ends_with(extension)) return {};
    std::string name = file.substr(0, file.size() - extension.size());
    return isValidUserIRName(name) ? name : std::string();
}

}  // namespace

UserIRModel::UserIRModel(Storage& storage)
    : storage_(storage), saveThread_("SaveUserIRs", [this] { return saveCatalogue(); }) {
    load();
    syncUserIRDatabase();
}

void UserIRModel::load() {
    try {
        std::string text;
        const Storage::Load result = storage_.load(kCatalogue, text);
        if (result == Storage::Load::Absent) return;
        if (result != Storage::Load::Done) TVK_THROW("%s cannot be read", kCatalogue);
        std::vector<UserIR> records = parseUserCatalogue(text);
        if (records.size() > kMaxUserIRs) records.resize(kMaxUserIRs);
        const std::unique_lock lock(mutex_);
        records_ = std::move(records);
    } catch (const std::exception&) {
        TVK_ERROR("Failed to load user IR database.");
    }
}

std::vector<UserIR> UserIRModel::getUserIRList() const {
    const std::shared_lock lock(mutex_);
    return records_;
}

std::string UserIRModel::getUserIRFilePath(const std::string& name) {
    return kUserIRDirectory + name;
}

void UserIRModel::addUserIR(const std::string& name, std::string_view bytes) {
    if (!isValidUserIRName(name)) TVK_THROW("\"%s\" is no name for an IR.", escaped(name).c_str());
    if (bytes.empty()) TVK_THROW("The IR is empty.");
    requireRoomFor(name);
    const Storage::Ticket ticket = storage_.ticket();
    if (!storage_.makeFolder(kUserIRDirectory) || !storage_.save(fileOf(name), bytes, ticket))
        TVK_THROW("The IR could not be saved.");
    if (!addRecord(name)) {
        // Another thread took the last place.
        storage_.remove(fileOf(name));
        requireRoomFor(name);
    }
    requestSave();
}

std::vector<UserIR>::iterator UserIRModel::find(const std::string& name) {
    return std::find_if(records_.begin(), records_.end(),
                        [&name](const UserIR& record) { return record.name == name; });
}

void UserIRModel::requireRoomFor(const std::string& name) {
    const std::shared_lock lock(mutex_);
    if (records_.size() >= kMaxUserIRs && find(name) == records_.end())
        throw UserIRListFull(__FILE__, __LINE__, "The user IR list is full.");
}

bool UserIRModel::addRecord(const std::string& name) {
    const std::unique_lock lock(mutex_);
    const auto record = find(name);
    if (record != records_.end())
        record->exists = true;
    else if (records_.size() < kMaxUserIRs)
        records_.push_back({name, true});
    else
        return false;
    return true;
}

void UserIRModel::moveUserIR(std::uint32_t oldSlot, std::uint32_t newSlot) {
    {
        const std::unique_lock lock(mutex_);
        const auto isSlot = [this](std::uint32_t slot) { return slot >= 1 && slot <= records_.size(); };
        if (!isSlot(oldSlot) || !isSlot(newSlot)) TVK_THROW("Invalid argument.");
        if (oldSlot == newSlot) return;
        const auto from = records_.begin() + (oldSlot - 1);
        const auto to = records_.begin() + (newSlot - 1);
        if (from < to)
            std::rotate(from, from + 1, to + 1);
        else
            std::rotate(to, from, from + 1);
    }
    requestSave();
}

std::string UserIRModel::nameAt(std::uint32_t slot) const {
    const std::shared_lock lock(mutex_);
    if (slot < 1 || slot > records_.size()) TVK_THROW("Invalid argument.");
    return records_[slot - 1].name;
}

void UserIRModel::removeUserIR(std::uint32_t slot) {
    const std::string name = nameAt(slot);
    storage_.remove(fileOf(name));
    {
        const std::unique_lock lock(mutex_);
        const auto record = find(name);
        if (record != records_.end()) records_.erase(record);
    }
    requestSave();
}

void UserIRModel::syncUserIRDatabase() {
    log::debug(kTag, "syncUserIRDatabase");
    const std::vector<std::string> names = namesInFolder();
    const std::unique_lock lock(mutex_);
    for (UserIR& record : records_)
        record.exists = std::binary_search(names.begin(), names.end(), record.name);
    for (const std::string& name : names) {
        if (records_.size() >= kMaxUserIRs) return;
        if (find(name) == records_.end()) records_.push_back({name, true});
    }
}

std::vector<std::string> UserIRModel::namesInFolder() const {
    std::vector<std::string> names;
    try {
        for (const std::string& file : storage_.listFolder(kUserIRDirectory)) {
            const std::string name = nameOfFile(file);
            if (!name.empty() && storage_.isFile(fileOf(name))) names.push_back(name);
        }
    } catch (const Exception& error) {
        TVK_WARN("%s", error.what());
    }
    std::sort(names.begin(), names.end());
    return names;
}

void UserIRModel::requestSave() {
    {
        const std::unique_lock lock(mutex_);
        saveTicket_ = storage_.ticket();
    }
    saveThread_.request();
}

bool UserIRModel::saveCatalogue() const {
    std::vector<UserIR> records;
    Storage::Ticket ticket = 0;
    {
        const std::shared_lock lock(mutex_);
        records = records_;
        ticket = saveTicket_;
    }
    const bool isSaved = storage_.save(kCatalogue, userCatalogueText(records), ticket);
    if (!isSaved) TVK_WARN("Failed to save user IR database to disk.");
    return isSaved;
}

}  // namespace tvk
