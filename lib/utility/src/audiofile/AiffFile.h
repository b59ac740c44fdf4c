// AIFF and AIFC: big-endian IFF chunks, of which "COMM" and "SSND" matter, in any order.
//
// Of AIFC's encodings the linear ones are known: "NONE" and "twos" (big-endian), "sowt" (little-endian),
// "fl32" and "FL32" (32-bit float).
#pragma once

#include "AudioFile.h"
#include "ByteCursor.h"

namespace audiofile {

// bytes: the whole file, from "FORM" on. Null, or the reason for refusing it; the result holds then nothing.
const char* parseAiff(ByteCursor bytes, AudioFile& result);

}  // namespace audiofile
