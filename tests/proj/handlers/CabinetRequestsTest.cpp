#include <cmath>
#include <limits>

#include "Conversation.h"

namespace {

using tvk::CabsimIR;
using Slots = tvk::CabsimModel::Slots;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();

class CabinetRequests : public Conversation {
protected:
    CabinetRequests() { connect(); }

    static TarvekMessage select(std::uint32_t slot) {
        TarvekMessage message;
        message.mutable_setcabsimselection()->set_cabsimenum(slot);
        return message;
    }
    static TarvekMessage assignFactory(std::uint32_t slot, const std::string& name) {
        TarvekMessage message;
        message.mutable_assignfactoryirtocabsim()->set_cabsimenum(slot);
        message.mutable_assignfactoryirtocabsim()->set_irname(name);
        return message;
    }
    static TarvekMessage assignUser(std::uint32_t slot, const std::string& name) {
        TarvekMessage message;
        message.mutable_assignuserirtocabsim()->set_cabsimenum(slot);
        message.mutable_assignuserirtocabsim()->set_irname(name);
        return message;
    }
    static TarvekMessage hpf(std::uint32_t slot, float value) {
        TarvekMessage message;
        message.mutable_setcabsimhpf()->set_cabsimenum(slot);
        message.mutable_setcabsimhpf()->set_value(value);
        return message;
    }
    static TarvekMessage lpf(std::uint32_t slot, float value) {
        TarvekMessage message;
        message.mutable_setcabsimlpf()->set_cabsimenum(slot);
        message.mutable_setcabsimlpf()->set_value(value);
        return message;
    }
    static TarvekMessage level(std::uint32_t slot, float value) {
        TarvekMessage message;
        message.mutable_setcabsimlevel()->set_cabsimenum(slot);
        message.mutable_setcabsimlevel()->set_value(value);
        return message;
    }
    static TarvekMessage save() {
        TarvekMessage message;
        message.mutable_savecurrentstate()->set_dummy(true);
        return message;
    }
    static TarvekMessage sync() {
        TarvekMessage message;
        message.mutable_synccurrentstate()->set_dummy(true);
        return message;
    }
    static Texts error(int code) { return {"cabsimError { error: " + std::to_string(code) + " }"}; }

    Slots slots() const { return amplifier.cabsims.getCabsimIRList(); }
};

}  // namespace

TEST_F(CabinetRequests, ASelectionIsInForceAndToldWithTheSlots) {
    EXPECT_EQ(ask(select(2)), (Texts{"cabsimSelectionChanged { cabsimEnum: 2 }", list(Slots{})}));
    EXPECT_EQ(amplifier.cabsims.getVirtualCabsim(), 2u);
}

TEST_F(CabinetRequests, ASlotThatIsNotThereIsError1) {
    ask(select(1));
    EXPECT_EQ(ask(select(3)), error(1));
    EXPECT_EQ(ask(select(4294967295u)), error(1));
    EXPECT_EQ(log.count("Warn Failed to set cabsim selection"), 2);
    EXPECT_EQ(amplifier.cabsims.getVirtualCabsim(), 1u);
}

TEST_F(CabinetRequests, TheSelectionIsTold) {
    TarvekMessage request;
    request.mutable_getcabsimselection()->set_request(true);
    EXPECT_EQ(ask(request), Texts{"cabsimSelectionChanged { }"});
    ask(select(1));
    EXPECT_EQ(ask(request), Texts{"cabsimSelectionChanged { cabsimEnum: 1 }"});
}

TEST_F(CabinetRequests, TheListHasEveryValueOfTheThreeSlots) {
    TarvekMessage request;
    request.mutable_cabsimirlistrequest()->set_dummy(true);
    EXPECT_EQ(
        ask(request),
        Texts{"cabsimIRListResponse { dummy: true "
              "record { isFactory: true irName: \"None\" hpf: 20 lpf: 20000 level: -5 } "
              "record { cabsimId: 1 isFactory: true irName: \"None\" hpf: 20 lpf: 20000 level: -5 } "
              "record { cabsimId: 2 isFactory: true irName: \"None\" hpf: 20 lpf: 20000 level: -5 } }"});
    ask({assignUser(1, "Room"), hpf(1, 80), lpf(1, 9000), level(1, -12)});
    EXPECT_EQ(ask(request),
              Texts{list({CabsimIR{}, CabsimIR{false, "Room", true, 80, 9000, -12}, CabsimIR{}})});
}

