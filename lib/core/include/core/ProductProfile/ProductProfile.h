// Which product the common code runs in: audio calibration and the menus of a product that has them.
//
// One JSON file, read at construction and constant after; any thread may read. A file that cannot be read, or
// a key that is missing, is a line in the log, and the default stands: "ostrel" and "QNB" for the two texts,
// 0, false and empty for the rest.
#pragma once

#include <array>
#include <string>
#include <utility>
#include <vector>

class DspArchive;

// A unit type and its text in a menu.
using MenuEntry = std::pair<std::string, std::string>;  // (tarvekId, menuName18Max)

// One category of the effect menu.
struct FxCategoryData {
    virtual ~FxCategoryData() = default;

    std::string categoryName;
    std::string menuName18Max;
    std::vector<MenuEntry> dspUnits;
};

// One assignment of effects to external controls: as many slots as the product has, the rest empty.
struct ExternalControlsData {
    std::string menuName;
    std::array<std::string, 5> slots;
};

class ProductProfile {
public:
    explicit ProductProfile(const std::string& path);

    const std::string& getProductFamily() const { return productFamily_; }
    // Volts that a full-scale input sample stands for.
    float getInputVoltageMapping() const { return inputVoltageMapping_; }
    bool getPreFxHeadRoomEnable() const { return preFxHeadRoomEnable_; }
    // How much more sensitive the sensitive input range is than the robust one.
    float getDreGainDeltaDb() const { return dreGainDeltaDb_; }
    float getDrePreGainLowGainPath() const { return drePreGainLowGainPath_; }
    // The input de-emphasis: gains at 0 Hz and at half the sample rate, corner.
    float getDeemphGainDcDb() const { return deemphGainDcDb_; }
    float getDeemphGainPiDb() const { return deemphGainPiDb_; }
    float getDeemphF0Hz() const { return deemphF0Hz_; }
    float getBluetoothAuxInAttenuationDb() const { return bluetoothAuxInAttenuationDb_; }
    const std::string& getFrontPanelKnobClass() const { return frontPanelKnobClass_; }
    float getInstrumentGainDb() const { return instrumentGainDb_; }
    float getHeadphonesGainDb() const { return headphonesGainDb_; }
    // Time constants in seconds.
    float getLimiterAttackTc() const { return limiterAttackTc_; }
    float getLimiterReleaseTc() const { return limiterReleaseTc_; }
    float getLimiterThresholdDb() const { return limiterThresholdDb_; }
    float getLimiterLookaheadSeconds() const { return limiterLookaheadSeconds_; }
    float getLimiterCrossoverFrequencyHz() const { return limiterCrossoverFrequencyHz_; }

    const std::vector<FxCategoryData>& getEffectCategories() const { return effectCategories_; }
    const std::vector<MenuEntry>& getAmpDspUnits() const { return ampDspUnits_; }
    const std::vector<MenuEntry>& getGlobalEq() const { return globalEq_; }
    const std::vector<ExternalControlsData>& getGlobalFxAssign() const { return globalFxAssign_; }
    const std::vector<ExternalControlsData>& getGlobalFxAssignRtk7() const { return globalFxAssignRtk7_; }

    // Every value as a debug line.
    void print() const;

private:
    void read(DspArchive& archive);
    void readEffectCategories(DspArchive& archive);
    void readAmps(DspArchive& archive);

    std::string productFamily_ = "ostrel";
    float inputVoltageMapping_ = 0.0f;
    bool preFxHeadRoomEnable_ = false;
    float dreGainDeltaDb_ = 0.0f;
    float drePreGainLowGainPath_ = 0.0f;
    float deemphGainDcDb_ = 0.0f;
    float deemphGainPiDb_ = 0.0f;
    float deemphF0Hz_ = 0.0f;
    float bluetoothAuxInAttenuationDb_ = 0.0f;
    std::string frontPanelKnobClass_ = "QNB";
    float instrumentGainDb_ = 0.0f;
    float headphonesGainDb_ = 0.0f;
    float limiterAttackTc_ = 0.0f;
    float limiterReleaseTc_ = 0.0f;
    float limiterThresholdDb_ = 0.0f;
    float limiterLookaheadSeconds_ = 0.0f;
    float limiterCrossoverFrequencyHz_ = 0.0f;
    std::vector<FxCategoryData> effectCategories_;
    std::vector<MenuEntry> ampDspUnits_;
    std::vector<MenuEntry> globalEq_;
    std::vector<ExternalControlsData> globalFxAssign_;
    std::vector<ExternalControlsData> globalFxAssignRtk7_;
};
