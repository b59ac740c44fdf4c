// The save of every settings and catalogue file: after a loss of power at any moment the file holds either
// all of its old text or all of the new one.
//
//   write path.tmp -> sync it -> rename it to path -> sync path
//
// The sync before the rename puts the content on the disk before the name points at it; the one after makes
// the new name durable on the flash file system.
#pragma once

#include <string>
#include <string_view>

#include "utility/OsFiles.h"

namespace tvk {

// Control threads; blocks for the disk. False, with a warning that names the step, when a step failed: up to
// the rename the old file stands and the temporary one is removed; after it the new text is in place but may
// not be durable. A temporary file that a loss of power left behind is overwritten.
bool atomicSave(const std::string& path, std::string_view text, OsFiles& files = OsFiles::machine());

}  // namespace tvk
