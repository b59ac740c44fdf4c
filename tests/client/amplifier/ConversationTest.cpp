// The program against the amplifier itself: its connection, its processor, its handlers and its models, on
// threads of their own, in time that passes while the client waits.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

#include "MemoryHid.h"
#include "client/tool/Tool.h"
#include "proj/handlers/MessageHandler.h"
#include "proj/models/CabsimModel.h"
#include "proj/models/FactoryIRModel.h"
#include "proj/models/GlobalSettingsModel.h"
#include "proj/models/Model.h"
#include "proj/models/ProductFolders.h"
#include "proj/models/SystemInfoModel.h"
#include "proj/models/UserIRModel.h"
#include "proj/network/ClientManager.h"
#include "proj/network/MessageProcessor.h"
#include "support/PacedClock.h"
#include "support/SoundFileBytes.h"
#include "support/SteppedClientClock.h"
#include "support/card/EngineOnCard.h"

namespace {

// Everything that the program has for a client.
struct Amplifier {
    explicit Amplifier(tvk::Storage& storage)
        : factoryIRs(engine.model(), storage),
          userIRs(storage),
          settings(storage),
          cabsims(engine.model(), settings, factoryIRs, storage),
          clients(hid.transport()),
          systemInfo(storage),
          handler(clients, systemInfo, cabsims, factoryIRs, userIRs, settings, storage),
          processor(clients, handler) {}
    ~Amplifier() { time.release(); }
    Amplifier(const Amplifier&) = delete;
    Amplifier& operator=(const Amplifier&) = delete;

    // Of a client whose waits let the amplifier's time pass.
    SteppedClientClock clientClock() {
        return {[this] { return time.now(); },
                [this](std::chrono::milliseconds step) {
                    hid.tick();
                    time.advance(step);
                }};
    }

    EngineOnCard engine;
    PacedClock time{2};  // the connection's thread and the processor's
    tvk::FactoryIRModel factoryIRs;
    tvk::UserIRModel userIRs;
    tvk::GlobalSettingsModel settings;
    tvk::CabsimModel cabsims;
    MemoryHid hid;
    tvk::ClientManager clients;
    tvk::SystemInfoModel systemInfo;
    tvk::MessageHandler handler;
    tvk::MessageProcessor processor;
};

class ClientConversation : public ProductFolders {
protected:
    struct Result {
        int status;
        std::string out;
        std::string errors;
    };

    ClientConversation() {
        write("/home/root/product_profile.json", R"({"productFamily": "slatePanel"})");
        write("/home/root/factoryIRsCorvinSlate.json",
              R"({"factoryIRs": [{"name": "Two"}, {"name": "Four"}]})");
        write("/home/root/release-version", "2.0.18\n");
        amplifier.emplace(storage);
    }

    void becomeCorvin() {
        amplifier->engine.model().panel().productId.set(1);
        amplifier->factoryIRs.amplifierChanged(1);
        amplifier->cabsims.amplifierChanged(1);
    }

    Result run(std::vector<std::string> args) {
        args.insert(args.begin(), {"--hid", "memory"});
        std::ostringstream out;
        std::ostringstream errors;
        const tvk::client::Environment environment{
            out,
            errors,
            false,
            [this](const std::string&) { return amplifier->hid.link(); },
            [this](const std::string&) {
                return std::make_unique<SteppedClientClock>(amplifier->clientClock());
            },
            stop,
            [] {}};
        const int status = tvk::client::runTool(args, environment);
        return {status, out.str(), errors.str()};
    }
    Result play(const std::string& script) {
        soundfile::write(folder.file("script"), script);
        return run({"run", "--keep-going", folder.file("script")});
    }
    // What messages in text form are answered with.
    Result raw(const std::string& messages) {
        soundfile::write(folder.file("messages"), messages);
        return run({"raw", folder.file("messages")});
    }
    void expectDone(const Result& result, const std::string& out) {
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_EQ(result.out, out);
    }

