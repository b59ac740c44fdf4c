#include "proj/models/CabsimModel.h"

#include <cmath>
#include <utility>

#include "AmplifierFiles.h"
#include "CabsimConfig.h"
#include "proj/models/FactoryIRModel.h"
#include "proj/models/GlobalSettingsModel.h"
#include "proj/models/Model.h"
#include "proj/models/UserIRModel.h"
#include "utility/Exception.h"
#include "utility/Log.h"

namespace tvk {

namespace {

constexpr const char* kTag = "CabsimModel";
constexpr const char* kFile = "/mnt/user-data/userCabsimConfig.json";
constexpr float kAssignedLevelDb = -5.0f;

}  // namespace

CabsimModel::CabsimModel(Model& model, GlobalSettingsModel& settings, FactoryIRModel& factoryIRs,
                         Storage& storage)
    : model_(model),
      settings_(settings),
      factoryIRs_(factoryIRs),
      storage_(storage),
      saveThread_("SaveCabsim", [this] { return save(); }),
      ownObserver_(addAmplifierObserver([this](int id) { load(id); })) {
    store(readUserFileOrDefaults());
    syncCabsimIRDatabase();
    settings_.addObserver(*this);
}

CabsimModel::~CabsimModel() {
    settings_.removeObserver(*this);
}

std::uint32_t CabsimModel::getVirtualCabsim() const {
    const std::shared_lock lock(slotsMutex_);
    return selected_;
}

void CabsimModel::setVirtualCabsim(std::uint32_t slot) {
    if (slot >= kSlots) TVK_THROW("invalid %s(%d)", "setVirtualCabsim", static_cast<int>(slot));
    const ApplyLock applying = lockApply();
    emptyWithoutFile(slot);
    {
        const std::unique_lock lock(slotsMutex_);
        selected_ = slot;
    }
    apply(slot);
}

void CabsimModel::reapplyVirtualCabsim() {
    const ApplyLock applying = lockApply();
    apply(getVirtualCabsim());
}

void CabsimModel::apply(std::uint32_t slot) {
    const CabsimIR taken = getCabsimIRList()[slot];
    model_.setCabsim(pathOf(taken));
    model_.setCabsimHPF(taken.hpf);
    model_.setCabsimLPF(taken.lpf);
    model_.setCabsimLevel(taken.level);
}

// IRBase reads a name without "/" as one of the user's, so a factory response without its directory is none.
std::string CabsimModel::pathOf(const CabsimIR& slot) const {
    if (slot.irName.empty() || isNoIR(slot.irName)) return kNoIR;
    return slot.isFactory ? factoryIRs_.getFactoryIRFilePath(slot.irName)
                          : UserIRModel::getUserIRFilePath(slot.irName);
}

std::string CabsimModel::getCabsimIRFilePath(std::uint32_t slot) const {
    log::debug(kTag, "getCabsimIRFilePath");
    return slot < kSlots ? pathOf(getCabsimIRList()[slot]) : kNoIR;
}

CabsimModel::Slots CabsimModel::getCabsimIRList() const {
    const std::shared_lock lock(slotsMutex_);
    return slots_;
}

bool CabsimModel::assignFactoryIRToCabsim(std::uint32_t slot, const std::string& name) {
    return assign(slot, true, name);
}

bool CabsimModel::assignUserIRToCabsim(std::uint32_t slot, const std::string& name) {
    return assign(slot, false, name);
}

bool CabsimModel::assign(std::uint32_t slot, bool isFactory, const std::string& name) {
    if (slot >= kSlots || !isValidIRName(name)) return false;
    const ApplyLock applying = lockApply();
    {
        const std::unique_lock lock(slotsMutex_);
        CabsimIR& assigned = slots_[slot];
        assigned.isFactory = isFactory;
        assigned.irName = name;
        assigned.level = kAssignedLevelDb;
        assigned.isDirty = true;
    }
    if (slot == getVirtualCabsim()) apply(slot);
    return true;
}

void CabsimModel::emptyWithoutFile(std::uint32_t slot) {
    const CabsimIR kept = getCabsimIRList()[slot];
    if (kept.irName.empty() || hasFile(kept)) return;
    const std::unique_lock lock(slotsMutex_);
    slots_[slot] = CabsimIR{};
}

// What the factory ships is not known before the amplifier is.
bool CabsimModel::hasFile(const CabsimIR& slot) const {
    if (isNoIR(slot.irName)) return false;
    if (slot.isFactory && currentAmp_.load() == kNoAmplifier) return true;
    const std::string path = pathOf(slot);
    return !isNoIR(path) && storage_.isFile(path + kIRExtension);
}

void CabsimModel::syncCabsimIRDatabase() {
    const ApplyLock applying = lockApply();
    emptySlotsWithoutFile();
}

void CabsimModel::emptySlotsWithoutFile() {
    log::debug(kTag, "%s()", "syncCabsimIRDatabase");
    for (std::uint32_t slot = 0; slot < kSlots; ++slot)
        emptyWithoutFile(slot);
}

bool CabsimModel::saveCurrentState() {
    Slots before;
    {
        const std::unique_lock lock(slotsMutex_);
        before = slots_;
        for (CabsimIR& slot : slots_)
            slot.isDirty = false;
        slotsToSave_ = slots_;
        saveTicket_ = storage_.ticket();
    }
    if (saveThread_.requestAndWait()) return true;
    const std::unique_lock lock(slotsMutex_);
    for (std::uint32_t slot = 0; slot < kSlots; ++slot)
        slots_[slot].isDirty = slots_[slot].isDirty || before[slot].isDirty;
    return false;
}

// On the save thread.
bool CabsimModel::save() {
    Slots slots;
    Storage::Ticket ticket = 0;
    {
        const std::shared_lock lock(slotsMutex_);
        slots = slotsToSave_;
        ticket = saveTicket_;
    }
    return storage_.save(kFile, cabsimConfigText(slots), ticket);
}

bool CabsimModel::syncCurrentState() {
    saveThread_.finishPending();
    const ApplyLock applying = lockApply();
    const std::optional<Slots> slots = readUserFile();
    if (!slots) {
        TVK_WARN("Failed to sync current cabsim state.");
        return false;
    }
    store(*slots);
    emptySlotsWithoutFile();
    apply(getVirtualCabsim());
    return true;
}

void CabsimModel::store(const Slots& slots) {
    const std::unique_lock lock(slotsMutex_);
    slots_ = slots;
}

// The defaults where there is no file; nothing when it cannot be read.
std::optional<CabsimModel::Slots> CabsimModel::readUserFile() const {
    try {
        std::string text;
        switch (storage_.load(kFile, text)) {
            case Storage::Load::Done:
                return parseCabsimConfig(text);
            case Storage::Load::Absent:
                return readDefaults();
            case Storage::Load::TooLarge:
            case Storage::Load::Unreadable:
                break;
        }
    } catch (const std::exception&) {
        // The caller says it: every way to have no slots is the same to him.
    }
    return std::nullopt;
}

CabsimModel::Slots CabsimModel::readUserFileOrDefaults() const {
    const std::optional<Slots> slots = readUserFile();
    if (slots) return *slots;
    TVK_ERROR("Failed to load cabsim IR database.");
    return readDefaults();
}

CabsimModel::Slots CabsimModel::readDefaults() const {
    const char* const file = defaultsFile();
    if (!file) return {};
    try {
        std::string text;
        if (storage_.load(file, text) == Storage::Load::Done) return parseCabsimConfig(text);
    } catch (const std::exception&) {
        // Said below.
    }
    TVK_ERROR("Failed to load cabsim IR database.");
    return {};
}

const char* CabsimModel::defaultsFile() const {
    const int amplifier = currentAmp_.load();
    if (amplifier == kNoAmplifier) return nullptr;
    const std::string& familyName = model_.getProductFamily();
    const ProductFamily family = productFamilyOf(familyName);
    if (const AmplifierFiles* const files = amplifierFiles(family, amplifier)) return files->cabsimDefaults;
    if (family == ProductFamily::SlatePanel)
        TVK_WARN("No Slate Panel cabsim defaults for specified amp.");
    else if (family == ProductFamily::Fawn)
        TVK_WARN("No Fawn cabsim defaults for specified amp.");
    else
        TVK_WARN("No cabsim defaults for specified product family: %s.", familyName.c_str());
    return nullptr;
}

void CabsimModel::amplifierChanged(int id) {
    amplifierSignal_(id);
}

nod::connection CabsimModel::addAmplifierObserver(std::function<void(int)> observer) {
    return amplifierSignal_.connect(std::move(observer));
}

void CabsimModel::load(int amplifier) {
    saveThread_.finishPending();
    const ApplyLock applying = lockApply();
    if (currentAmp_.exchange(amplifier) != amplifier) {
        store(readUserFileOrDefaults());
        emptySlotsWithoutFile();
    }
    applyReverbTaper();
}

// Under the apply lock: of two changes at once, who comes last takes the last value to the engine.
void CabsimModel::applyReverbTaper() {
    model_.setReverbTaper(static_cast<int>(settings_.getReverbTaperType()));
}

std::optional<int> CabsimModel::getCurrentAmplifier() const {
    const int amplifier = currentAmp_.load();
    if (amplifier == kNoAmplifier || model_.panel().productId.get() != amplifier) return std::nullopt;
    return amplifier;
}

void CabsimModel::reverbTaperTypeChangedHandler(int) {
    const ApplyLock applying = lockApply();
    applyReverbTaper();
}

void CabsimModel::vibratoChannelBrightChangedHandler(int isOn) {
    log::debug(kTag, "vibratoChannelBrightChangedHandler(%d)", isOn);
}

}  // namespace tvk
