#include "Scenarios.h"

namespace {

constexpr const char* kSettings = "/mnt/user-data/globalSettings.json";
constexpr const char* kCatalogue = "/mnt/user-data/userIRs.json";
constexpr const char* kCabinet = "/mnt/user-data/userCabsimConfig.json";

// What ships, and nothing of the user's.
DiskContents freshDisk() {
    const std::string directory = "/home/root/factoryIRs/Arvel-SlatePanel-IRs/";
    const std::string slot =
        R"({"isFactory": true, "irName": "A1", "isDirty": false, "hpf": 30, "lpf": 9000, "level": -1})";
    return {{"/home/root/", ""},
            {directory, ""},
            {directory + "A1.wav", "one"},
            {directory + "A2.wav", "two"},
            {"/home/root/factoryIRsArvelSlate.json", R"({"factoryIRs": [{"name": "A1"}, {"name": "A2"}]})"},
            {"/home/root/userCabsimDefaultsArvelSlate.json",
             "{\"cabsimIRs\": [" + slot + "," + slot + "," + slot + "]}"},
            {"/mnt/user-data/", ""}};
}

DiskContents with(DiskContents disk, const std::string& path, const std::string& content) {
    disk[path] = content;
    return disk;
}

// After a while in use.
DiskContents usedDisk(Model& engine) {
    DiskModel disk(DiskKind::NamesByFolder, freshDisk());
    {
        Amplifier amp(engine, disk);
        amp.start();
        amp.settings->setReverbTaperType(1);
        for (const char* name : {"c", "a", "b"})
            amp.userIRs->addUserIR(name, std::string(600, *name));
        amp.cabsim->assignUserIRToCabsim(0, "a");
        amp.cabsim->assignFactoryIRToCabsim(1, "A2");
        amp.cabsim->setCabHPF(2, 77.0f);
        amp.cabsim->saveCurrentState();
    }
    return disk.seen();
}

bool editAndSaveCabinet(Amplifier& amp) {
    amp.cabsim->assignUserIRToCabsim(1, "a");
    amp.cabsim->setCabLevel(0, -20.0f);
    return amp.cabsim->saveCurrentState();
}

}  // namespace

std::vector<Scenario> scenarios(Model& engine) {
    const DiskContents fresh = freshDisk();
    const DiskContents used = usedDisk(engine);
    const DiskContents interrupted = with(with(used, "/mnt/user-data/userIRs/d.wav.tmp", "half"),
                                          "/mnt/user-data/userIRs.json.tmp", "{\"userIRs\": [");
    const DiskContents olderSettings = with(used, kSettings, R"({"reverbTaperType": 4})");
    const DiskContents unlisted = with(
        used, kCatalogue, R"({"userIRs": [{"name": "c", "exists": true}, {"name": "a", "exists": true}]})");
    const auto nothing = [](Amplifier&) { return true; };
    const auto upload = [](const char* name, std::size_t bytes) {
        return [=](Amplifier& amp) {
            amp.userIRs->addUserIR(name, std::string(bytes, 'n'));
            return true;
        };
    };
    const auto taper = [](Amplifier& amp) {
        amp.settings->setReverbTaperType(3);
        return true;
    };
    const auto bright = [](Amplifier& amp) {
        amp.settings->setVibratoChannelBright(true);
        return true;
    };
    const auto move = [](Amplifier& amp) {
        amp.userIRs->moveUserIR(1, 3);
        return true;
    };
    const auto remove = [](Amplifier& amp) {
        amp.userIRs->removeUserIR(2);
        return true;
    };
    const auto restore = [](Amplifier& amp) { return amp.info.factoryRestore(); };
    const std::string a = "/mnt/user-data/userIRs/a.wav";
    const std::string b = "/mnt/user-data/userIRs/b.wav";
    const std::string d = "/mnt/user-data/userIRs/d.wav";
    return {
        {"the first start", fresh, true, nothing, {kSettings}},
        {"a start with settings of an older schema", olderSettings, true, nothing, {kSettings}},
        {"a start with settings that do not parse", with(used, kSettings, "{"), true, nothing, {kSettings}},
        {"the reverb taper", used, false, taper, {kSettings}},
        {"the bright switch", used, false, bright, {kSettings}},
        {"the cabinet's first save", fresh, false, editAndSaveCabinet, {kCabinet}},
        {"the cabinet's next save", used, false, editAndSaveCabinet, {kCabinet}},
        {"the first upload", fresh, false, upload("d", 900), {d}},
        {"another upload", used, false, upload("d", 900), {d}},
        {"an upload over what a cut left", interrupted, false, upload("d", 900), {d}},
        {"an upload over a response that no record tells of", unlisted, false, upload("b", 300), {b}},
        {"a move", used, false, move, {}},
        {"a removal", used, false, remove, {a}},
        {"a factory restore", used, false, restore, {kSettings, kCabinet, kCatalogue, a, b}, false},
    };
}
