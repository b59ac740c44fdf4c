// Every verb: what it sends, what it makes of the answers, in words and as JSON.
#include <google/protobuf/util/json_util.h>
#include <nlohmann/json.hpp>

#include "ToolFixture.h"

namespace {

constexpr const char* kList =
    "cabsimIRListResponse { dummy: true"
    " record { isFactory: true irName: \"Corvin 2x12\" hpf: 20 lpf: 20000 level: -5 }"
    " record { cabsimId: 1 irName: \"Big\\nroom\" isDirty: true hpf: 99.5 lpf: 8000 level: -0.1 }"
    " record { cabsimId: 2 isFactory: true irName: \"None\" hpf: 20 lpf: 20000 level: -5 } }";
constexpr const char* kListWords =
    "slot 0  factory \"Corvin 2x12\"  hpf 20 Hz  lpf 20000 Hz  level -5 dB\n"
    "slot 1  user    \"Big\\x0Aroom\"  hpf 99.5 Hz  lpf 8000 Hz  level -0.1 dB  (not saved)\n"
    "slot 2  factory \"None\"  hpf 20 Hz  lpf 20000 Hz  level -5 dB\n";

struct Verb {
    std::vector<std::string> words;
    std::string request;
    std::vector<std::string> replies;
    std::string shown;
    // The answer of an amplifier that refuses; empty where none does.
    std::vector<std::string> refusal{};
    std::string reason{};
};

void PrintTo(const Verb& verb, std::ostream* out) {
    for (const std::string& word : verb.words)
        *out << word << ' ';
}

const std::vector<Verb>& verbs() {
    static const std::vector<Verb> all = {
        {{"amp"},
         "getCurrentAmplifier { dummy: true }",
         {"currentAmplifierResponse { dummy: true currentAmpEnum: 3 }"},
         "amplifier 3 (Sorrel)\n"},
        {{"firmware"},
         "currentFwRequest { dummy: true }",
         {"currentFwResponse { fwVersion: \"2.0.18\" }"},
         "firmware 2.0.18\n"},
        {{"profile"},
         "productProfileRequest { request: true }",
         {"productProfileResponse { productFamily: \"slatePanel\" }"},
         "product family slatePanel\n"},
        {{"ir", "list"},
         "userIRListRequest { dummy: true }",
         {"userIRListResponse { dummy: true record { name: \"Big room\" exists: true } record { name: "
          "\"Gone\" } }"},
         " 1  Big room\n 2  Gone  (its file is missing)\n"},
        {{"ir", "move", "3", "1"},
         "moveUserIR { oldSlot: 3 newSlot: 1 }",
         {"moveUserIR { oldSlot: 3 newSlot: 1 }"},
         "moved slot 3 to slot 1\n",
         {"userIRError { error: 2 }"},
         "the response was not moved: there is no such slot (they count from 1)"},
        {{"ir", "remove", "2"},
         "removeUserIR { slot: 2 }",
         {"removeUserIR { slot: 2 }"},
         "removed slot 2\n",
         {"userIRError { error: 3 }"},
         "the response was not removed: there is no such slot (they count from 1)"},
        {{"factory", "list"},
         "factoryIRListRequest { dummy: true }",
         {"factoryIRListResponse { dummy: true record { name: \"A\" } record { name: \"B\" } }"},
         "A\nB\n"},
        {{"cab", "list"}, "cabsimIRListRequest { dummy: true }", {kList}, kListWords},
        {{"cab", "select"},
         "getCabsimSelection { request: true }",
         {"cabsimSelectionChanged { cabsimEnum: 2 }"},
         "slot 2 is selected\n"},
        {{"cab", "select", "1"},
         "setCabsimSelection { cabsimEnum: 1 }",
         {"cabsimSelectionChanged { cabsimEnum: 1 }", kList},
         std::string("slot 1 is selected\n") + kListWords,
         {"cabsimError { error: 1 }"},
         "no such cabinet slot: there are 0, 1 and 2"},
        {{"cab", "assign", "1", "Big room"},
         "assignUserIRToCabsim { cabsimEnum: 1 irName: \"Big room\" }",
         {"assignUserIRToCabsim { cabsimEnum: 1 irName: \"Big room\" }", kList},
         std::string("slot 1 holds the user response \"Big room\"\n") + kListWords,
         {"cabsimError { error: 3 }"},
         "the user response was not assigned: slots are 0 to 2, and the name has to be one that a response "
         "can "
         "have"},
        {{"cab", "assign", "0", "Corvin 2x12", "--factory"},
         "assignFactoryIRToCabsim { irName: \"Corvin 2x12\" }",
         {"assignFactoryIRToCabsim { irName: \"Corvin 2x12\" }", kList},
         std::string("slot 0 holds the factory response \"Corvin 2x12\"\n") + kListWords,
         {"cabsimError { error: 2 }"},
         "the factory response was not assigned: slots are 0 to 2, and the name has to be one that a "
         "response "
         "can have"},
        {{"cab", "hpf", "0", "5"},
         "setCabsimHpf { value: 5 }",
         {"setCabsimHpf { value: 20 }", kList},
         std::string("slot 0: hpf 20 Hz\n") + kListWords,
         {"cabsimError { error: 6 }"},
         "the high-pass was not set: slots are 0 to 2, values are numbers of Hz"},
        {{"cab", "lpf", "1", "8000"},
         "setCabsimLpf { cabsimEnum: 1 value: 8000 }",
         {"setCabsimLpf { cabsimEnum: 1 value: 8000 }", kList},
         std::string("slot 1: lpf 8000 Hz\n") + kListWords,
         {"cabsimError { error: 7 }"},
         "the low-pass was not set: slots are 0 to 2, values are numbers of Hz"},
        {{"cab", "level", "2", "-6.5"},
         "setCabsimLevel { cabsimEnum: 2 value: -6.5 }",
         {"setCabsimLevel { cabsimEnum: 2 value: -6.5 }", kList},
         std::string("slot 2: level -6.5 dB\n") + kListWords,
         {"cabsimError { error: 8 }"},
         "the level was not set: slots are 0 to 2, values are numbers of dB"},
        {{"cab", "save"},
         "saveCurrentState { dummy: true }",
         {kList},
         kListWords,
         {"cabsimError { error: 4 }"},
         "the cabinet slots were not saved"},
        {{"cab", "sync"},
         "syncCurrentState { dummy: true }",
         {kList},
         kListWords,
         {"cabsimError { error: 5 }"},
         "the saved cabinet slots could not be read"},
        {{"settings", "reverb-taper", "7"},
         "reverbTaperType { value: 7 }",
         {"reverbTaperType { value: 7 }"},
         "reverb-taper 7\n",
         {"globalSettingsError { error: 1 }"},
         "the reverb taper was not set"},
        {{"settings", "vibrato-bright", "on"},
         "vibratoChannelBright { value: true }",
         {"vibratoChannelBright { value: true }"},
         "vibrato-bright on\n",
         {"globalSettingsError { error: 2 }"},
         "vibrato bright was not set"},
        {{"factory-restore", "--yes"},
         "factoryRestoreRequest { dummy: true }",
         {"factoryRestoreResponse { dummy: true isSuccessful: true }"},
         "what users stored is deleted; restart the amplifier for the factory settings\n",
         {"factoryRestoreResponse { dummy: true }"},
         "not all that users stored could be deleted"},
    };
    return all;
}

std::string nameOf(const testing::TestParamInfo<Verb>& info) {
    std::string name;
    for (const std::string& word : info.param.words)
        for (const char character : word + "_")
            name += std::isalnum(static_cast<unsigned char>(character)) ? character : '_';
    return name + std::to_string(info.index);
}

class VerbTest : public ToolFixture, public testing::WithParamInterface<Verb> {
protected:
    std::vector<std::string> wordsAnd(const std::string& option) const {
        std::vector<std::string> words = GetParam().words;
        words.push_back(option);
        return words;
    }
};

INSTANTIATE_TEST_SUITE_P(All, VerbTest, testing::ValuesIn(verbs()), nameOf);

}  // namespace

