#include "shared/Presets/BuiltInPresets.h"

namespace tvk {

namespace {

constexpr const char* presets[kBuiltInPresets] = {
#include "TestModePassthru.json.h"
    ,
#include "CorvinReverb65.json.h"
    ,
#include "ArvelReverb65.json.h"
    ,
#include "LiskoReverb65.json.h"
    ,
#include "SorrelReverb.json.h"
};

}  // namespace

const char* builtInPreset(int slot) {
    return slot >= 0 && slot < kBuiltInPresets ? presets[slot] : nullptr;
}

}  // namespace tvk
