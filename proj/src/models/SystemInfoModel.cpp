#include "proj/models/SystemInfoModel.h"

#include "proj/models/IRName.h"
#include "utility/EscapedText.h"
#include "utility/Exception.h"
#include "utility/File.h"
#include "utility/Log.h"
#include "utility/ProductPaths.h"

namespace tvk {

namespace {

constexpr const char* kTag = "SystemInfoModel";
constexpr const char* kVersionFile = "/home/root/release-version";

}  // namespace

SystemInfoModel::SystemInfoModel(Storage& storage)
    : storage_(storage), firmwareVersion_(resolveFirmwareVersion()) {}

std::string SystemInfoModel::resolveFirmwareVersion() {
    std::string version;
    try {
        File(ProductPaths::resolve(kVersionFile), File::IoMode::Read).readLine(version);
    } catch (const Exception& error) {
        TVK_WARN("Failed to read firmware version file: %s", error.what());
    }
    return version;
}

std::string SystemInfoModel::getFirmwareVersion() const {
    log::debug(kTag, "%s()", "getFirmwareVersion");
    return firmwareVersion_;
}

bool SystemInfoModel::factoryRestore() {
    try {
        storage_.wipe({"/mnt/user-data/factoryIRs.json", "/mnt/user-data/globalSettings.json",
                       "/mnt/user-data/userCabsimConfig.json", "/mnt/user-data/userIRs.json"},
                      kUserIRDirectory);
    } catch (const Exception& error) {
        TVK_WARN("Failed to factory restore: %s", escaped(error.what()).c_str());
        return false;
    }
    return true;
}

}  // namespace tvk
