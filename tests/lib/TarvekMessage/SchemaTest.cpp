// The schema, field by field: numbers and types are what two programs of different ages have in common.
#include <algorithm>
#include <google/protobuf/descriptor.h>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

#include "TarvekMessage.pb.h"

using google::protobuf::Descriptor;
using google::protobuf::FieldDescriptor;

namespace {

// message, number, type, name, oneof
const std::vector<std::string> kFields{
    "TarvekMessage 1 bool IGNORE_THIS_PADDING",
    "TarvekMessage 2 int32 batchStatus",
    "TarvekMessage 3 TestMessage testMessage of type",
    "TarvekMessage 4 ConnectionMessage connectionMessage of type",
    "TarvekMessage 5 ProductProfileRequest productProfileRequest of type",
    "TarvekMessage 6 ProductProfileResponse productProfileResponse of type",
    "TarvekMessage 7 SetCabsimSelection setCabsimSelection of type",
    "TarvekMessage 8 CabsimSelectionChanged cabsimSelectionChanged of type",
    "TarvekMessage 9 GetCabsimSelection getCabsimSelection of type",
    "TarvekMessage 10 CabsimErrorMessage cabsimError of type",
    "TarvekMessage 11 FactoryIRListRequest factoryIRListRequest of type",
    "TarvekMessage 12 FactoryIRListResponse factoryIRListResponse of type",
    "TarvekMessage 13 CabsimIRListRequest cabsimIRListRequest of type",
    "TarvekMessage 14 CabsimIRListResponse cabsimIRListResponse of type",
    "TarvekMessage 15 AssignFactoryIRToCabsim assignFactoryIRToCabsim of type",
    "TarvekMessage 16 AssignUserIRToCabsim assignUserIRToCabsim of type",
    "TarvekMessage 17 UserIRListRequest userIRListRequest of type",
    "TarvekMessage 18 UserIRListResponse userIRListResponse of type",
    "TarvekMessage 19 AddUserIR addUserIR of type",
    "TarvekMessage 20 UserIRAdded userIRAdded of type",
    "TarvekMessage 21 UserIRErrorMessage userIRError of type",
    "TarvekMessage 22 AddUserIRFailed addUserIRFailed of type",
    "TarvekMessage 23 MoveUserIR moveUserIR of type",
    "TarvekMessage 24 RemoveUserIR removeUserIR of type",
    "TarvekMessage 25 SaveCurrentState saveCurrentState of type",
    "TarvekMessage 26 SyncCurrentState syncCurrentState of type",
    "TarvekMessage 27 SetCabsimHpf setCabsimHpf of type",
    "TarvekMessage 28 SetCabsimLpf setCabsimLpf of type",
    "TarvekMessage 29 SetCabsimLevel setCabsimLevel of type",
    "TarvekMessage 30 CurrentFwRequest currentFwRequest of type",
    "TarvekMessage 31 CurrentFwResponse currentFwResponse of type",
    "TarvekMessage 32 GlobalSettingsMessage.ReverbTaperType reverbTaperType of type",
    "TarvekMessage 33 GlobalSettingsMessage.VibratoChannelBright vibratoChannelBright of type",
    "TarvekMessage 34 GlobalSettingsErrorMessage globalSettingsError of type",
    "TarvekMessage 35 GlobalSettingsMessage.ReverbTaperTypeRequest reverbTaperTypeRequest of type",
    "TarvekMessage 36 GlobalSettingsMessage.VibratoChannelBrightRequest vibratoChannelBrightRequest of type",
    "TarvekMessage 37 GetCurrentAmplifier getCurrentAmplifier of type",
    "TarvekMessage 38 CurrentAmplifierResponse currentAmplifierResponse of type",
    "TarvekMessage 39 FactoryRestoreRequest factoryRestoreRequest of type",
    "TarvekMessage 40 FactoryRestoreResponse factoryRestoreResponse of type",
    "TestMessage 1 LoopbackTest loopbackTest of type",
    "LoopbackTest 1 string data",
    "ConnectionMessage 1 ConnectionRequest connectionRequest of type",
    "ConnectionMessage 2 ConnectionResponse connectionResponse of type",
    "ConnectionMessage 3 ConnectionError connectionError of type",
    "ConnectionMessage 4 ConnectionHeartbeat connectionHeartbeat of type",
    "ConnectionRequest 1 bool dummy",
    "ConnectionResponse 1 int32 clientId",
    "ConnectionError 1 int32 errorEnum",
    "ConnectionHeartbeat 1 bool dummy",
    "ProductProfileRequest 1 bool request",
    "ProductProfileResponse 1 string productFamily",
    "SetCabsimSelection 1 uint32 cabsimEnum",
    "CabsimSelectionChanged 1 uint32 cabsimEnum",
    "GetCabsimSelection 1 bool request",
    "CabsimErrorMessage 1 uint32 error",
    "FactoryIRListRequest 1 bool dummy",
    "FactoryIRListResponse 1 bool dummy",
    "FactoryIRListResponse 2 repeated FactoryIRListRecord record",
    "FactoryIRListRecord 1 string name",
    "CabsimIRListRequest 1 bool dummy",
    "CabsimIRListResponse 1 bool dummy",
    "CabsimIRListResponse 2 repeated CabsimIRListRecord record",
    "CabsimIRListRecord 1 uint32 cabsimId",
    "CabsimIRListRecord 2 bool isFactory",
    "CabsimIRListRecord 3 string irName",
    "CabsimIRListRecord 4 bool isDirty",
    "CabsimIRListRecord 5 float hpf",
    "CabsimIRListRecord 6 float lpf",
    "CabsimIRListRecord 7 float level",
    "AssignFactoryIRToCabsim 1 uint32 cabsimEnum",
    "AssignFactoryIRToCabsim 2 string irName",
    "AssignUserIRToCabsim 1 uint32 cabsimEnum",
    "AssignUserIRToCabsim 2 string irName",
    "UserIRListRequest 1 bool dummy",
    "UserIRListResponse 1 bool dummy",
    "UserIRListResponse 2 repeated UserIRListRecord record",
    "UserIRListRecord 1 string name",
    "UserIRListRecord 2 bool exists",
    "AddUserIR 1 string name",
    "AddUserIR 2 bytes irData",
    "UserIRAdded 1 string name",
    "UserIRErrorMessage 1 uint32 error",
    "AddUserIRFailed 1 string name",
    "MoveUserIR 1 uint32 oldSlot",
    "MoveUserIR 2 uint32 newSlot",
    "RemoveUserIR 1 uint32 slot",
    "SaveCurrentState 1 bool dummy",
    "SyncCurrentState 1 bool dummy",
    "SetCabsimHpf 1 uint32 cabsimEnum",
    "SetCabsimHpf 2 float value",
    "SetCabsimLpf 1 uint32 cabsimEnum",
    "SetCabsimLpf 2 float value",
    "SetCabsimLevel 1 uint32 cabsimEnum",
    "SetCabsimLevel 2 float value",
    "CurrentFwRequest 1 bool dummy",
    "CurrentFwResponse 1 string fwVersion",
    "GlobalSettingsMessage.ReverbTaperType 1 uint32 value",
    "GlobalSettingsMessage.ReverbTaperTypeRequest 1 bool dummy",
    "GlobalSettingsMessage.VibratoChannelBright 1 bool value",
    "GlobalSettingsMessage.VibratoChannelBrightRequest 1 bool dummy",
    "GlobalSettingsErrorMessage 1 uint32 error",
    "GetCurrentAmplifier 1 bool dummy",
    "CurrentAmplifierResponse 1 bool dummy",
    "CurrentAmplifierResponse 2 uint32 currentAmpEnum",
    "FactoryRestoreRequest 1 bool dummy",
    "FactoryRestoreResponse 1 bool dummy",
    "FactoryRestoreResponse 2 bool isSuccessful",
};

std::string typeOf(const FieldDescriptor& field) {
    const std::string repeated = field.is_repeated() ? "repeated " : "";
    return repeated + (field.message_type() ? field.message_type()->full_name() : field.type_name());
}

void collect(const Descriptor& message, std::set<std::string>& seen, std::vector<std::string>& fields) {
    if (!seen.insert(message.full_name()).second) return;
    for (int i = 0; i < message.field_count(); ++i) {
        const FieldDescriptor& field = *message.field(i);
        std::string line = message.full_name() + " " + std::to_string(field.number()) + " " + typeOf(field) +
                           " " + field.name();
        if (field.real_containing_oneof()) line += " of " + field.real_containing_oneof()->name();
        fields.push_back(line);
        if (field.message_type()) collect(*field.message_type(), seen, fields);
    }
}

}  // namespace

TEST(Schema, EveryFieldHasItsNumberTypeAndName) {
    std::set<std::string> seen;
    std::vector<std::string> fields;
    collect(*TarvekMessage::descriptor(), seen, fields);
    std::vector<std::string> expected = kFields;
    std::sort(fields.begin(), fields.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(fields, expected);
}

TEST(Schema, EachMessageHasAFileOfItsName) {
    std::set<std::string> seen;
    std::vector<std::string> fields;
    collect(*TarvekMessage::descriptor(), seen, fields);
    for (const std::string& name : seen) {
        const std::string outer = name.substr(0, name.find('.'));
        const Descriptor* message =
            google::protobuf::DescriptorPool::generated_pool()->FindMessageTypeByName(name);
        ASSERT_NE(message, nullptr);
        EXPECT_EQ(message->file()->name(), outer + ".proto");
        EXPECT_EQ(message->file()->syntax(), google::protobuf::FileDescriptor::SYNTAX_PROTO3);
        EXPECT_EQ(message->file()->package(), "");
        EXPECT_EQ(message->file()->enum_type_count(), 0);
    }
}
