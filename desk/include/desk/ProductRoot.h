// The folder that stands for the amplifier's file system: DIR/home/root and DIR/mnt/user-data.
#pragma once

#include <filesystem>

namespace tvk::desk {

struct ProductRoot {
    std::filesystem::path homeRoot;
    std::filesystem::path userData;

    // Makes the folder when it is missing, and fills it with product data when it is empty; else leaves it as
    // it is. Throws Refusal when it cannot.
    static ProductRoot open(const std::filesystem::path& folder);
};

}  // namespace tvk::desk
