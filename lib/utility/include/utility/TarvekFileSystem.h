// Whole files in one call, with a status instead of an exception: every function answers false, after a
// warning in the log, when it could not do its work. Control threads; blocks for the disk.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "utility/OsFiles.h"

class ITarvekFileSystem {
public:
    virtual ~ITarvekFileSystem() = default;

    virtual bool exists(const std::string& path) const = 0;

    // Read all of it; the result is untouched on failure.
    virtual bool loadFile(const std::string& path, std::string& text) const = 0;
    virtual bool loadFile(const std::string& path, std::vector<std::uint8_t>& bytes) const = 0;

    // Overwrite in place: a loss of power can leave half of it. Not for settings and catalogues.
    virtual bool saveFile(const std::string& path, const std::string& text) = 0;
    virtual bool saveFile(const std::string& path, const std::vector<std::uint8_t>& bytes) = 0;

    // The save for settings and catalogues (AtomicSave.h).
    virtual bool saveFileAtomic(const std::string& path, const std::string& text) = 0;

    // Appends the text to a log file, which is created if need be.
    virtual bool logData(const std::string& path, const std::string& text) = 0;

    // Presets on a storage card.
    virtual bool loadPreset(const std::string& path, std::string& text) const = 0;
    virtual bool savePreset(const std::string& path, const std::string& text) = 0;

    // The settings in the file; when it cannot be read, the defaults, which are then saved in its place.
    // False when neither reading nor saving succeeded; text holds the defaults then too.
    virtual bool loadSettings(const std::string& path, const std::string& defaults, std::string& text) = 0;
};

class TarvekFileSystem : public ITarvekFileSystem {
public:
    explicit TarvekFileSystem(tvk::OsFiles& files = tvk::OsFiles::machine()) : files_(files) {}

    bool exists(const std::string& path) const override;
    bool loadFile(const std::string& path, std::string& text) const override;
    bool loadFile(const std::string& path, std::vector<std::uint8_t>& bytes) const override;
    bool saveFile(const std::string& path, const std::string& text) override;
    bool saveFile(const std::string& path, const std::vector<std::uint8_t>& bytes) override;
    bool saveFileAtomic(const std::string& path, const std::string& text) override;
    bool logData(const std::string& path, const std::string& text) override;
    bool loadPreset(const std::string& path, std::string& text) const override;
    bool savePreset(const std::string& path, const std::string& text) override;
    bool loadSettings(const std::string& path, const std::string& defaults, std::string& text) override;

private:
    tvk::OsFiles& files_;
};