    // A file of that many 16-bit samples.
    std::string wav(const std::string& name, std::size_t samples) const {
        soundfile::Wav file;
        file.data = std::string(2 * samples, 'x');
        soundfile::write(folder.file(name), file.bytes());
        return folder.file(name);
    }
    void restart() {
        amplifier.reset();
        amplifier.emplace(storage);
    }
    void pass(std::chrono::milliseconds time) { amplifier->time.advance(time); }

    std::optional<Amplifier> amplifier;
    const std::atomic<bool> stop{false};
};

std::string slotLine(int slot, const char* kind, const std::string& name, double hpf, double lpf,
                     double level, bool isDirty) {
    return tvk::formatText("slot %d  %-7s \"%s\"  hpf %g Hz  lpf %g Hz  level %g dB%s\n", slot, kind,
                           name.c_str(), hpf, lpf, level, isDirty ? "  (not saved)" : "");
}

std::string defaultSlot(int slot) {
    return slotLine(slot, "factory", "None", 20, 20000, -5, false);
}

}  // namespace

TEST_F(ClientConversation, TellsWhatTheAmplifierIs) {
    becomeCorvin();
    expectDone(run({"amp"}), "amplifier 1 (Corvin)\n");
    expectDone(run({"firmware"}), "firmware 2.0.18\n");
    expectDone(run({"profile"}), "product family slatePanel\n");
    expectDone(run({"factory", "list"}), "Two\nFour\n");
}

TEST_F(ClientConversation, AnAmplifierThatDoesNotKnowDoesNotAnswer) {
    const Result result = run({"amp"});
    EXPECT_EQ(result.status, 3);
    EXPECT_NE(result.errors.find("has not answered getCurrentAmplifier for five seconds"), std::string::npos);
    EXPECT_EQ(run({"factory", "list"}).status, 0);
}

TEST_F(ClientConversation, ASecondProgramGoesOnWithTheConnectionOfTheFirst) {
    expectDone(run({"connect", "--seconds", "0.1"}), "connected as client 1\n");
    expectDone(run({"connect", "--seconds", "0.1"}),
               "connected already: the connection of an earlier program goes on\n");
    pass(std::chrono::milliseconds(5100));
    expectDone(run({"connect", "--seconds", "0.1"}), "connected as client 1\n");
}

TEST_F(ClientConversation, HeartbeatsKeepTheConnectionForAsLongAsItIsWanted) {
    expectDone(run({"connect", "--seconds", "60"}), "connected as client 1\n");
    EXPECT_TRUE(amplifier->clients.isConnectionOpen(1));
}

TEST_F(ClientConversation, ResponsesAreUploadedListedMovedAndRemoved) {
    const std::string room = wav("room.wav", 1000);
    expectDone(run({"ir", "list"}), "no user responses\n");
    expectDone(run({"ir", "add", room}), "stored \"room\"\n");
    expectDone(run({"ir", "add", room, "Hall"}), "stored \"Hall\"\n");
    std::ostringstream bytes;
    bytes << std::ifstream(room, std::ios::binary).rdbuf();
    EXPECT_EQ(read("/mnt/user-data/userIRs/room.wav"), bytes.str());
    expectDone(run({"ir", "move", "2", "1"}), "moved slot 2 to slot 1\n");
    expectDone(run({"ir", "list"}), " 1  Hall\n 2  room\n");
    expectDone(run({"ir", "remove", "2"}), "removed slot 2\n");
    EXPECT_FALSE(exists("/mnt/user-data/userIRs/room.wav"));
    EXPECT_EQ(run({"ir", "move", "1", "2"}).status, 1);
    EXPECT_EQ(run({"ir", "remove", "2"}).status, 1);
    restart();
    expectDone(run({"ir", "list"}), " 1  Hall\n");
}

