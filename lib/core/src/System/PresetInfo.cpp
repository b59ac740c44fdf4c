#include "core/System/PresetInfo.h"

#include "core/System/DspArchive.h"

void PresetInfo::init(DspArchive& archive) {
    archive.get("displayName", displayName);
    archive.get("preset_id", preset_id);
    archive.get("author", author);
    archive.get("source_id", source_id);
    archive.get("timestamp", timestamp);
    archive.get("created_at", created_at);
    archive.get("product_id", product_id);
    archive.get("is_factory_default", is_factory_default);
    archive.get("bpm", bpm);
}

void PresetInfo::getArchive(DspArchive& archive) const {
    archive.set("displayName", displayName);
    archive.set("preset_id", preset_id);
    archive.set("author", author);
    archive.set("source_id", source_id);
    archive.set("timestamp", timestamp);
    archive.set("created_at", created_at);
    archive.set("product_id", product_id);
    archive.set("is_factory_default", is_factory_default);
    archive.set("bpm", bpm);
}
