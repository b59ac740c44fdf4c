// WAV: little-endian RIFF chunks, of which "fmt " and "data" matter, in any order.
#pragma once

#include "AudioFile.h"
#include "ByteCursor.h"

namespace audiofile {

// bytes: the whole file, from "RIFF" on. Null, or the reason for refusing it; the result holds then nothing.
const char* parseWav(ByteCursor bytes, AudioFile& result);

}  // namespace audiofile
