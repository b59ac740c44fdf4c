#include "desk/ProductRoot.h"

#include "desk/Refusal.h"

namespace tvk::desk {

namespace fs = std::filesystem;

ProductRoot ProductRoot::open(const fs::path& folder) {
    ProductRoot root{folder / "home" / "root", folder / "mnt" / "user-data"};
    try {
        fs::create_directories(folder);
        if (fs::is_empty(folder)) {
            // Under another name until it is whole, since a half-filled folder would count as filled.
            const fs::path filling = folder / "filling";
            fs::copy(TARVEK_PRODUCT_HOME, filling, fs::copy_options::recursive);
            fs::create_directories(root.userData);
            fs::create_directories(root.homeRoot.parent_path());
            fs::rename(filling, root.homeRoot);
        }
    } catch (const fs::filesystem_error& error) {
        throw Refusal("--root " + folder.string() + ": " + error.code().message());
    }
    return root;
}

}  // namespace tvk::desk
