#include <algorithm>

#include "Conversation.h"

namespace {

class ResponseRequests : public Conversation {
protected:
    ResponseRequests() {
        write("/home/root/factoryIRsArvelSlate.json", R"({"factoryIRs": [{"name": "A1"}, {"name": "A2"}]})");
        connect();
    }

    static TarvekMessage factoryList() {
        TarvekMessage message;
        message.mutable_factoryirlistrequest()->set_dummy(true);
        return message;
    }
    static TarvekMessage userList() {
        TarvekMessage message;
        message.mutable_userirlistrequest()->set_dummy(true);
        return message;
    }
    static TarvekMessage add(const std::string& name, const std::string& data = "bytes") {
        TarvekMessage message;
        message.mutable_adduserir()->set_name(name);
        message.mutable_adduserir()->set_irdata(data);
        return message;
    }
    static TarvekMessage move(std::uint32_t from, std::uint32_t to) {
        TarvekMessage message;
        message.mutable_moveuserir()->set_oldslot(from);
        message.mutable_moveuserir()->set_newslot(to);
        return message;
    }
    static TarvekMessage remove(std::uint32_t slot) {
        TarvekMessage message;
        message.mutable_removeuserir()->set_slot(slot);
        return message;
    }
    static Texts error(int code) { return {"userIRError { error: " + std::to_string(code) + " }"}; }

    Texts names() const {
        Texts found;
        for (const tvk::UserIR& record : amplifier.userIRs.getUserIRList())
            found.push_back(record.name);
        return found;
    }
    void addMany(int count) {
        std::vector<TarvekMessage> requests;
        for (int i = 1; i <= count; ++i)
            requests.push_back(add("IR " + std::to_string(i)));
        EXPECT_EQ(ask(requests).size(), static_cast<std::size_t>(count));
    }
};

}  // namespace

TEST_F(ResponseRequests, TheFactorysListIsEmptyUntilTheAmplifierIsKnown) {
    EXPECT_EQ(ask(factoryList()), Texts{"factoryIRListResponse { dummy: true }"});
    amplifier.become(0);
    EXPECT_EQ(ask(factoryList()),
              Texts{"factoryIRListResponse { dummy: true record { name: \"A1\" } record { name: \"A2\" } }"});
}

TEST_F(ResponseRequests, TheUsersListHasNamesAndWhetherTheirFilesAreThere) {
    EXPECT_EQ(ask(userList()), Texts{"userIRListResponse { dummy: true }"});
    ask({add("Room"), add("Hall")});
    std::filesystem::remove(place("/mnt/user-data/userIRs/Hall.wav"));
    amplifier.userIRs.syncUserIRDatabase();
    EXPECT_EQ(ask(userList()),
              Texts{"userIRListResponse { dummy: true record { name: \"Room\" exists: true } "
                    "record { name: \"Hall\" } }"});
}

TEST_F(ResponseRequests, AnUploadIsStoredByteForByteAndItsNameTold) {
    std::string data(30000, '\0');
    for (std::size_t i = 0; i < data.size(); ++i)
        data[i] = static_cast<char>(i * 7);
    EXPECT_EQ(ask(add("Big Room", data)), Texts{"userIRAdded { name: \"Big Room\" }"});
    EXPECT_EQ(read("/mnt/user-data/userIRs/Big Room.wav"), data);
    EXPECT_EQ(names(), Texts{"Big Room"});
}

TEST_F(ResponseRequests, ASecondUploadOfANameReplacesTheFileAndKeepsOneRecord) {
    ask({add("Room", "old"), add("Hall")});
    EXPECT_EQ(ask(add("Room", "new")), Texts{"userIRAdded { name: \"Room\" }"});
    EXPECT_EQ(read("/mnt/user-data/userIRs/Room.wav"), "new");
    EXPECT_EQ(names(), (Texts{"Room", "Hall"}));
}

