// The save of every settings and catalogue file: after a loss of power at any moment the file holds either
// all of its old text or all of the new one.
//
//   write path.tmp -> sync it -> rename it to path -> sync path -> sync the folder
//
// The sync before the rename puts the content on the disk before the name points at it; those after make the
// new name durable: that of the file on the flash file system, that of the folder on all others.
#pragma once

#include <string>
#include <string_view>

#include "utility/OsFiles.h"

namespace tvk {

// Control threads; blocks for the disk. False, with a warning that names the step, when a step failed: up to
// the rename the old file stands and the temporary one is removed; after it the new text is in place but may
// not be durable. A temporary file that a loss of power left behind is overwritten; a link in its place is
// not followed.
bool atomicSave(const std::string& path, std::string_view text, OsFiles& files = OsFiles::machine());

// Makes the names in the folder that holds path durable; of "folder/" those in folder. False, with a warning,
// when it cannot.
bool syncFolderOf(const std::string& path, OsFiles& files = OsFiles::machine());

}  // namespace tvk
