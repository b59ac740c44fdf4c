#include "DspUnit/ReservedParameters.h"

const std::type_info* reservedParameterType(const std::string& name) {
    struct Row {
        const char* name;
        const std::type_info& type;
    };
    static const Row rows[] = {
        {"bypass", typeid(bool)},     {"bypassType", typeid(std::string)}, {"clipState", typeid(bool)},
        {"tapTime", typeid(float)},   {"tapTimeBPM", typeid(float)},       {"muteInput", typeid(bool)},
        {"muteOutput", typeid(bool)},
    };
    for (const Row& row : rows) {
        if (name == row.name) return &row.type;
    }
    return nullptr;
}