TEST_P(VerbTest, SendsItsRequestAndEndsOnItsReply) {
    onRequest(GetParam().request, GetParam().replies);
    const Result result = run(GetParam().words);
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(requests(), std::vector<std::string>{textOf(messageOf(GetParam().request))});
    EXPECT_EQ(result.out, GetParam().shown);
    // Nobody waits for longer than the frames take.
    EXPECT_LT(amplifier.now(), std::chrono::milliseconds(50));
}

TEST_P(VerbTest, JsonIsTheMessagesOneALine) {
    onRequest(GetParam().request, GetParam().replies);
    const Result result = run(wordsAnd("--json"));
    EXPECT_EQ(result.status, 0);
    std::istringstream lines(result.out);
    std::string line;
    for (const std::string& reply : GetParam().replies) {
        ASSERT_TRUE(std::getline(lines, line));
        TarvekMessage message;
        ASSERT_TRUE(google::protobuf::util::JsonStringToMessage(line, &message).ok()) << line;
        message.set_ignore_this_padding(true);
        EXPECT_EQ(textOf(message), textOf(messageOf(reply)));
    }
    EXPECT_FALSE(std::getline(lines, line)) << line;
}

TEST_P(VerbTest, ARefusalIsStatusOneWithItsReason) {
    const Verb& verb = GetParam();
    if (verb.refusal.empty()) return;
    onRequest(verb.request, verb.refusal);
    const Result result = run(wordsAnd("--json"));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors.substr(0, result.errors.find('\n')), "tarvek-client: refused: " + verb.reason);
    const std::string last = result.out.substr(result.out.rfind('\n', result.out.size() - 2) + 1);
    const nlohmann::json json = nlohmann::json::parse(last);
    EXPECT_EQ(json.at("failure").at("status"), 1);
    EXPECT_EQ(json.at("failure").at("text"), "refused: " + verb.reason);
}

