// What each request of a desktop client does to the models, and what is replied.
//
// Replies go by broadcast. A request that fails is answered with the error message of its subject where there
// is one; no exception leaves a function of this class. Texts of a client are never a format, and reach the
// log escaped.
//
// Called on the thread of MessageProcessor, with no lock held: what a model takes long for, the client waits
// for.
#pragma once

#include <string>

#include "TarvekMessage.pb.h"
#include "proj/models/Storage.h"
#include "utility/LimitedLog.h"

namespace tvk {

class CabsimModel;
class ClientManager;
class FactoryIRModel;
class GlobalSettingsModel;
class SystemInfoModel;
class UserIRModel;

class MessageHandler {
public:
    // All outlive it. storage: where the product profile is read from.
    MessageHandler(ClientManager& clients, SystemInfoModel& systemInfo, CabsimModel& cabsims,
                   FactoryIRModel& factoryIRs, UserIRModel& userIRs, GlobalSettingsModel& settings,
                   const Storage& storage = Storage::machine());
    MessageHandler(const MessageHandler&) = delete;
    MessageHandler& operator=(const MessageHandler&) = delete;

    // The amplifier. No reply where there is nothing to tell: no profile, no amplifier yet.
    void productProfileRequest();
    void currentFwRequest();
    void getCurrentAmplifier();
    void factoryRestoreRequest();

    // Cabinet slots. A change is followed by the list of the slots, unasked.
    void setCabsimSelection(const SetCabsimSelection& request);
    void getCabsimSelection();
    void cabsimIRListRequest();
    void assignFactoryIRToCabsim(const AssignFactoryIRToCabsim& request);
    void assignUserIRToCabsim(const AssignUserIRToCabsim& request);
    void setCabsimHpf(const SetCabsimHpf& request);
    void setCabsimLpf(const SetCabsimLpf& request);
    void setCabsimLevel(const SetCabsimLevel& request);
    void saveCurrentState();
    void syncCurrentState();

    // Impulse responses.
    void factoryIRListRequest();
    void userIRListRequest();
    void addUserIR(const AddUserIR& request);
    void moveUserIR(const MoveUserIR& request);
    void removeUserIR(const RemoveUserIR& request);

    // Global settings.
    void reverbTaperType(const GlobalSettingsMessage::ReverbTaperType& request);
    void vibratoChannelBright(const GlobalSettingsMessage::VibratoChannelBright& request);
    void reverbTaperTypeRequest();
    void vibratoChannelBrightRequest();

private:
    // Runs a piece of work; false, with its words in the log, when it threw.
    template <typename Work>
    bool succeeds(Work work);

    // A line of the log that a client can cause at will. Its place is the caller's: the library's type for it
    // wants a newer compiler than the fuzzers are built with.
    void warn(const std::string& text, const char* file = __builtin_FILE(), int line = __builtin_LINE());

    // failure: the line when the reply is lost.
    void reply(const TarvekMessage& message, const char* failure, const char* file = __builtin_FILE(),
               int line = __builtin_LINE());

    // What two requests, or three, have in common, and where they differ.
    template <typename Request>
    struct Assignment;
    template <typename Request>
    void assignToCabsim(const Request& request, const Assignment<Request>& rule);
    template <typename Request>
    struct CabinetValue;
    template <typename Request>
    void setCabinetValue(const Request& request, const CabinetValue<Request>& rule);

    std::string readProductFamily() const;
    void sendCabsimSelection();
    void sendCabsimIRList();
    void sendReverbTaperType();
    void sendVibratoChannelBright();
    void sendAddUserIRFailed(const std::string& name);
    void sendCabsimError(unsigned error);
    void sendUserIRError(unsigned error);
    void sendGlobalSettingsError(unsigned error);

    ClientManager& clients_;
    SystemInfoModel& systemInfo_;
    CabsimModel& cabsims_;
    FactoryIRModel& factoryIRs_;
    UserIRModel& userIRs_;
    GlobalSettingsModel& settings_;
    const Storage& storage_;
    LimitedLog log_;
};

}  // namespace tvk
