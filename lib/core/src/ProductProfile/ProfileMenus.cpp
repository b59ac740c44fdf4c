#include "ProductProfile/ProfileMenus.h"

#include "core/System/ArchiveKey.h"
#include "utility/Log.h"

namespace {

constexpr const char* kSlotKeys[] = {"first", "second", "third", "fourth", "fifth"};

// Calls read with the cursor on each item of the array at the key that has the leading key. False if there is
// no such array.
template <typename Read>
bool forEachItem(DspArchive& archive, const std::string& key, const std::string& leadingKey,
                 const char* itemFault, Read read) {
    if (!archive.enterObject(key)) return false;
    for (int i = 0; i < archive.getArraySize(); ++i) {
        archive.enterArrayItem(i);
        if (hasKey(archive, leadingKey)) {
            read();
        } else {
            TVK_WARN("%s", itemFault);
        }
        archive.leaveObject();
    }
    archive.leaveObject();
    return true;
}

}  // namespace

Menu readMenu(DspArchive& archive, const std::string& key, const std::string& idKey, const char* itemFault) {
    Menu menu;
    menu.isPresent = forEachItem(archive, key, idKey, itemFault, [&] {
        menu.entries.emplace_back(getRequired<std::string>(archive, idKey, ""),
                                  getRequired<std::string>(archive, "menuName18Max", ""));
    });
    return menu;
}

std::vector<ExternalControlsData> readAssignments(DspArchive& archive, const std::string& key, int numSlots,
                                                  const char* itemFault) {
    std::vector<ExternalControlsData> assignments;
    forEachItem(archive, key, kSlotKeys[0], itemFault, [&] {
        ExternalControlsData& data = assignments.emplace_back();
        data.menuName = getOptional<std::string>(archive, "menuName18Max", "");
        tvk::log::debug("ProductProfile", "GLobal FX Assign Menu name: %s", data.menuName.c_str());
        for (int slot = 0; slot < numSlots; ++slot) {
            const auto index = static_cast<std::size_t>(slot);
            data.slots[index] = getRequired<std::string>(archive, kSlotKeys[slot], "");
        }
    });
    return assignments;
}
