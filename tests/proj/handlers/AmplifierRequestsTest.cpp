#include <stdexcept>

#include "Conversation.h"
#include "proj/models/GlobalSettingsObserver.h"

namespace {

constexpr const char* kProfile = "/home/root/product_profile.json";

class AmplifierRequests : public Conversation {
protected:
    AmplifierRequests() { connect(); }

    static TarvekMessage profile() {
        TarvekMessage message;
        message.mutable_productprofilerequest()->set_request(true);
        return message;
    }
    static TarvekMessage firmware() {
        TarvekMessage message;
        message.mutable_currentfwrequest()->set_dummy(true);
        return message;
    }
    static TarvekMessage current() {
        TarvekMessage message;
        message.mutable_getcurrentamplifier()->set_dummy(true);
        return message;
    }
    static TarvekMessage restore() {
        TarvekMessage message;
        message.mutable_factoryrestorerequest()->set_dummy(true);
        return message;
    }
    static TarvekMessage taper(std::uint32_t value) {
        TarvekMessage message;
        message.mutable_reverbtapertype()->set_value(value);
        return message;
    }
    static TarvekMessage taperRequest() {
        TarvekMessage message;
        message.mutable_reverbtapertyperequest()->set_dummy(true);
        return message;
    }
    static TarvekMessage bright(bool isOn) {
        TarvekMessage message;
        message.mutable_vibratochannelbright()->set_value(isOn);
        return message;
    }
    static TarvekMessage brightRequest() {
        TarvekMessage message;
        message.mutable_vibratochannelbrightrequest()->set_dummy(true);
        return message;
    }
};

// An observer that fails, so that a setter does.
class FailingObserver : public tvk::GlobalSettingsObserver {
public:
    void reverbTaperTypeChangedHandler(int) override { throw std::runtime_error("no reverb"); }
    void vibratoChannelBrightChangedHandler(int) override { throw std::runtime_error("no\nvibrato"); }
};

}  // namespace

TEST_F(AmplifierRequests, TheProductFamilyIsReadAnewForEachRequest) {
    write(kProfile, R"({"productFamily": "slatePanel"})");
    EXPECT_EQ(ask(profile()), Texts{"productProfileResponse { productFamily: \"slatePanel\" }"});
    write(kProfile, R"({"productFamily": "fawn"})");
    EXPECT_EQ(ask(profile()), Texts{"productProfileResponse { productFamily: \"fawn\" }"});
    EXPECT_EQ(log.count("MessageHandler: sendProductProfile"), 2);
}

TEST_F(AmplifierRequests, WithoutAProfileThereIsAnErrorAndNoReply) {
    EXPECT_EQ(ask(profile()), Texts{});
    for (const char* text : {"{ broken", "{}", R"({"productFamily": 7})", ""}) {
        write(kProfile, text);
        EXPECT_EQ(ask(profile()), Texts{}) << text;
    }
    EXPECT_EQ(log.count("Error Failed to read product profile from filesystem."), 5);
}

TEST_F(AmplifierRequests, WithoutItsFileTheFirmwareIsAnEmptyText) {
    EXPECT_EQ(ask(firmware()), Texts{"currentFwResponse { }"});
}

// The file is read at the start, so each is read by a model of its own.
TEST_F(AmplifierRequests, TheFirmwareIsItsFilesFirstLineInCharactersThatAMessageMayHold) {
    for (const auto& [file, told] :
         {std::pair{"2.0.18-rc1\nmore\n", "2.0.18-rc1"}, std::pair{"2.0\xFF\n", "2.0\\\\xFF"}}) {
        write("/home/root/release-version", file);
        tvk::SystemInfoModel fresh(storage);
        tvk::MessageHandler handler(amplifier.clients, fresh, amplifier.cabsims, amplifier.factoryIRs,
                                    amplifier.userIRs, amplifier.settings, storage);
        handler.currentFwRequest();
        EXPECT_EQ(ask(std::vector<TarvekMessage>()),
                  Texts{"currentFwResponse { fwVersion: \"" + std::string(told) + "\" }"});
    }
}