TEST_F(CabinetRequests, AnAssignmentIsEchoedAndToldWithTheSlots) {
    EXPECT_EQ(ask(assignFactory(0, "A1")),
              (Texts{"assignFactoryIRToCabsim { irName: \"A1\" }",
                     list({CabsimIR{true, "A1", true}, CabsimIR{}, CabsimIR{}})}));
    EXPECT_EQ(ask(assignUser(2, "Room")),
              (Texts{"assignUserIRToCabsim { cabsimEnum: 2 irName: \"Room\" }",
                     list({CabsimIR{true, "A1", true}, CabsimIR{}, CabsimIR{false, "Room", true}})}));
}

TEST_F(CabinetRequests, NoneAndNamesThatNobodyKnowsAreAssignedAsWritten) {
    for (const char* name : {"None", "none", "nobody knows", "100% %s %n"}) {
        ask(assignUser(1, name));
        EXPECT_EQ(slots()[1].irName, name);
        ask(assignFactory(2, name));
        EXPECT_EQ(slots()[2].irName, name);
    }
}

TEST_F(CabinetRequests, AnAssignmentToASlotThatIsNotThereIsError2OrError3) {
    EXPECT_EQ(ask(assignFactory(3, "A1")), error(2));
    EXPECT_TRUE(log.has("Warn Cannot assign factory IR to cabsim 3"));
    EXPECT_EQ(ask(assignUser(3, "Room")), error(3));
    EXPECT_TRUE(log.has("Warn Cannot assign user IR to cabsim 3"));
    EXPECT_EQ(slots(), Slots{});
}

TEST_F(CabinetRequests, ANameThatMayNotBeIsError2OrError3) {
    for (const std::string& name : {std::string(), std::string("."), std::string(".."), std::string("../x"),
                                    std::string("a\nb"), std::string("a\0b", 3), std::string(248, 'n')}) {
        EXPECT_EQ(ask(assignFactory(0, name)), error(2));
        EXPECT_EQ(ask(assignUser(0, name)), error(3));
    }
    EXPECT_EQ(slots(), Slots{});
}

TEST_F(CabinetRequests, TheHighPassIsLimitedTo20To500AndEchoed) {
    EXPECT_EQ(ask(hpf(0, 5)).at(0), "setCabsimHpf { value: 20 }");
    EXPECT_EQ(slots()[0].hpf, 20.0f);
    EXPECT_EQ(ask(hpf(1, 501)).at(0), "setCabsimHpf { cabsimEnum: 1 value: 500 }");
    EXPECT_EQ(slots()[1].hpf, 500.0f);
    EXPECT_EQ(ask(hpf(2, 123.5f)),
              (Texts{"setCabsimHpf { cabsimEnum: 2 value: 123.5 }",
                     list({CabsimIR{true, "None", true}, CabsimIR{true, "None", true, 500},
                           CabsimIR{true, "None", true, 123.5f}})}));
    EXPECT_EQ(ask(hpf(0, kInfinity)).at(0), "setCabsimHpf { value: 500 }");
    EXPECT_EQ(ask(hpf(0, -kInfinity)).at(0), "setCabsimHpf { value: 20 }");
}

TEST_F(CabinetRequests, TheLowPassIsLimitedTo1000To20000AndEchoed) {
    EXPECT_EQ(ask(lpf(0, 999)).at(0), "setCabsimLpf { value: 1000 }");
    EXPECT_EQ(ask(lpf(0, 20001)).at(0), "setCabsimLpf { value: 20000 }");
    EXPECT_EQ(ask(lpf(0, 7000)),
              (Texts{"setCabsimLpf { value: 7000 }",
                     list({CabsimIR{true, "None", true, 20, 7000}, CabsimIR{}, CabsimIR{}})}));
    EXPECT_EQ(ask(lpf(0, kInfinity)).at(0), "setCabsimLpf { value: 20000 }");
    EXPECT_EQ(ask(lpf(0, -kInfinity)).at(0), "setCabsimLpf { value: 1000 }");
}

