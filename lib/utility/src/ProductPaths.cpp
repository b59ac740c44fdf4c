#include "utility/ProductPaths.h"

#include <array>
#include <optional>

namespace tvk {

namespace {

struct Folder {
    std::string name;  // on the amplifier
    std::string place;
};

std::array<Folder, 2>& folders() {
    static std::array<Folder, 2> both{Folder{ProductPaths::kHomeRoot, ProductPaths::kHomeRoot},
                                      Folder{ProductPaths::kUserData, ProductPaths::kUserData}};
    return both;
}

// What follows the folder in the path, from its slash on; none when the path lies elsewhere.
std::optional<std::string> below(const std::string& folder, const std::string& path) {
    if (path.rfind(folder, 0) != 0) return std::nullopt;
    const std::string rest = path.substr(folder.size());
    if (!rest.empty() && rest.front() != '/') return std::nullopt;
    return rest;
}

}  // namespace

void ProductPaths::set(const std::string& homeRoot, const std::string& userData) {
    folders()[0].place = homeRoot;
    folders()[1].place = userData;
}

std::string ProductPaths::resolve(const std::string& path) {
    for (const Folder& folder : folders())
        if (below(folder.place, path)) return path;
    for (const Folder& folder : folders())
        if (const std::optional<std::string> rest = below(folder.name, path)) return folder.place + *rest;
    return path;
}

bool ProductPaths::isUserData(const std::string& path) {
    const Folder& userData = folders()[1];
    return below(userData.place, path) || below(userData.name, path);
}

}  // namespace tvk
