// The three cabinet slots that the panel's switch selects: a response each, with high-pass, low-pass and
// level. Kept in "/mnt/user-data/userCabsimConfig.json"; what the engine plays is the selected slot.
//
// Start: the user's file, else three empty slots. When the amplifier is known: the user's file, else the
// amplifier's defaults, "/home/root/userCabsimDefaults....json". Slots whose response is not there any more
// are emptied; those of the factory's catalogue are looked at from when it is known.
//
// Threads: any but the audio thread. One mutex, lockApply, is held from reading a slot to the last engine
// call, by this class and by who takes a slot to the engine himself; it is locked after the controller's
// mutex and before the engine's, and no file is written under it. A thread of its own, "SaveCabsim", writes
// the file, and ends when nothing is left to write.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <string>

#include "proj/models/CabsimIR.h"
#include "proj/models/GlobalSettingsObserver.h"
#include "proj/models/SaveThread.h"
#include "proj/models/Storage.h"
#include "utility/PriorityMutex.h"
#include "utility/Signal.h"

class Model;

namespace tvk {

class FactoryIRModel;
class GlobalSettingsModel;

class CabsimModel : public GlobalSettingsObserver {
public:
    static constexpr std::uint32_t kSlots = 3;
    using Slots = std::array<CabsimIR, kSlots>;
    using ApplyLock = std::unique_lock<PriorityMutex>;

    CabsimModel(Model& model, GlobalSettingsModel& settings, FactoryIRModel& factoryIRs,
                Storage& storage = Storage::machine());
    ~CabsimModel() override;
    CabsimModel(const CabsimModel&) = delete;
    CabsimModel& operator=(const CabsimModel&) = delete;

    // The slot in force, 0 to 2.
    std::uint32_t getVirtualCabsim() const;

    // Selects a slot and takes it to the engine. A slot whose file is not there is emptied first. Throws
    // tvk::Exception for a slot above 2.
    void setVirtualCabsim(std::uint32_t slot);

    // Takes the slot in force to the engine again, for a preset that has just been loaded.
    void reapplyVirtualCabsim();

    // The getters of one slot below take no apply lock, so that a caller may hold it over all of them and his
    // calls of the engine.
    [[nodiscard]] ApplyLock lockApply() const { return ApplyLock(applyMutex_); }

    // What Model::setCabsim takes: path without extension, or "None" for a slot that is empty, that is not
    // there, or that names a factory response before the amplifier is known.
    std::string getCabsimIRFilePath(std::uint32_t slot) const;
    Slots getCabsimIRList() const;
    // Hz, Hz, dB; of a slot above 2, after a warning, the default.
    float getCabHPF(std::uint32_t slot) const;
    float getCabLPF(std::uint32_t slot) const;
    float getCabLevel(std::uint32_t slot) const;

    // Put a response into a slot, at -5 dB, with the filters as they are, and to the engine if the slot is in
    // force. A response that is not there, and "None", are assigned as written. False, with nothing changed,
    // for a slot above 2 and for a name that may not be (IRName.h).
    bool assignFactoryIRToCabsim(std::uint32_t slot, const std::string& name);
    bool assignUserIRToCabsim(std::uint32_t slot, const std::string& name);

    // Within CabsimLimits; values outside are clamped. Stored, and to the engine if the slot is in force,
    // else a warning tells that nothing is heard of it. False, after a warning and with nothing changed, for
    // a slot above 2 and for not-a-number.
    bool setCabHPF(std::uint32_t slot, float hz);
    bool setCabLPF(std::uint32_t slot, float hz);
    bool setCabLevel(std::uint32_t slot, float db);

    // Writes the slots, and returns when they are on the disk; the caller holds no lock. False when they are
    // not: then what was dirty is dirty again.
    bool saveCurrentState();

    // Waits for saves under way, reads the slots back from the file (from the amplifier's defaults where
    // there is none), and takes the slot in force to the engine. The caller does not hold the apply lock.
    // False, after a line in the log and with the slots as they were, when the file cannot be read.
    bool syncCurrentState();

    // Empties the slots whose response is not there. The engine is not called.
    void syncCabsimIRDatabase();

    // The amplifier id signal of the cabinet, emitted by the controller after that of the catalogue
    // (FactoryIRModel::amplifierChanged) and after the amplifier's preset is loaded. A new id loads the slots
    // anew, the same id keeps them; the stored reverb taper is applied to the engine either way.
    void amplifierChanged(int id);
    [[nodiscard]] nod::connection addAmplifierObserver(std::function<void(int)> observer);

    // 0 Arvel, 1 Corvin, 2 Lisko, 3 Sorrel; none before the control processor has told, and while the last id
    // it told is another one.
    std::optional<int> getCurrentAmplifier() const;

    void reverbTaperTypeChangedHandler(int type) override;
    void vibratoChannelBrightChangedHandler(int isOn) override;

private:
    struct Value;  // one of the three numbers of a slot

    bool assign(std::uint32_t slot, bool isFactory, const std::string& name);
    bool setValue(std::uint32_t slot, const Value& value, float number);
    float getValue(std::uint32_t slot, const Value& value) const;
    std::string pathOf(const CabsimIR& slot) const;
    bool hasFile(const CabsimIR& slot) const;

    // Under the apply lock.
    void apply(std::uint32_t slot);
    void applyReverbTaper();
    void emptyWithoutFile(std::uint32_t slot);
    void emptySlotsWithoutFile();

    void load(int amplifier);
    void store(const Slots& slots);
    std::optional<Slots> readUserFile() const;
    Slots readUserFileOrDefaults() const;
    Slots readDefaults() const;
    const char* defaultsFile() const;
    bool save();

    Model& model_;
    GlobalSettingsModel& settings_;
    FactoryIRModel& factoryIRs_;
    Storage& storage_;

    mutable PriorityMutex applyMutex_;
    mutable std::shared_mutex slotsMutex_;  // on the four that follow
    Slots slots_;
    std::uint32_t selected_ = 0;
    Slots slotsToSave_;
    Storage::Ticket saveTicket_ = 0;

    static constexpr int kNoAmplifier = -1;
    std::atomic<int> currentAmp_{kNoAmplifier};
    nod::signal_type<int> amplifierSignal_;
    SaveThread saveThread_;
    nod::connection ownObserver_;
};

}  // namespace tvk
