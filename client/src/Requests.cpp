#include "client/Requests.h"

namespace tvk::client::requests {

namespace {

TarvekMessage newMessage() {
    TarvekMessage message;
    message.set_ignore_this_padding(true);
    return message;
}

// A request that has nothing to say. type: TarvekMessage's function for it.
template <typename Request>
TarvekMessage plain(Request* (TarvekMessage::*type)()) {
    TarvekMessage message = newMessage();
    (message.*type)()->set_dummy(true);
    return message;
}

template <typename Request>
TarvekMessage assignment(Request* (TarvekMessage::*type)(), std::uint32_t slot, const std::string& name) {
    TarvekMessage message = newMessage();
    Request& request = *(message.*type)();
    request.set_cabsimenum(slot);
    request.set_irname(name);
    return message;
}

template <typename Request>
TarvekMessage cabinetValue(Request* (TarvekMessage::*type)(), std::uint32_t slot, float value) {
    TarvekMessage message = newMessage();
    Request& request = *(message.*type)();
    request.set_cabsimenum(slot);
    request.set_value(value);
    return message;
}

}  // namespace

TarvekMessage connection() {
    TarvekMessage message = newMessage();
    message.mutable_connectionmessage()->mutable_connectionrequest()->set_dummy(true);
    return message;
}

TarvekMessage heartbeat() {
    TarvekMessage message = newMessage();
    message.mutable_connectionmessage()->mutable_connectionheartbeat()->set_dummy(true);
    return message;
}

TarvekMessage currentAmplifier() {
    return plain(&TarvekMessage::mutable_getcurrentamplifier);
}

TarvekMessage firmware() {
    return plain(&TarvekMessage::mutable_currentfwrequest);
}

TarvekMessage productProfile() {
    TarvekMessage message = newMessage();
    message.mutable_productprofilerequest()->set_request(true);
    return message;
}

TarvekMessage factoryRestore() {
    return plain(&TarvekMessage::mutable_factoryrestorerequest);
}

TarvekMessage userIRList() {
    return plain(&TarvekMessage::mutable_userirlistrequest);
}

TarvekMessage factoryIRList() {
    return plain(&TarvekMessage::mutable_factoryirlistrequest);
}

TarvekMessage addUserIR(const std::string& name, std::string_view data) {
    TarvekMessage message = newMessage();
    AddUserIR& request = *message.mutable_adduserir();
    request.set_name(name);
    request.set_irdata(data.data(), data.size());
    return message;
}

TarvekMessage moveUserIR(std::uint32_t oldSlot, std::uint32_t newSlot) {
    TarvekMessage message = newMessage();
    MoveUserIR& request = *message.mutable_moveuserir();
    request.set_oldslot(oldSlot);
    request.set_newslot(newSlot);
    return message;
}

TarvekMessage removeUserIR(std::uint32_t slot) {
    TarvekMessage message = newMessage();
    message.mutable_removeuserir()->set_slot(slot);
    return message;
}

TarvekMessage cabsimIRList() {
    return plain(&TarvekMessage::mutable_cabsimirlistrequest);
}

TarvekMessage cabsimSelection() {
    TarvekMessage message = newMessage();
    message.mutable_getcabsimselection()->set_request(true);
    return message;
}

TarvekMessage setCabsimSelection(std::uint32_t slot) {
    TarvekMessage message = newMessage();
    message.mutable_setcabsimselection()->set_cabsimenum(slot);
    return message;
}

TarvekMessage assignFactoryIR(std::uint32_t slot, const std::string& name) {
    return assignment(&TarvekMessage::mutable_assignfactoryirtocabsim, slot, name);
}

TarvekMessage assignUserIR(std::uint32_t slot, const std::string& name) {
    return assignment(&TarvekMessage::mutable_assignuserirtocabsim, slot, name);
}

TarvekMessage setCabsimHpf(std::uint32_t slot, float hz) {
    return cabinetValue(&TarvekMessage::mutable_setcabsimhpf, slot, hz);
}

TarvekMessage setCabsimLpf(std::uint32_t slot, float hz) {
    return cabinetValue(&TarvekMessage::mutable_setcabsimlpf, slot, hz);
}

TarvekMessage setCabsimLevel(std::uint32_t slot, float db) {
    return cabinetValue(&TarvekMessage::mutable_setcabsimlevel, slot, db);
}

TarvekMessage saveCurrentState() {
    return plain(&TarvekMessage::mutable_savecurrentstate);
}

TarvekMessage syncCurrentState() {
    return plain(&TarvekMessage::mutable_synccurrentstate);
}

TarvekMessage reverbTaperType() {
    return plain(&TarvekMessage::mutable_reverbtapertyperequest);
}

TarvekMessage vibratoChannelBright() {
    return plain(&TarvekMessage::mutable_vibratochannelbrightrequest);
}

TarvekMessage setReverbTaperType(std::uint32_t value) {
    TarvekMessage message = newMessage();
    message.mutable_reverbtapertype()->set_value(value);
    return message;
}

TarvekMessage setVibratoChannelBright(bool isBright) {
    TarvekMessage message = newMessage();
    message.mutable_vibratochannelbright()->set_value(isBright);
    return message;
}

}  // namespace tvk::client::requests
