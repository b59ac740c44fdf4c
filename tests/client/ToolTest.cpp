// What the verbs have beyond a request and its reply.
#include <nlohmann/json.hpp>

#include "ToolFixture.h"

using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

class ToolTest : public ToolFixture {
protected:
    ToolTest() {
        for (const char* edit : {"setCabsimHpf", "setCabsimLpf", "setCabsimLevel"})
            onRequest(std::string(edit) + " {}", {std::string(edit) + " { value: 100 }", kList});
        onRequest("assignUserIRToCabsim {}", {"assignUserIRToCabsim { irName: \"Room\" }", kList});
        onRequest("setCabsimSelection {}", {"cabsimSelectionChanged {}", kList});
        onRequest("saveCurrentState {}", {kList});
        onRequest("syncCurrentState {}", {kList});
        onRequest("getCurrentAmplifier {}", {"currentAmplifierResponse { dummy: true }"});
        onRequest("addUserIR {}", {"userIRAdded { name: \"room\" }"});
        onRequest("moveUserIR {}", {"userIRError { error: 2 }"});
    }

    std::string script(const std::string& text) const { return fileWith("script.txt", text); }
    std::string wav(const std::string& name, std::size_t samples) const {
        soundfile::Wav file;
        file.data = std::string(2 * samples, 'x');
        return fileWith(name, file.bytes());
    }

    static constexpr const char* kList = "cabsimIRListResponse { dummy: true }";
    static constexpr const char* kUnsaved =
        "tarvek-client: The edit is not saved and lapses with the connection, five seconds after its last "
        "message; --save keeps it, or cab save in the same run.\n";
    static constexpr const char* kUnheld =
        "tarvek-client: The selection lapses with the connection, five seconds after its last message; then "
        "the panel's switch selects.\n";
};

const std::vector<std::vector<std::string>>& edits() {
    static const std::vector<std::vector<std::string>> all = {{"cab", "hpf", "0", "100"},
                                                              {"cab", "lpf", "0", "100"},
                                                              {"cab", "level", "0", "100"},
                                                              {"cab", "assign", "0", "Room"}};
    return all;
}

}  // namespace

TEST_F(ToolTest, AnEditThatIsNotSavedSaysThatItLapses) {
    for (const auto& edit : edits()) {
        const Result result = run(edit);
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_EQ(result.errors, kUnsaved);
    }
}

TEST_F(ToolTest, SaveSavesAnEditAfterIt) {
    for (const auto& edit : edits()) {
        amplifier.received.clear();
        std::vector<std::string> words = edit;
        words.emplace_back("--save");
        const Result result = run(words);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.errors, "");
        ASSERT_EQ(requests().size(), 2u);
        EXPECT_EQ(requests()[1], textOf(messageOf("saveCurrentState { dummy: true }")));
    }
}

