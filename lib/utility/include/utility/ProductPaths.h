// Where the amplifier's two folders lie on this machine.
//
// All of the program names files as they are on the amplifier: below "/home/root" what ships with it, below
// "/mnt/user-data" what it writes. On a desk, and in a test, the two folders are elsewhere; the runner says
// where, and whoever opens a file asks here for its place. A path outside the two is its own place, and so is
// one that lies in a folder's place already.
//
// set: before threads start. resolve: any thread but the audio thread.
#pragma once

#include <string>

namespace tvk {

class ProductPaths {
public:
    static constexpr const char* kHomeRoot = "/home/root";
    static constexpr const char* kUserData = "/mnt/user-data";

    // The folders that stand for the two; the amplifier's own give every path back as it came.
    static void set(const std::string& homeRoot, const std::string& userData);

    // The place of a file.
    static std::string resolve(const std::string& path);

    // Whether a file lies in the folder that the amplifier writes, by its name there or by its place.
    static bool isUserData(const std::string& path);
};

}  // namespace tvk