TEST_F(ClientConversation, ASavedEditOutlivesTheAmplifierAndAnotherLapses) {
    expectDone(run({"ir", "add", wav("room.wav", 100)}), "stored \"room\"\n");
    expectDone(run({"cab", "assign", "1", "room", "--save"}),
               "slot 1 holds the user response \"room\"\n" + defaultSlot(0) +
                   slotLine(1, "user", "room", 20, 20000, -5, true) + defaultSlot(2) + defaultSlot(0) +
                   slotLine(1, "user", "room", 20, 20000, -5, false) + defaultSlot(2));
    const Result unsaved = run({"cab", "lpf", "1", "5000"});
    EXPECT_EQ(unsaved.status, 0);
    EXPECT_NE(unsaved.errors.find("not saved and lapses"), std::string::npos);
    restart();
    expectDone(run({"cab", "list"}),
               defaultSlot(0) + slotLine(1, "user", "room", 20, 20000, -5, false) + defaultSlot(2));
}

TEST_F(ClientConversation, SyncGoesBackToWhatWasSaved) {
    const Result result = play("ir add " + wav("room.wav", 100) +
                               "\ncab assign 0 room\ncab hpf 0 100 --save\ncab hpf 0 200\ncab sync\n");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_NE(result.out.find("slot 0: hpf 200 Hz\n"), std::string::npos);
    EXPECT_TRUE(result.out.ends_with(slotLine(0, "user", "room", 100, 20000, -5, false) + defaultSlot(1) +
                                     defaultSlot(2)))
        << result.out;
}

TEST_F(ClientConversation, ValuesBeyondTheLimitsComeBackLimited) {
    for (const auto& [words, line] : std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{"cab", "hpf", "0", "5"}, "slot 0: hpf 20 Hz"},
             {{"cab", "hpf", "0", "inf"}, "slot 0: hpf 500 Hz"},
             {{"cab", "lpf", "1", "1"}, "slot 1: lpf 1000 Hz"},
             {{"cab", "lpf", "1", "90000"}, "slot 1: lpf 20000 Hz"},
             {{"cab", "level", "2", "3"}, "slot 2: level 0 dB"},
             {{"cab", "level", "2", "-100"}, "slot 2: level -36 dB"}}) {
        const Result result = run(words);
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_EQ(result.out.substr(0, result.out.find('\n')), line);
    }
}

TEST_F(ClientConversation, EveryRefusalOfTheAmplifierIsStatusOne) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"setCabsimSelection { cabsimEnum: 3 }", "no such cabinet slot: there are 0, 1 and 2\n"},
        {"assignFactoryIRToCabsim { cabsimEnum: 3 irName: \"Two\" }",
         "the factory response was not assigned"},
        {"assignUserIRToCabsim { cabsimEnum: 3 irName: \"Two\" }", "the user response was not assigned"},
        {"assignFactoryIRToCabsim { irName: \"../x\" }", "the factory response was not assigned"},
        {"setCabsimHpf { cabsimEnum: 3 value: 100 }", "the high-pass was not set"},
        {"setCabsimHpf { value: nan }", "the high-pass was not set"},
        {"setCabsimLpf { value: nan }", "the low-pass was not set"},
        {"setCabsimLevel { value: nan }", "the level was not set"},
        {"moveUserIR { oldSlot: 1 newSlot: 1 }", "the response was not moved"},
        {"removeUserIR { slot: 1 }", "the response was not removed"},
        {"addUserIR { name: \"empty\" }", "\"empty\" was not stored\n"},
        {"addUserIR { name: \"a/b\" irData: \"x\" }", "\"a/b\" was not stored\n"},
        {"addUserIR { name: \"None\" irData: \"x\" }", "\"None\" was not stored\n"},
        {"reverbTaperType { value: 4294967295 }", "the reverb taper was not set\n"},
        {"connectionMessage { connectionRequest {} }", "connected already"},
    };
    for (const auto& [message, reason] : rows) {
        const Result result = raw(message);
        EXPECT_EQ(result.status, 1) << message << result.errors;
        EXPECT_TRUE(result.out.starts_with(reason)) << message << '\n' << result.out;
    }
    files.unwritable = "userCabsimConfig.json.tmp";
    EXPECT_EQ(run({"cab", "save"}).status, 1);
}

