// Every request of a client: its answer as it comes, what it leaves behind, and what it is refused for.
#include <limits>

#include "blackbox/client/ClientConversation.h"

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

namespace fs = std::filesystem;
namespace requests = tvk::client::requests;

namespace {

class Dispatch : public ClientConversation {
protected:
    void SetUp() override {
        start();
        connect();
    }

    const std::string list_ = "cabsimIRListResponse { dummy: true record {";
};

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinite = std::numeric_limits<float>::infinity();

}  // namespace

TEST_F(Dispatch, WhatTheAmplifierIs) {
    EXPECT_THAT(answersTo(requests::productProfile()),
                ElementsAre("productProfileResponse { productFamily: \"slatePanel\" }"));
    EXPECT_THAT(answersTo(requests::currentAmplifier()),
                ElementsAre("currentAmplifierResponse { dummy: true }"));
    const std::string version = fileOf(fs::path(TARVEK_PRODUCT_HOME) / "release-version");
    const auto replies = ask(requests::firmware());
    ASSERT_EQ(replies.size(), 1u);
    EXPECT_THAT(version, ::testing::HasSubstr(replies[0].currentfwresponse().fwversion()));
    EXPECT_FALSE(replies[0].currentfwresponse().fwversion().empty());
}

TEST_F(Dispatch, WithoutItsFilesTheAmplifierSaysLessAndGoesOn) {
    fs::remove(folder() / "root/home/root/release-version");
    start();
    connect();
    fs::remove(folder() / "root/home/root/product_profile.json");  // is read anew for each request
    EXPECT_THROW(ask(requests::productProfile()), tvk::client::ClientError);
    EXPECT_THAT(answersTo(requests::firmware()), ElementsAre("currentFwResponse { }"));
}

TEST_F(Dispatch, TheSelectedSlot) {
    EXPECT_THAT(answersTo(requests::cabsimSelection()), ElementsAre("cabsimSelectionChanged { }"));
    const auto answers = answersTo(requests::setCabsimSelection(2));
    ASSERT_EQ(answers.size(), 2u);
    EXPECT_EQ(answers[0], "cabsimSelectionChanged { cabsimEnum: 2 }");
    EXPECT_THAT(answers[1], StartsWith(list_));
    EXPECT_THAT(answersTo(requests::cabsimSelection()),
                ElementsAre("cabsimSelectionChanged { cabsimEnum: 2 }"));
    EXPECT_THAT(answersTo(requests::setCabsimSelection(3), State::Refused),
                ElementsAre("cabsimError { error: 1 }"));
    EXPECT_THAT(answersTo(requests::cabsimSelection()),
                ElementsAre("cabsimSelectionChanged { cabsimEnum: 2 }"));
}

TEST_F(Dispatch, TheFactoryList) {
    std::vector<std::string> names;
    const auto replies = ask(requests::factoryIRList());
    for (const auto& record : replies.back().factoryirlistresponse().record())
        names.push_back(record.name());
    EXPECT_THAT(names, ElementsAre("Arvel-Near-Center", "Arvel-Near-Edge", "Arvel-Off-Axis", "Arvel-Far"));
}

TEST_F(Dispatch, UploadsMovesAndRemovals) {
    EXPECT_THAT(userNames(), IsEmpty());
    EXPECT_THAT(answersTo(requests::addUserIR("one", testCabinet(1))),
                ElementsAre("userIRAdded { name: \"one\" }"));
    EXPECT_EQ(fileOf(userData() / "userIRs/one.wav"), testCabinet(1));
    ask(requests::addUserIR("two", "not even sound"));
    EXPECT_EQ(fileOf(userData() / "userIRs/two.wav"), "not even sound");
    ask(requests::addUserIR("one", testCabinet(2)));
    EXPECT_EQ(fileOf(userData() / "userIRs/one.wav"), testCabinet(2));
    EXPECT_THAT(userNames(), ElementsAre("one", "two"));

    EXPECT_THAT(answersTo(requests::moveUserIR(2, 1)), ElementsAre("moveUserIR { oldSlot: 2 newSlot: 1 }"));
    EXPECT_THAT(userNames(), ElementsAre("two", "one"));
    EXPECT_THAT(answersTo(requests::moveUserIR(1, 51), State::Refused),
                ElementsAre("userIRError { error: 2 }"));
    EXPECT_THAT(answersTo(requests::removeUserIR(1)), ElementsAre("removeUserIR { slot: 1 }"));
    EXPECT_FALSE(fs::exists(userData() / "userIRs/two.wav"));
    EXPECT_THAT(answersTo(requests::removeUserIR(0), State::Refused),
                ElementsAre("userIRError { error: 3 }"));
    EXPECT_THAT(answersTo(requests::removeUserIR(51), State::Refused),
                ElementsAre("userIRError { error: 3 }"));
    EXPECT_THAT(userNames(), ElementsAre("one"));
}

