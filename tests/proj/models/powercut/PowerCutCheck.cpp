#include "PowerCutCheck.h"

#include <algorithm>
#include <cerrno>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "Amplifier.h"

using tvk::CabsimIR;
using tvk::CabsimModel;
using tvk::UserIR;
using Kind = DiskFault::Kind;

namespace {

constexpr const char* kSettings = "/mnt/user-data/globalSettings.json";
constexpr const char* kCabinet = "/mnt/user-data/userCabsimConfig.json";
constexpr const char* kCatalogue = "/mnt/user-data/userIRs.json";
constexpr const char* kFolder = "/mnt/user-data/userIRs/";
constexpr const char* kExtension = ".wav";

bool isTemporary(const std::string& path) {
    return path.ends_with(".tmp");
}

std::string fileOf(const std::string& name) {
    return kFolder + name + kExtension;
}

std::optional<std::string> fileOn(const DiskContents& disk, const std::string& path) {
    const auto found = disk.find(path);
    return found == disk.end() ? std::nullopt : std::optional(found->second);
}

// Of the responses whose file is there, sorted.
std::vector<std::string> namesOn(const DiskContents& disk) {
    const std::string folder = kFolder, extension = kExtension;
    std::vector<std::string> names;
    for (const auto& [path, content] : disk)
        if (path.starts_with(folder) && path.ends_with(extension))
            names.push_back(path.substr(folder.size(), path.size() - folder.size() - extension.size()));
    return names;
}

const char* nameOf(Kind kind) {
    switch (kind) {
        case Kind::None:
            return "no fault";
        case Kind::Dies:
            return "dies";
        case Kind::Tears:
            return "tears";
        case Kind::Fails:
            return "fails";
        case Kind::FillsUp:
            return "fills up";
    }
    return "";
}

}  // namespace

std::string PowerCutCheck::finding() {
    return std::exchange(finding_, {});
}

void PowerCutCheck::require(bool holds, const std::string& wrong) {
    if (!holds && finding_.empty()) finding_ = where_ + ": " + wrong;
}

PowerCutCheck::End PowerCutCheck::run(const Scenario& scenario, const DiskFault& fault) {
    End end;
    DiskModel disk(kind_, scenario.before);
    const std::unique_ptr<tvk::OsFiles> between = layer_ ? layer_(disk) : nullptr;
    {
        Amplifier amp(engine_, between ? *between : disk);
        if (!scenario.isAtTheStart) amp.start();
        log_.clear();
        disk.arm(fault);
        if (scenario.isAtTheStart) amp.start();
        end.isDone = isDone(scenario, amp);
    }
    end.complaints = log_.complaints();
    end.leftovers = disk.leftovers();
    end.durable = disk.durable();
    end.seen = disk.seen();
    end.calls = disk.calls();
    return end;
}

bool PowerCutCheck::isDone(const Scenario& scenario, Amplifier& amp) const {
    try {
        return scenario.act(amp) && !log_.has("Warn Failed to save global settings to disk.");
    } catch (const tvk::Exception&) {
        return false;
    }
}

PowerCutCheck::State PowerCutCheck::stateOn(const DiskContents& contents) {
    DiskModel disk(kind_, contents);
    Amplifier amp(engine_, disk);
    amp.start();
    return {amp.settings->getReverbTaperType(), amp.settings->getVibratoChannelBright(),
            amp.cabsim->getCabsimIRList(), amp.userIRs->getUserIRList()};
}

// The records of the catalogue, then the files that it does not tell of.
std::vector<UserIR> PowerCutCheck::listFor(const DiskContents& disk) {
    std::vector<UserIR> records;
    const auto text = fileOn(disk, kCatalogue);
    const nlohmann::json catalogue = nlohmann::json::parse(text.value_or(R"({"userIRs": []})"));
    for (const auto& record : catalogue.at("userIRs")) {
        const std::string name = record.at("name");
        records.push_back({name, disk.contains(fileOf(name))});
        if (!records.back().exists) ++withoutFile_;
    }
    for (const std::string& name : namesOn(disk)) {
        const auto isOfIt = [&name](const UserIR& record) { return record.name == name; };
        if (std::any_of(records.begin(), records.end(), isOfIt)) continue;
        records.push_back({name, true});
        ++unlisted_;
    }
    return records;
}

void PowerCutCheck::checkWholeFiles(const DiskContents& left) {
    std::set<std::string> paths;
    for (const DiskContents* disk : std::initializer_list<const DiskContents*>{&before_, &after_, &left})
        for (const auto& [path, content] : *disk)
            if (!isTemporary(path)) paths.insert(path);
    for (const std::string& path : paths) {
        const auto file = fileOn(left, path);
        require(file == fileOn(before_, path) || file == fileOn(after_, path),
                path + (file ? " is neither the old one nor the new one" : " is not there"));
    }
}

void PowerCutCheck::checkModels(const DiskContents& left) {
    const auto stateOf = [&](const char* path) -> const State& {
        return fileOn(left, path) == fileOn(before_, path) ? stateBefore_ : stateAfter_;
    };
    const State found = stateOn(left);
    require(found.taper == stateOf(kSettings).taper, "another reverb taper");
    require(found.bright == stateOf(kSettings).bright, "another bright switch");
    CabsimModel::Slots slots = stateOf(kCabinet).slots;
    for (CabsimIR& slot : slots)
        if (!slot.isFactory && !left.contains(fileOf(slot.irName))) slot = {};
    require(found.slots == slots, "other cabinet slots");
    require(found.userIRs == listFor(left), "another list of the user's responses");
}