TEST_F(CabinetRequests, TheLevelIsLimitedToMinus36To0AndEchoed) {
    EXPECT_EQ(ask(level(0, 3)).at(0), "setCabsimLevel { }");  // 0 dB, which takes no bytes
    EXPECT_EQ(slots()[0].level, 0.0f);
    EXPECT_EQ(ask(level(0, -40)).at(0), "setCabsimLevel { value: -36 }");
    EXPECT_EQ(ask(level(0, -7.5f)),
              (Texts{"setCabsimLevel { value: -7.5 }",
                     list({CabsimIR{true, "None", true, 20, 20000, -7.5f}, CabsimIR{}, CabsimIR{}})}));
    EXPECT_EQ(ask(level(0, kInfinity)).at(0), "setCabsimLevel { }");
    EXPECT_EQ(ask(level(0, -kInfinity)).at(0), "setCabsimLevel { value: -36 }");
}

TEST_F(CabinetRequests, AValueOfASlotThatIsNotThereIsError6To8) {
    EXPECT_EQ(ask(hpf(3, 100)), error(6));
    EXPECT_TRUE(log.has("Warn Cannot set HPF for cabsim 3"));
    EXPECT_EQ(ask(lpf(3, 5000)), error(7));
    EXPECT_TRUE(log.has("Warn Cannot set LPF for cabsim 3"));
    EXPECT_EQ(ask(level(3, -3)), error(8));
    EXPECT_TRUE(log.has("Warn Cannot set level for cabsim 3"));
    EXPECT_EQ(slots(), Slots{});
}

TEST_F(CabinetRequests, NotANumberIsError6To8) {
    EXPECT_EQ(ask(hpf(0, kNotANumber)), error(6));
    EXPECT_TRUE(log.has("Warn Failed to set cabsim HPF"));
    EXPECT_EQ(ask(lpf(0, kNotANumber)), error(7));
    EXPECT_TRUE(log.has("Warn Failed to set cabsim LPF"));
    EXPECT_EQ(ask(level(0, kNotANumber)), error(8));
    EXPECT_TRUE(log.has("Warn Failed to set cabsim level"));
    EXPECT_EQ(slots(), Slots{});
}

TEST_F(CabinetRequests, ASaveWritesTheSlotsAndTellsThem) {
    write("/mnt/user-data/userIRs/Room.wav", "bytes");
    ask(assignUser(0, "Room"));
    EXPECT_EQ(ask(save()), Texts{list({CabsimIR{false, "Room"}, CabsimIR{}, CabsimIR{}})});
    EXPECT_NE(read("/mnt/user-data/userCabsimConfig.json").find("Room"), std::string::npos);
}

TEST_F(CabinetRequests, AFailedSaveIsError4AndTheSlotsStayDirty) {
    ask(hpf(0, 100));
    files.unwritable = "userCabsimConfig.json.tmp";
    EXPECT_EQ(ask(save()), error(4));
    EXPECT_TRUE(slots()[0].isDirty);
    files.unwritable.clear();
    EXPECT_EQ(ask(save()).size(), 1u);
    EXPECT_FALSE(slots()[0].isDirty);
}

TEST_F(CabinetRequests, ASyncGoesBackToWhatIsStoredAndTellsIt) {
    write("/mnt/user-data/userIRs/Room.wav", "bytes");
    ask({assignUser(0, "Room"), save(), hpf(0, 300), assignUser(1, "Hall")});
    EXPECT_EQ(ask(sync()), Texts{list({CabsimIR{false, "Room"}, CabsimIR{}, CabsimIR{}})});
}

TEST_F(CabinetRequests, AFailedSyncIsError5) {
    ask(hpf(0, 100));
    write("/mnt/user-data/userCabsimConfig.json", "{ broken");
    EXPECT_EQ(ask(sync()), error(5));
    EXPECT_EQ(slots()[0].hpf, 100.0f);
}