TEST_F(ClientConversation, AFullListRefusesOneMoreAndTakesAReplacement) {
    const std::string room = wav("room.wav", 10);
    std::string script;
    for (int i = 0; i < 50; ++i)
        script += "ir add " + room + " IR" + std::to_string(i) + "\n";
    EXPECT_EQ(play(script).status, 0);
    const Result result = run({"ir", "add", room});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "the list of responses is full: remove one first\n\"room\" was not stored\n");
    expectDone(run({"ir", "add", room, "IR7"}), "stored \"IR7\"\n");
}

TEST_F(ClientConversation, SettingsAreKept) {
    expectDone(run({"settings"}), "reverb-taper 0\nvibrato-bright off\n");
    expectDone(run({"settings", "vibrato-bright", "on", "reverb-taper", "2"}),
               "vibrato-bright on\nreverb-taper 2\n");
    restart();
    expectDone(run({"settings"}), "reverb-taper 2\nvibrato-bright on\n");
}

TEST_F(ClientConversation, AFactoryRestoreDeletesWhatWasStored) {
    expectDone(run({"ir", "add", wav("room.wav", 10)}), "stored \"room\"\n");
    EXPECT_EQ(run({"factory-restore"}).status, 2);
    EXPECT_TRUE(exists("/mnt/user-data/userIRs/room.wav"));
    EXPECT_EQ(run({"factory-restore", "--yes"}).status, 0);
    EXPECT_FALSE(exists("/mnt/user-data/userIRs/room.wav"));
    restart();
    files.undeletable = "room.wav";
    expectDone(run({"ir", "add", wav("room.wav", 10)}), "stored \"room\"\n");
    EXPECT_EQ(run({"factory-restore", "--yes"}).status, 1);
}

TEST_F(ClientConversation, ABatchIsCarriedOutWhenItsLastMessageComes) {
    const Result result =
        raw("batchStatus: 1 setCabsimHpf { value: 100 }\n---\n"
            "getCabsimSelection { request: true }\n---\n"
            "batchStatus: 2 setCabsimLpf { value: 5000 }\n---\n"
            "batchStatus: 3 saveCurrentState { dummy: true }\n");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(result.out.ends_with(slotLine(0, "factory", "None", 100, 5000, -5, false) + defaultSlot(1) +
                                     defaultSlot(2)))
        << result.out;
    raw("batchStatus: 1 setCabsimHpf { value: 300 }\n");
    EXPECT_EQ(run({"cab", "list"}).out.find("hpf 300"), std::string::npos);
}

TEST_F(ClientConversation, FiftyUploadsOfFullSizeTakeLittleMoreThanTheirFrames) {
    // With its name as many samples as a message holds.
    const std::string full = wav("full.wav", 16350);
    std::string script;
    for (int i = 0; i < 50; ++i)
        script += "ir add " + full + " Full" + std::to_string(i) + "\n";
    EXPECT_EQ(run({"connect", "--seconds", "0.1"}).status, 0);
    const int before = amplifier->hid.elapsedMs();
    EXPECT_EQ(play(script).status, 0);
    const int took = amplifier->hid.elapsedMs() - before;
    RecordProperty("milliseconds", took);
    EXPECT_GE(took, 50 * 546);
    EXPECT_LE(took, 50 * (547 + 20));
}

TEST_F(ClientConversation, AMessageOfAProgramThatWasKilledDoesNotHarmTheNext) {
    // The first half of an upload.
    const auto link = amplifier->hid.link();
    SteppedClientClock clock = amplifier->clientClock();
    tvk::client::Report report{};
    report[0] = '3';
    report[2] = 60;
    EXPECT_TRUE(link->send(report));
    clock.receive(*link, report, std::chrono::milliseconds(10));
    expectDone(run({"firmware"}), "firmware 2.0.18\n");
}

TEST_F(ClientConversation, AnAmplifierWhoseRepliesNobodyCarriesIsStatusThree) {
    amplifier->hid.stopHost();
    EXPECT_EQ(run({"firmware"}).status, 3);
}