TEST_P(VerbTest, WithoutAReplyItEndsAfterFiveSecondsWithStatusThree) {
    const Result result = run(GetParam().words);
    EXPECT_EQ(result.status, 3);
    EXPECT_GE(amplifier.now(), std::chrono::seconds(5));
    EXPECT_LT(amplifier.now(), std::chrono::milliseconds(5100));
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
}

TEST_P(VerbTest, WithoutAConnectionItEndsWithStatusThree) {
    amplifier.unplug();
    const Result result = run(GetParam().words);
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.errors,
              "tarvek-client: The amplifier does not answer; it may still be starting, or unplugged.\n");
}

TEST_P(VerbTest, MessagesThatAnswerNothingDoNotDisturbIt) {
    std::vector<std::string> replies = {"cabsimSelectionChanged { cabsimEnum: 77 }",
                                        "userIRAdded { name: \"of another program\" }",
                                        "setCabsimHpf { cabsimEnum: 9 value: 1 }",
                                        "moveUserIR { oldSlot: 9 newSlot: 9 }",
                                        "testMessage { loopbackTest { data: \"x\" } }",
                                        "connectionMessage { connectionError { errorEnum: 1 } }",
                                        "",
                                        "getCabsimSelection { request: true }"};
    if (GetParam().request.starts_with("getCabsimSelection")) replies.erase(replies.begin());
    replies.insert(replies.end(), GetParam().replies.begin(), GetParam().replies.end());
    onRequest(GetParam().request, replies);
    const Result result = run(GetParam().words);
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.out, GetParam().shown);
}

TEST_P(VerbTest, HelpHasAnExample) {
    const Result result = runBare(wordsAnd("--help"));
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.out.find("Example: tarvek-client --hid /run/hid " + GetParam().words[0]),
              std::string::npos)
        << result.out;
    EXPECT_NE(result.out.find("--json"), std::string::npos);
    EXPECT_EQ(amplifier.reports, 0u);
}