TEST_F(ToolTest, ASaveThatIsRefusedLeavesTheEditUnsaved) {
    onRequest("saveCurrentState {}", {"cabsimError { error: 4 }"});
    const Result result = run({"cab", "hpf", "0", "100", "--save"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors,
              std::string("tarvek-client: refused: the cabinet slots were not saved\n") + kUnsaved);
}

TEST_F(ToolTest, ASelectionSaysThatItLapses) {
    EXPECT_EQ(run({"cab", "select", "0"}).errors, kUnheld);
}

TEST_F(ToolTest, UnionOfOptionsBeforeAndBehindTheVerb) {
    const Result result = runBare({"amp", "--hid", "fake", "--json"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.out, "{\"currentAmplifierResponse\":{\"dummy\":true,\"currentAmpEnum\":0}}\n");
}

TEST_F(ToolTest, SettingsWithoutWordsShowsBoth) {
    onRequest("reverbTaperTypeRequest {}", {"reverbTaperType { value: 3 }"});
    onRequest("vibratoChannelBrightRequest {}", {"vibratoChannelBright {}"});
    const Result result = run({"settings"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "reverb-taper 3\nvibrato-bright off\n");
}

TEST_F(ToolTest, SettingsSetsWhatItIsGivenInOrder) {
    onRequest("reverbTaperType {}", {"reverbTaperType { value: 3 }"});
    onRequest("vibratoChannelBright {}", {"vibratoChannelBright { value: true }"});
    const Result result = run({"settings", "vibrato-bright", "on", "reverb-taper", "3"});
    EXPECT_EQ(result.out, "vibrato-bright on\nreverb-taper 3\n");
    EXPECT_EQ(result.errors, "");
}

TEST_F(ToolTest, NotANumberAndInfinitiesReachTheAmplifier) {
    run({"cab", "hpf", "0", "nan"});
    run({"cab", "lpf", "0", "inf"});
    EXPECT_TRUE(std::isnan(amplifier.received[1].setcabsimhpf().value()));
    EXPECT_TRUE(std::isinf(amplifier.received[3].setcabsimlpf().value()));
}

TEST_F(ToolTest, BadUseIsStatusTwoAndOneLineAndNothingIsSent) {
    const std::vector<std::vector<std::string>> uses = {
        {},
        {"nonsense"},
        {"cab"},
        {"cab", "nonsense"},
        {"cab", "hpf"},
        {"cab", "hpf", "0"},
        {"cab", "hpf", "x", "100"},
        {"cab", "hpf", "-1", "100"},
        {"cab", "hpf", "0", "loud"},
        {"cab", "hpf", "0", "1", "2"},
        {"cab", "assign", "0", ""},
        {"cab", "assign", "0", "a/b"},
        {"cab", "assign", "0", ".."},
        {"cab", "assign", "0", std::string(248, 'n')},
        {"ir", "move", "1"},
        {"ir", "add"},
        {"ir", "add", "/nowhere/room.wav"},
        {"ir", "add", "/tmp"},
        {"factory-restore"},
        {"settings", "reverb-taper"},
        {"settings", "reverb-taper", "-1"},
        {"settings", "reverb-taper", "4294967296"},
        {"settings", "vibrato-bright", "yes"},
        {"settings", "volume", "1"},
        {"raw", "/nowhere/messages"},
        {"run", "/nowhere/script"},
        {"connect", "--seconds", "-1"},
        {"connect", "--seconds", "soon"},
        {"amp", "--loud"},
    };
    for (const auto& use : uses) {
        const Result result = run(use);
        EXPECT_EQ(result.status, 2) << testing::PrintToString(use);
        EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1)
            << testing::PrintToString(use) << result.errors;
        EXPECT_EQ(result.out, "");
    }
    EXPECT_EQ(amplifier.now(), milliseconds(0));
    const Result result = runBare({"amp"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors,
              "tarvek-client: --hid PATH is missing; name the socket of tarvek-desk's ready line or a "
              "/dev/hidrawN\n");
}

TEST_F(ToolTest, AWordThatIsNoVerbIsNamed) {
    EXPECT_EQ(run({"cab", "nonsense"}).errors,
              "tarvek-client: \"nonsense\" is not understood here; --help tells how it is used\n");
}

TEST_F(ToolTest, AHangingUpAmplifierIsStatusThree) {
    amplifier.answer = [this](const TarvekMessage&) {
        amplifier.hangUp();
        return FakeAmplifier::Messages();
    };
    const Result result = run({"amp", "--json"});
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(nlohmann::json::parse(result.out).at("failure").at("status"), 3);
    EXPECT_NE(result.errors.find("closed the link"), std::string::npos);
}

TEST_F(ToolTest, AnUploadCarriesTheFileUnderItsStemAndShowsProgress) {
    const std::string file = wav("room.wav", 10000);
    const Result result = run({"ir", "add", file});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.out, "stored \"room\"\n");
    const TarvekMessage& request = amplifier.received.back();
    EXPECT_EQ(request.adduserir().name(), "room");
    std::ostringstream bytes;
    bytes << std::ifstream(file, std::ios::binary).rdbuf();
    EXPECT_EQ(request.adduserir().irdata(), bytes.str());
    const std::size_t frames = (request.ByteSizeLong() + 59) / 60;
    const std::string end = "room: " + std::to_string(frames) + " of " + std::to_string(frames) + " frames\n";
    EXPECT_TRUE(result.errors.ends_with(end)) << result.errors;
    EXPECT_GE(std::count(result.errors.begin(), result.errors.end(), '\n'), 10) << result.errors;
    // A frame a millisecond, and next to nothing else.
    EXPECT_LE(amplifier.now(), milliseconds(frames + 20));
}

TEST_F(ToolTest, AnUploadSaysWhatTheAmplifierLeavesOut) {
    const Result result = run({"ir", "add", wav("room.wav", 5000)});
    EXPECT_EQ(result.errors.substr(0, result.errors.find('\n')),
              "tarvek-client: room: The amplifier plays the first 4096 of the 5000 samples (93 ms).");
}

TEST_F(ToolTest, AnUploadIntoAFullListIsRefusedForThatReason) {
    onRequest("addUserIR {}", {"userIRError { error: 1 }", "addUserIRFailed { name: \"room\" }"});
    const Result result = run({"ir", "add", wav("file.wav", 10), "room"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.errors.find(
                  "tarvek-client: refused: the list of responses is full: remove one first; \"room\" was not "
                  "stored\n"),
              std::string::npos)
        << result.errors;
}

TEST_F(ToolTest, ConnectStaysAndPrintsWhatComes) {
    amplifier.onHeartbeat = {messageOf("cabsimSelectionChanged { cabsimEnum: 2 }")};
    const Result result = run({"connect", "--seconds", "2.5"});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(amplifier.isOpen);
    EXPECT_GE(amplifier.now(), milliseconds(2500));
    EXPECT_EQ(result.out, "connected as client 1\nslot 2 is selected\nslot 2 is selected\n");
    EXPECT_TRUE(isCatchingSignals);
}

TEST_F(ToolTest, ConnectWithJsonPrintsEventsAsTheyAre) {
    amplifier.onHeartbeat = {messageOf("cabsimSelectionChanged { cabsimEnum: 2 }")};
    const Result result = run({"connect", "--seconds", "1.5", "--json"});
    EXPECT_EQ(result.out,
              "{\"connectionMessage\":{\"connectionResponse\":{\"clientId\":1}}}\n"
              "{\"cabsimSelectionChanged\":{\"cabsimEnum\":2}}\n");
}

TEST_F(ToolTest, ConnectComesBackAfterALapse) {
    amplifier.lapseAt = seconds(3);
    const Result result = run({"connect", "--seconds", "10"});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(amplifier.isOpen);
    EXPECT_EQ(result.out, "connected as client 1\nnot connected\n");
    EXPECT_EQ(
        result.errors,
        "tarvek-client: The amplifier has ended the connection, and what was not saved is undone; connect "
        "again.\n");
}

TEST_F(ToolTest, ConnectEndsWhenItIsStopped) {
    stop = true;
    EXPECT_EQ(run({"connect"}).status, 0);
    EXPECT_LT(amplifier.now(), seconds(1));
}

TEST_F(ToolTest, RunPlaysAllVerbsInOneConnection) {
    const Result result = run({"run", script("# an evening\n"
                                             "amp\n"
                                             "\n"
                                             "cab assign 0 \"Room\"   # with a comment\n"
                                             "cab hpf 0 100\n"
                                             "cab save\n"
                                             "amp")});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(requests().size(), 5u);
    EXPECT_EQ(std::count_if(amplifier.received.begin(), amplifier.received.end(),
                            [](const TarvekMessage& message) { return message.has_connectionmessage(); }),
              1);
    EXPECT_EQ(result.errors, "");
}

TEST_F(ToolTest, RunSaysOnceAtTheEndThatAnEditLapses) {
    EXPECT_EQ(run({"run", script("cab hpf 0 100\ncab lpf 0 100\n")}).errors, kUnsaved);
    EXPECT_EQ(run({"run", script("cab hpf 0 100\ncab sync\n")}).errors, "");
}

TEST_F(ToolTest, RunEndsAtTheFirstVerbThatFails) {
    const Result result = run({"run", script("amp\nir move 9 1\namp\n")});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(requests().size(), 2u);
    EXPECT_EQ(
        result.errors,
        "tarvek-client: line 2: refused: the response was not moved: there is no such slot (they count from "
        "1)\n");
}

TEST_F(ToolTest, RunKeepsGoingWhenToldAndEndsWithTheFirstFailure) {
    onRequest("removeUserIR {}", {});
    const Result result = run({"run", "--keep-going", script("ir move 9 1\nir remove 1\namp\n")});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(requests().size(), 3u);
    EXPECT_EQ(result.out.substr(result.out.find('\n') + 1), "amplifier 0 (Arvel)\n");
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 2);
}

TEST_F(ToolTest, RunUnderstandsEveryLineBeforeItSendsOne) {
    for (const char* bad : {"cab hpf 0", "nonsense", "cab assign 0 \"open", "run other.txt", "amp --hid x",
                            "ir add /nowhere.wav", "amp --help"}) {
        const std::string file = script(std::string("amp\n") + bad + "\n");
        const Result result = run({"run", file});
        EXPECT_EQ(result.status, 2) << bad;
        EXPECT_TRUE(result.errors.starts_with("tarvek-client: " + file + ", line 2: ")) << result.errors;
    }
    EXPECT_EQ(amplifier.reports, 0u);
}

TEST_F(ToolTest, RawSendsMessagesAsTheyAreAndPrintsWhatComes) {
    const std::string file = fileWith("messages.txt",
                                      "# which amplifier\n"
                                      "getCurrentAmplifier { dummy: true }\n"
                                      "---\n"
                                      "IGNORE_THIS_PADDING: true\n"
                                      "batchStatus: 7\n"
                                      "setCabsimHpf { cabsimEnum: 0 value: nan }\n");
    const Result result = run({"raw", file, "--json"});
    EXPECT_EQ(result.status, 0) << result.errors;
    ASSERT_EQ(requests().size(), 2u);
    EXPECT_EQ(requests()[0], "getCurrentAmplifier { dummy: true }");
    EXPECT_EQ(requests()[1], "IGNORE_THIS_PADDING: true batchStatus: 7 setCabsimHpf { value: nan }");
    EXPECT_EQ(result.out,
              "{\"currentAmplifierResponse\":{\"dummy\":true,\"currentAmpEnum\":0}}\n"
              "{\"setCabsimHpf\":{\"cabsimEnum\":0,\"value\":100}}\n"
              "{\"cabsimIRListResponse\":{\"dummy\":true,\"record\":[]}}\n");
}

TEST_F(ToolTest, RawWaitsForTheAnswersOfAWholeBatch) {
    const std::string file = fileWith("batch.txt",
                                      "batchStatus: 1 getCurrentAmplifier {}\n---\n"
                                      "batchStatus: 2 getCurrentAmplifier {}\n---\n"
                                      "batchStatus: 3 getCurrentAmplifier {}\n");
    FakeAmplifier::Messages batch;
    amplifier.answer = [&batch](const TarvekMessage& request) {
        batch.push_back(messageOf("currentAmplifierResponse {}"));
        return request.batchstatus() == 3 ? batch : FakeAmplifier::Messages();
    };
    const Result result = run({"raw", file});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "amplifier 0 (Arvel)\namplifier 0 (Arvel)\namplifier 0 (Arvel)\n");
}

TEST_F(ToolTest, RawDoesNotWaitForWhatABatchWithoutEndHoldsBackOrForWhatIsNeverAnswered) {
    amplifier.answer = [](const TarvekMessage&) { return FakeAmplifier::Messages(); };
    const std::string file = fileWith("messages.txt",
                                      "batchStatus: 1 getCurrentAmplifier {}\n---\n"
                                      "productProfileResponse {}\n---\n"
                                      "IGNORE_THIS_PADDING: true\n");
    const Result result = run({"raw", file});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(requests().size(), 3u);
    EXPECT_LT(amplifier.now(), milliseconds(200));
}

TEST_F(ToolTest, RawIsRefusedWhenOneOfItsMessagesIs) {
    const std::string file = fileWith("messages.txt", "moveUserIR {}\n---\ngetCurrentAmplifier {}\n");
    const Result result = run({"raw", file});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.out.find("amplifier 0 (Arvel)\n"), std::string::npos);
}