TEST_F(ResponseRequests, AnUploadUnderANameThatMayNotBeFails) {
    const Texts bad{"",     ".",     "..",   "a/b",  "../../etc/x",        std::string("a\0b", 3),
                    "a\nb", "a\x7f", "None", "none", std::string(248, 'n')};
    for (const std::string& name : bad) {
        TarvekMessage failed;
        failed.mutable_adduserirfailed()->set_name(name);
        EXPECT_EQ(ask(add(name)), Texts{failed.ShortDebugString()});
    }
    EXPECT_TRUE(names().empty());
    EXPECT_EQ(ask(add(std::string(247, 'n'))).at(0).substr(0, 11), "userIRAdded");
}

TEST_F(ResponseRequests, AnUploadOfNothingFails) {
    EXPECT_EQ(ask(add("Room", "")), Texts{"addUserIRFailed { name: \"Room\" }"});
    EXPECT_FALSE(exists("/mnt/user-data/userIRs/Room.wav"));
}

TEST_F(ResponseRequests, AnUploadThatTheDiskDoesNotTakeFails) {
    files.unwritable = "Room.wav.tmp";
    EXPECT_EQ(ask(add("Room")), Texts{"addUserIRFailed { name: \"Room\" }"});
    EXPECT_TRUE(names().empty());
}

TEST_F(ResponseRequests, The51stNameIsError1AndFails) {
    addMany(50);
    EXPECT_EQ(ask(add("one more")),
              (Texts{"userIRError { error: 1 }", "addUserIRFailed { name: \"one more\" }"}));
    EXPECT_EQ(names().size(), 50u);
    EXPECT_FALSE(exists("/mnt/user-data/userIRs/one more.wav"));
    EXPECT_EQ(ask(add("IR 7", "over it")), Texts{"userIRAdded { name: \"IR 7\" }"});
    EXPECT_EQ(read("/mnt/user-data/userIRs/IR 7.wav"), "over it");
}

TEST_F(ResponseRequests, AMoveIsEchoed) {
    addMany(4);
    EXPECT_EQ(ask(move(4, 2)), Texts{"moveUserIR { oldSlot: 4 newSlot: 2 }"});
    EXPECT_EQ(names(), (Texts{"IR 1", "IR 4", "IR 2", "IR 3"}));
    EXPECT_EQ(ask(move(3, 3)), Texts{"moveUserIR { oldSlot: 3 newSlot: 3 }"});
}

TEST_F(ResponseRequests, AMoveFromOrToASlotThatIsNotThereIsError2) {
    addMany(2);
    for (const auto& [from, to] : {std::pair{0u, 1u}, {1u, 0u}, {3u, 1u}, {1u, 3u}, {4294967295u, 1u}})
        EXPECT_EQ(ask(move(from, to)), error(2));
    EXPECT_EQ(names(), (Texts{"IR 1", "IR 2"}));
}

TEST_F(ResponseRequests, ARemovalIsEchoedAndDeletesTheFile) {
    addMany(3);
    EXPECT_EQ(ask(remove(2)), Texts{"removeUserIR { slot: 2 }"});
    EXPECT_EQ(names(), (Texts{"IR 1", "IR 3"}));
    EXPECT_FALSE(exists("/mnt/user-data/userIRs/IR 2.wav"));
}

TEST_F(ResponseRequests, ARemovalOfARecordWithoutFileRemovesTheRecord) {
    addMany(1);
    std::filesystem::remove(place("/mnt/user-data/userIRs/IR 1.wav"));
    EXPECT_EQ(ask(remove(1)), Texts{"removeUserIR { slot: 1 }"});
    EXPECT_TRUE(names().empty());
}

TEST_F(ResponseRequests, ARemovalOfASlotThatIsNotThereOrThatTheDiskKeepsIsError3) {
    addMany(1);
    EXPECT_EQ(ask(remove(0)), error(3));
    EXPECT_EQ(ask(remove(2)), error(3));
    files.undeletable = "IR 1.wav";
    EXPECT_EQ(ask(remove(1)), error(3));
    EXPECT_EQ(names(), Texts{"IR 1"});
}
