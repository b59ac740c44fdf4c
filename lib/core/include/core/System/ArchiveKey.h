// Optional keys of an archive: read when they are there, without a warning when they are not.
#pragma once

#include <string>

#include "core/System/DspArchive.h"

inline bool hasKey(DspArchive& archive, const std::string& key) {
    if (!archive.enterObject(key)) return false;
    archive.leaveObject();
    return true;
}

// The member at the key, or the fallback; a member of another type warns and gives the fallback.
template <typename T>
T getOptional(DspArchive& archive, const std::string& key, T fallback) {
    if (hasKey(archive, key)) archive.get(key, fallback);
    return fallback;
}

// The member at the key, or the fallback with a warning.
template <typename T>
T getRequired(DspArchive& archive, const std::string& key, T fallback) {
    archive.get(key, fallback);
    return fallback;
}