TEST_F(ToolTest, RawWithoutConnectingIsToldThatItIsNotOpen) {
    const std::string file = fileWith("messages.txt", "getCurrentAmplifier {}\n");
    const Result result = run({"raw", "--no-connect", file});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "not connected\n");
    EXPECT_FALSE(amplifier.isOpen);
}

TEST_F(ToolTest, RawNamesThePlaceOfWhatItDoesNotUnderstand) {
    const std::string large = "addUserIR { irData: \"" + std::string(32768, 'x') + "\" }";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"getCurrentAmplifier {\n  volume: 1\n}", ", line 2, column 9: "},
        {"getCurrentAmplifier {}\n---\n\nnonsense {}", ", line 4, column 10: "},
        {"getCurrentAmplifier {", ", line 2, column 1: "},
        {"getCurrentAmplifier {}\n---\n# nothing\n", ", line 3: a message of 0 bytes; it takes 1 to 32768"},
        {large, ", line 1: a message of 32777 bytes; it takes 1 to 32768"},
        {"", ", line 1: a message of 0 bytes"},
    };
    for (const auto& [text, place] : cases) {
        const std::string file = fileWith("messages.txt", text);
        const Result result = run({"raw", file});
        EXPECT_EQ(result.status, 2);
        EXPECT_TRUE(result.errors.starts_with("tarvek-client: " + file + place)) << result.errors;
        EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
    }
    EXPECT_EQ(amplifier.reports, 0u);
}

TEST_F(ToolTest, TextsOfTheAmplifierArePrintedEscaped) {
    onRequest("userIRListRequest {}",
              {"userIRListResponse { record { name: \"\\033[2Jclear\\r\\nme\" exists: true } }"});
    EXPECT_EQ(run({"ir", "list"}).out, " 1  \\x1B[2Jclear\\x0D\\x0Ame\n");
    const std::string json = run({"ir", "list", "--json"}).out;
    EXPECT_EQ(nlohmann::json::parse(json).at("userIRListResponse").at("record")[0].at("name"),
              "\033[2Jclear\r\nme");
    EXPECT_EQ(json.find('\033'), std::string::npos);
}

TEST_F(ToolTest, HelpOfTheProgramTellsItsStatuses) {
    const Result result = runBare({"--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.out.find("Status: 0 done, 1 refused by the amplifier, 2 bad use, 3 no link"),
              std::string::npos);
}