TEST_F(AmplifierRequests, TheAmplifierIsItsProductId) {
    for (const int id : {0, 1, 2, 3}) {
        amplifier.become(id);
        const std::string value = id == 0 ? "" : "currentAmpEnum: " + std::to_string(id) + " ";
        EXPECT_EQ(ask(current()), Texts{"currentAmplifierResponse { dummy: true " + value + "}"});
    }
}

TEST_F(AmplifierRequests, AnUnknownAmplifierIsAWarningAndNoReply) {
    EXPECT_EQ(ask(current()), Texts{});
    EXPECT_EQ(log.count("Warn Failed to get current amplifier"), 1);
    amplifier.become(1);
    amplifier.engine.model().panel().productId.set(9);  // test mode: the catalogues are not told
    EXPECT_EQ(ask(current()), Texts{});
    EXPECT_EQ(log.count("Warn Failed to get current amplifier"), 2);
}

TEST_F(AmplifierRequests, AFactoryRestoreSaysWhetherAllIsGone) {
    write("/mnt/user-data/userIRs/Room.wav", "bytes");
    EXPECT_EQ(ask(restore()), Texts{"factoryRestoreResponse { dummy: true isSuccessful: true }"});
    EXPECT_FALSE(exists("/mnt/user-data/userIRs/Room.wav"));
    write("/mnt/user-data/userIRs/Room.wav", "bytes");
    files.undeletable = "Room.wav";
    EXPECT_EQ(ask(restore()), Texts{"factoryRestoreResponse { dummy: true }"});
}

TEST_F(AmplifierRequests, TheReverbTaperIsStoredSavedAndTold) {
    EXPECT_EQ(ask(taperRequest()), Texts{"reverbTaperType { }"});
    EXPECT_EQ(ask(taper(2)), Texts{"reverbTaperType { value: 2 }"});
    EXPECT_EQ(amplifier.settings.getReverbTaperType(), 2u);
    EXPECT_NE(read("/mnt/user-data/globalSettings.json").find("\"reverbTaperType\": 2"), std::string::npos);
    EXPECT_EQ(ask(taperRequest()), Texts{"reverbTaperType { value: 2 }"});
}

TEST_F(AmplifierRequests, AReverbTaperAboveTheLargestIntIsError1) {
    EXPECT_EQ(ask(taper(2147483648u)), Texts{"globalSettingsError { error: 1 }"});
    EXPECT_EQ(ask(taper(4294967295u)), Texts{"globalSettingsError { error: 1 }"});
    EXPECT_EQ(ask(taperRequest()), Texts{"reverbTaperType { }"});
    EXPECT_EQ(ask(taper(2147483647u)), Texts{"reverbTaperType { value: 2147483647 }"});
}

TEST_F(AmplifierRequests, TheVibratosBrightSwitchIsStoredSavedAndTold) {
    EXPECT_EQ(ask(brightRequest()), Texts{"vibratoChannelBright { }"});
    EXPECT_EQ(ask(bright(true)), Texts{"vibratoChannelBright { value: true }"});
    EXPECT_TRUE(amplifier.settings.getVibratoChannelBright());
    EXPECT_NE(read("/mnt/user-data/globalSettings.json").find("\"vibratoChannelBright\": true"),
              std::string::npos);
    EXPECT_EQ(ask(brightRequest()), Texts{"vibratoChannelBright { value: true }"});
}

TEST_F(AmplifierRequests, ASettingThatFailsIsError1Or2AndTheReasonIsLoggedEscaped) {
    FailingObserver observer;
    amplifier.settings.addObserver(observer);
    EXPECT_EQ(ask(taper(1)), Texts{"globalSettingsError { error: 1 }"});
    EXPECT_EQ(ask(bright(true)), Texts{"globalSettingsError { error: 2 }"});
    EXPECT_TRUE(log.has("Warn no\\x0Avibrato"));
    amplifier.settings.removeObserver(observer);
}