TEST_F(Dispatch, NamesThatAreNoFilesOfOursAreRefused) {
    for (const std::string& name : {std::string(), std::string("."), std::string(".."), std::string("../out"),
                                    std::string("a/b"), std::string("a\0b", 3), std::string("a\nb"),
                                    std::string(248, 'a'), std::string("None"), std::string("none")}) {
        const auto replies = ask(requests::addUserIR(name, "sound"), State::Refused);
        ASSERT_EQ(replies.size(), 1u);
        EXPECT_EQ(replies[0].adduserirfailed().name(), name);
    }
    ask(requests::addUserIR("empty", ""), State::Refused);
    ask(requests::addUserIR(std::string(247, 'a'), "sound"));
    EXPECT_EQ(std::distance(fs::directory_iterator(userData() / "userIRs"), fs::directory_iterator()), 1);
    EXPECT_FALSE(fs::exists(userData() / "out.wav"));
}

TEST_F(Dispatch, TheFiftyFirstResponseIsRefusedAndAnOldNameStillTakesNewData) {
    for (int i = 0; i < 50; ++i)
        ask(requests::addUserIR("response " + std::to_string(i), "sound"));
    EXPECT_THAT(answersTo(requests::addUserIR("one more", "sound"), State::Refused),
                ElementsAre("userIRError { error: 1 }", "addUserIRFailed { name: \"one more\" }"));
    EXPECT_FALSE(fs::exists(userData() / "userIRs/one more.wav"));
    ask(requests::addUserIR("response 7", "other sound"));
    EXPECT_EQ(fileOf(userData() / "userIRs/response 7.wav"), "other sound");
    EXPECT_EQ(userNames().size(), 50u);
}

TEST_F(Dispatch, AResponseThatCannotBeWrittenIsRefused) {
    ask(requests::addUserIR("one", "sound"));
    // Not even root can put a file where a folder is.
    fs::create_directories(userData() / "userIRs/two.wav");
    EXPECT_THAT(answersTo(requests::addUserIR("two", "sound"), State::Refused),
                ElementsAre("addUserIRFailed { name: \"two\" }"));
    EXPECT_THAT(userNames(), ElementsAre("one"));
}

TEST_F(Dispatch, AssignmentsToSlots) {
    auto answers = answersTo(requests::assignFactoryIR(0, "Arvel-Far"));
    ASSERT_EQ(answers.size(), 2u);
    EXPECT_EQ(answers[0], "assignFactoryIRToCabsim { irName: \"Arvel-Far\" }");
    EXPECT_THAT(answers[1], StartsWith(list_));
    EXPECT_EQ(slot(0).irname(), "Arvel-Far");
    EXPECT_TRUE(slot(0).isfactory());
    EXPECT_TRUE(slot(0).isdirty());
    ask(requests::addUserIR("mine", testCabinet(1)));
    answers = answersTo(requests::assignUserIR(1, "mine"));
    ASSERT_EQ(answers.size(), 2u);
    EXPECT_EQ(answers[0], "assignUserIRToCabsim { cabsimEnum: 1 irName: \"mine\" }");
    EXPECT_FALSE(slot(1).isfactory());
    ask(requests::assignUserIR(2, "None"));
    EXPECT_EQ(slot(2).irname(), "None");
    ask(requests::assignUserIR(2, "unknown but well-formed"));
    EXPECT_EQ(slot(2).irname(), "unknown but well-formed");
    for (const TarvekMessage& request :
         {requests::assignFactoryIR(3, "Arvel-Far"), requests::assignFactoryIR(0, "../x")})
        EXPECT_THAT(answersTo(request, State::Refused), ElementsAre("cabsimError { error: 2 }"));
    for (const TarvekMessage& request :
         {requests::assignUserIR(3, "mine"), requests::assignUserIR(0, "a/b"), requests::assignUserIR(0, "")})
        EXPECT_THAT(answersTo(request, State::Refused), ElementsAre("cabsimError { error: 3 }"));
    EXPECT_EQ(slot(0).irname(), "Arvel-Far");
}

TEST_F(Dispatch, FiltersAndLevelsWithinTheirLimits) {
    struct Row {
        TarvekMessage request;
        const char* echo;
    };
    for (const Row& row :
         {Row{requests::setCabsimHpf(1, 5.0f), "setCabsimHpf { cabsimEnum: 1 value: 20 }"},
          Row{requests::setCabsimHpf(1, 80.0f), "setCabsimHpf { cabsimEnum: 1 value: 80 }"},
          Row{requests::setCabsimHpf(1, kInfinite), "setCabsimHpf { cabsimEnum: 1 value: 500 }"},
          Row{requests::setCabsimLpf(1, -kInfinite), "setCabsimLpf { cabsimEnum: 1 value: 1000 }"},
          Row{requests::setCabsimLpf(1, 30000.0f), "setCabsimLpf { cabsimEnum: 1 value: 20000 }"},
          Row{requests::setCabsimLevel(1, 3.0f), "setCabsimLevel { cabsimEnum: 1 }"},
          Row{requests::setCabsimLevel(1, -40.0f), "setCabsimLevel { cabsimEnum: 1 value: -36 }"}}) {
        const auto answers = answersTo(row.request);
        ASSERT_EQ(answers.size(), 2u);
        EXPECT_EQ(answers[0], row.echo);
        EXPECT_THAT(answers[1], StartsWith(list_));
    }
    EXPECT_EQ(slot(1).hpf(), 500.0f);
    EXPECT_EQ(slot(1).lpf(), 20000.0f);
    EXPECT_EQ(slot(1).level(), -36.0f);
    const auto refuse = [&](const TarvekMessage& request, int error) {
        EXPECT_THAT(answersTo(request, State::Refused),
                    ElementsAre("cabsimError { error: " + std::to_string(error) + " }"));
    };
    refuse(requests::setCabsimHpf(3, 100.0f), 6);
    refuse(requests::setCabsimHpf(1, kNan), 6);
    refuse(requests::setCabsimLpf(3, 5000.0f), 7);
    refuse(requests::setCabsimLpf(1, kNan), 7);
    refuse(requests::setCabsimLevel(3, -6.0f), 8);
    refuse(requests::setCabsimLevel(1, kNan), 8);
    EXPECT_EQ(slot(1).hpf(), 500.0f);
}

