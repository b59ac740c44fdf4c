// The "info" object of a preset: what it is called and where it comes from. Carried, never judged.
#pragma once

#include <string>

class DspArchive;

struct PresetInfo {
    // Reads the members at the cursor, the object "info" itself; a missing key leaves its field.
    void init(DspArchive& archive);
    // Writes the members at the cursor, in the order of the fields.
    void getArchive(DspArchive& archive) const;

    std::string displayName;
    std::string preset_id;  // a UUID in 36 characters
    std::string author;
    std::string source_id;
    double timestamp = 0.0;  // seconds since 1970: the last edit
    double created_at = 0.0;
    std::string product_id;
    bool is_factory_default = false;
    double bpm = 0.0;  // beats per minute, 0 when not set
};