// What was left does not stand in the way of the next save.
void PowerCutCheck::checkNextSave(const DiskContents& left) {
    DiskModel disk(kind_, left);
    {
        Amplifier amp(engine_, disk);
        amp.start();
        amp.settings->setReverbTaperType(9);
        amp.userIRs->addUserIR("next", "bytes");
        require(amp.cabsim->saveCurrentState(), "the cabinet's next save fails");
    }
    const DiskContents saved = disk.durable();
    const auto json = [&](const char* path) {
        return nlohmann::json::parse(fileOn(saved, path).value_or("null"), nullptr, false);
    };
    require(json(kSettings).is_object() && json(kSettings).value("reverbTaperType", 0) == 9,
            "the next settings are not saved");
    require(fileOn(saved, fileOf("next")) == "bytes", "the next response is not saved");
    require(json(kCatalogue).is_object() && json(kCatalogue)["userIRs"].back()["name"] == "next",
            "the next response is not listed");
    require(json(kCabinet).is_object() && json(kCabinet)["cabsimIRs"].size() == 3,
            "the next cabinet is not saved");
}

void PowerCutCheck::checkStartsAgain(const DiskContents& left) {
    if (!finding_.empty() || !checked_.insert(left).second) return;
    ++startsAgain_;
    checkWholeFiles(left);
    if (!finding_.empty()) return;
    checkModels(left);
    checkNextSave(left);
}

// What the client was told survives even what comes right after.
void PowerCutCheck::checkPromises(const Scenario& scenario, const End& end) {
    for (const std::string& path : scenario.promised)
        for (const DiskContents& left : end.leftovers)
            require(fileOn(left, path) == fileOn(after_, path), path + " is not durable when it is promised");
}

// What nobody reported as failed survives any loss of power that follows.
void PowerCutCheck::checkDurable(const End& end) {
    for (const auto& [path, content] : after_)
        require(isTemporary(path) || fileOn(end.durable, path) == content, path + " is not durable");
    for (const auto& [path, content] : end.durable)
        require(isTemporary(path) || after_.contains(path), path + " is there again");
}

void PowerCutCheck::inject(const Scenario& scenario, const DiskFault& fault) {
    if (!finding_.empty()) return;
    ++crashPoints_;
    where_ = scenario.name + ", call " + std::to_string(fault.call) + " " + nameOf(fault.kind) + " with " +
             std::to_string(fault.error) + " after " + std::to_string(fault.bytes) + " bytes";
    const End end = run(scenario, fault);
    const bool isReported = end.complaints != usualComplaints_;
    // Of a start only the log tells.
    const bool isDone = end.isDone && !(scenario.isAtTheStart && isReported);
    if (fault.error == EINTR) require(isDone && !isReported, "a signal makes it fail");
    if (isDone) checkPromises(scenario, end);
    const bool goesOn = fault.kind == Kind::Fails || fault.kind == Kind::FillsUp;
    if (goesOn && isDone && !isReported) checkDurable(end);
    for (const DiskContents& left : end.leftovers)
        checkStartsAgain(left);
}

void PowerCutCheck::injectAllInto(const Scenario& scenario, long call, const DiskCall& victim) {
    inject(scenario, {Kind::Fails, call, 0, EIO});
    inject(scenario, {Kind::Fails, call, 0, EINTR});
    if (victim.canFillTheDisk) inject(scenario, {Kind::FillsUp, call, 0, ENOSPC});
    if (victim.name != "write") return;
    inject(scenario, {Kind::FillsUp, call, victim.bytes / 2, ENOSPC});
    for (const std::size_t bytes : {std::size_t{1}, victim.bytes / 2, victim.bytes - 1})
        inject(scenario, {Kind::Tears, call, bytes, EIO});
}

void PowerCutCheck::cutEverywhere(const Scenario& scenario, Faults faults, Layer layer) {
    checked_.clear();
    layer_ = std::move(layer);
    where_ = scenario.name + ", nothing fails";
    before_ = scenario.before;
    const End whole = run(scenario, {});
    after_ = whole.seen;
    usualComplaints_ = whole.complaints;
    stateBefore_ = stateOn(before_);
    stateAfter_ = stateOn(after_);
    require(whole.isDone, "it fails");
    checkPromises(scenario, whole);
    checkDurable(whole);
    const long calls = static_cast<long>(whole.calls.size());
    for (long call = 0; call < calls && finding_.empty(); ++call) {
        inject(scenario, {Kind::Dies, call, 0, 0});
        if (faults == Faults::All) injectAllInto(scenario, call, whole.calls[static_cast<std::size_t>(call)]);
    }
}

long PowerCutCheck::syncsOf(const Scenario& scenario) {
    layer_ = {};
    const std::vector<DiskCall> calls = run(scenario, {}).calls;
    return std::count_if(calls.begin(), calls.end(),
                         [](const DiskCall& call) { return call.name == "sync"; });
}