TEST_F(Dispatch, SavingAndGoingBackToWhatWasSaved) {
    const fs::path file = userData() / "userCabsimConfig.json";
    ask(requests::setCabsimHpf(0, 99.0f));
    EXPECT_TRUE(slot(0).isdirty());
    EXPECT_THAT(answersTo(requests::saveCurrentState()), ElementsAre(StartsWith(list_)));
    EXPECT_FALSE(slot(0).isdirty());
    EXPECT_THAT(fileOf(file), ::testing::HasSubstr("99"));
    ask(requests::setCabsimHpf(0, 123.0f));
    EXPECT_THAT(answersTo(requests::syncCurrentState()), ElementsAre(StartsWith(list_)));
    EXPECT_EQ(slot(0).hpf(), 99.0f);

    fs::remove(file);
    fs::create_directories(file / "in the way");
    ask(requests::setCabsimHpf(0, 77.0f));
    EXPECT_THAT(answersTo(requests::saveCurrentState(), State::Refused),
                ElementsAre("cabsimError { error: 4 }"));
    EXPECT_TRUE(slot(0).isdirty());
    EXPECT_EQ(slot(0).hpf(), 77.0f);
}

TEST_F(Dispatch, GlobalSettingsAreOnDiskBeforeTheirReply) {
    const auto stored = [&](const std::string& text) {
        EXPECT_THAT(fileOf(userData() / "globalSettings.json"), ::testing::HasSubstr(text));
    };
    EXPECT_THAT(answersTo(requests::setReverbTaperType(1)), ElementsAre("reverbTaperType { value: 1 }"));
    stored("1");
    EXPECT_THAT(answersTo(requests::reverbTaperType()), ElementsAre("reverbTaperType { value: 1 }"));
    EXPECT_THAT(answersTo(requests::setReverbTaperType(0x80000000u), State::Refused),
                ElementsAre("globalSettingsError { error: 1 }"));
    EXPECT_THAT(answersTo(requests::setVibratoChannelBright(true)),
                ElementsAre("vibratoChannelBright { value: true }"));
    stored("true");
    EXPECT_THAT(answersTo(requests::vibratoChannelBright()),
                ElementsAre("vibratoChannelBright { value: true }"));
}

TEST_F(Dispatch, FactoryRestoreDeletesWhatUsersStored) {
    ask(requests::addUserIR("mine", "sound"));
    ask(requests::setCabsimHpf(0, 99.0f));
    ask(requests::saveCurrentState());
    ask(requests::setReverbTaperType(1));
    EXPECT_THAT(answersTo(requests::factoryRestore()),
                ElementsAre("factoryRestoreResponse { dummy: true isSuccessful: true }"));
    EXPECT_FALSE(fs::exists(userData() / "userIRs/mine.wav"));
    EXPECT_FALSE(fs::exists(userData() / "userCabsimConfig.json"));
    start();
    connect();
    EXPECT_THAT(userNames(), IsEmpty());
    EXPECT_EQ(slot(0).hpf(), 20.0f);
    EXPECT_THAT(answersTo(requests::reverbTaperType()), ElementsAre("reverbTaperType { }"));
}

TEST_F(Dispatch, AMessageWithNoRowIsNotAnswered) {
    TarvekMessage reply;
    reply.mutable_productprofileresponse()->set_productfamily("from a host");
    EXPECT_EQ(static_cast<int>(session().ask(reply).state), static_cast<int>(State::NoReplyDue));
    EXPECT_THAT(answersTo(requests::currentAmplifier()),
                ElementsAre("currentAmplifierResponse { dummy: true }"));
}

TEST_F(Dispatch, AnAmplifierThatIsNotKnownIsNotNamed) {
    start({"--product", "9"});
    connect();
    EXPECT_THROW(ask(requests::currentAmplifier()), tvk::client::ClientError);
    EXPECT_THAT(answersTo(requests::cabsimSelection()), ElementsAre("cabsimSelectionChanged { }"));
}
