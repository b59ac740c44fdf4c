// Names of impulse responses: what a name may be, and where the response of a name lies.
//
// A name has no extension: the response "Room" of the user's folder is the file
// "/mnt/user-data/userIRs/Room.wav".
#pragma once

#include <string>
#include <string_view>

namespace tvk {

inline constexpr const char* kUserIRDirectory = "/mnt/user-data/userIRs/";
inline constexpr const char* kIRExtension = ".wav";

// Stands in a cabinet slot that holds no response, and for the engine for none.
inline constexpr const char* kNoIR = "None";

// "None" or "none".
bool isNoIR(std::string_view name);

// A name that a slot or a catalogue may hold: 1 to 247 bytes, so that the extension and that of a temporary
// file fit a directory entry; not "." or ".."; no "/", NUL or other control byte; UTF-8, which JSON and
// the client's messages can tell.
bool isValidIRName(std::string_view name);

// A name that a user response may be stored under: the same without the two names for none.
bool isValidUserIRName(std::string_view name);

}  // namespace tvk
