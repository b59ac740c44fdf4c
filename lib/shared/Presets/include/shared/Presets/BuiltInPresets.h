// The presets that the program carries, one a slot: 0 is the test mode, 1 to 4 are the amplifiers.
#pragma once

namespace tvk {

constexpr int kBuiltInPresets = 5;

// The preset's JSON text, without indentation; null for a slot that is not 0 to 4.
const char* builtInPreset(int slot);

}  // namespace tvk
