// A host that stops reading: every reply that is lost says so, and the requests are carried out all the same.
#include "Conversation.h"

namespace {

class SendFailure : public Conversation {
protected:
    SendFailure() {
        write("/home/root/product_profile.json", R"({"productFamily": "slatePanel"})");
        write("/home/root/factoryIRsArvelSlate.json", R"({"factoryIRs": []})");
        connect();
        amplifier.become(0);
        // From here on nothing goes out. A frame is under way, fifteen messages wait, and one more has waited
        // for room in vain.
        amplifier.link.sendStatus = tvk::TransportStatus::NothingDone;
        TarvekMessage filler;
        filler.mutable_cabsimirlistrequest()->set_dummy(true);
        for (int i = 0; i < 17; ++i)
            amplifier.link.send(filler);
        awaitLine("Warn Tried to send a message while queue is full.");
        awaitLine("Error Failed to send cabsim IR list response message.");
    }
    ~SendFailure() override { amplifier.link.sendStatus = tvk::TransportStatus::Success; }

    template <typename Fill>
    void expect(const std::string& line, Fill fill) {
        TarvekMessage request;
        fill(request);
        amplifier.link.send(request);
        awaitLine("Error " + line);
        EXPECT_TRUE(amplifier.link.takeReplies().empty());
    }
};

}  // namespace

TEST_F(SendFailure, OfTheAmplifiersReplies) {
    expect("Failed to send ProductProfileResponse message.",
           [](TarvekMessage& m) { m.mutable_productprofilerequest()->set_request(true); });
    expect("Failed to send current firmware response message.",
           [](TarvekMessage& m) { m.mutable_currentfwrequest()->set_dummy(true); });
    expect("Failed to send current amplifier response message.",
           [](TarvekMessage& m) { m.mutable_getcurrentamplifier()->set_dummy(true); });
    expect("Failed to send factory restore response message.",
           [](TarvekMessage& m) { m.mutable_factoryrestorerequest()->set_dummy(true); });
}

TEST_F(SendFailure, OfTheCabinetsReplies) {
    expect("Failed to send CabsimSelectionChanged message.",
           [](TarvekMessage& m) { m.mutable_getcabsimselection()->set_request(true); });
    expect("Failed to send AssignFactoryIRToCabsim message.",
           [](TarvekMessage& m) { m.mutable_assignfactoryirtocabsim()->set_irname("A1"); });
    expect("Failed to send AssignUserIRToCabsim message.",
           [](TarvekMessage& m) { m.mutable_assignuserirtocabsim()->set_irname("Room"); });
    expect("Failed to send SetCabsimHPF message.",
           [](TarvekMessage& m) { m.mutable_setcabsimhpf()->set_value(100); });
    expect("Failed to send SetCabsimLPF message.",
           [](TarvekMessage& m) { m.mutable_setcabsimlpf()->set_value(5000); });
    expect("Failed to send SetCabsimLevel message.",
           [](TarvekMessage& m) { m.mutable_setcabsimlevel()->set_value(-7); });
    expect("Failed to send CabSimError message.",
           [](TarvekMessage& m) { m.mutable_setcabsimselection()->set_cabsimenum(3); });
    EXPECT_EQ(amplifier.cabsims.getCabsimIRList()[0], (tvk::CabsimIR{false, "Room", true, 100, 5000, -7}));
}

TEST_F(SendFailure, OfTheResponsesReplies) {
    expect("Failed to send factory IR list.",
           [](TarvekMessage& m) { m.mutable_factoryirlistrequest()->set_dummy(true); });
    expect("Failed to send user IR list response message.",
           [](TarvekMessage& m) { m.mutable_userirlistrequest()->set_dummy(true); });
    expect("Failed to send UserIRAdded message.", [](TarvekMessage& m) {
        m.mutable_adduserir()->set_name("Room");
        m.mutable_adduserir()->set_irdata("bytes");
    });
    expect("Failed to send AddUserIRFailed message.",
           [](TarvekMessage& m) { m.mutable_adduserir()->set_name("None"); });
    expect("Failed to send MoveUserIR message.", [](TarvekMessage& m) {
        m.mutable_moveuserir()->set_oldslot(1);
        m.mutable_moveuserir()->set_newslot(1);
    });
    expect("Failed to send RemoveUserIR message.",
           [](TarvekMessage& m) { m.mutable_removeuserir()->set_slot(1); });
    expect("Failed to send UserIRError message.",
           [](TarvekMessage& m) { m.mutable_removeuserir()->set_slot(1); });
    EXPECT_TRUE(amplifier.userIRs.getUserIRList().empty());
}

TEST_F(SendFailure, OfTheSettingsReplies) {
    expect("Failed to send reverb taper type changed message.",
           [](TarvekMessage& m) { m.mutable_reverbtapertype()->set_value(2); });
    expect("Failed to send vibrato channel bright changed message.",
           [](TarvekMessage& m) { m.mutable_vibratochannelbright()->set_value(true); });
    expect("Failed to send GlobalSettingsError message.",
           [](TarvekMessage& m) { m.mutable_reverbtapertype()->set_value(4000000000u); });
    EXPECT_EQ(amplifier.settings.getReverbTaperType(), 2u);
}

TEST_F(SendFailure, AHostThatReadsAgainGetsWhatWaitedAndThenNewReplies) {
    amplifier.link.sendStatus = tvk::TransportStatus::Success;
    EXPECT_EQ(awaitReplies(16).back().type_case(), TarvekMessage::kCabsimIRListResponse);
    TarvekMessage request;
    request.mutable_getcabsimselection()->set_request(true);
    EXPECT_EQ(ask(request), Texts{"cabsimSelectionChanged { }"});
}
