#include "client/MessageWords.h"

#include <google/protobuf/text_format.h>
#include <iterator>

#include "utility/EscapedText.h"
#include "utility/Exception.h"

namespace tvk::client {

namespace {

constexpr const char* kAmplifiers[] = {"Arvel", "Corvin", "Lisko", "Sorrel"};

// By error number, from 1.
constexpr const char* kCabinetErrors[] = {
    "no such cabinet slot: there are 0, 1 and 2",
    "the factory response was not assigned: slots are 0 to 2, and the "
    "name has to be one that a response can have",
    "the user response was not assigned: slots are 0 to 2, and the name "
    "has to be one that a response can have",
    "the cabinet slots were not saved",
    "the saved cabinet slots could not be read",
    "the high-pass was not set: slots are 0 to 2, values are numbers of Hz",
    "the low-pass was not set: slots are 0 to 2, values are numbers of Hz",
    "the level was not set: slots are 0 to 2, values are numbers of dB"};
constexpr const char* kResponseErrors[] = {
    "the list of responses is full: remove one first",
    "the response was not moved: there is no such slot (they count from 1)",
    "the response was not removed: there is no such slot (they count from 1)"};
constexpr const char* kSettingsErrors[] = {"the reverb taper was not set", "vibrato bright was not set"};
constexpr const char* kConnectionErrors[] = {
    "connected already: the connection of an earlier program goes on", "not connected"};

template <std::size_t Count>
std::string errorText(const char* const (&texts)[Count], std::int64_t error) {
    const bool isKnown = error >= 1 && error <= static_cast<std::int64_t>(Count);
    return isKnown ? texts[error - 1] : "error " + std::to_string(error);
}

std::string quoted(const std::string& name) {
    return std::string(1, '"').append(escaped(name)).append(1, '"');
}

// Lines without the last one's end.
class Lines {
public:
    void add(const std::string& line) { text_ += (text_.empty() ? "" : "\n") + line; }
    std::string textOr(const char* empty) const { return text_.empty() ? empty : text_; }

private:
    std::string text_;
};

std::string words(const ConnectionMessage& message) {
    if (message.has_connectionresponse())
        return "connected as client " + std::to_string(message.connectionresponse().clientid());
    if (message.has_connectionerror())
        return errorText(kConnectionErrors, message.connectionerror().errorenum());
    return "a request of a client";
}

std::string words(const CurrentAmplifierResponse& message) {
    const std::uint32_t id = message.currentampenum();
    const std::string name = id < std::size(kAmplifiers) ? kAmplifiers[id] : "unknown";
    return "amplifier " + std::to_string(id) + " (" + name + ")";
}

std::string words(const FactoryIRListResponse& list) {
    Lines lines;
    for (const FactoryIRListRecord& record : list.record())
        lines.add(escaped(record.name()));
    return lines.textOr(
        "no factory responses; before its front panel has told which amplifier it is, it has none");
}

std::string words(const UserIRListResponse& list) {
    Lines lines;
    for (int i = 0; i < list.record_size(); ++i)
        lines.add(formatText("%2d  %s%s", i + 1, escaped(list.record(i).name()).c_str(),
                             list.record(i).exists() ? "" : "  (its file is missing)"));
    return lines.textOr("no user responses");
}

std::string words(const CabsimIRListResponse& list) {
    Lines lines;
    for (const CabsimIRListRecord& slot : list.record())
        lines.add(formatText("slot %u  %-7s %s  hpf %g Hz  lpf %g Hz  level %g dB%s", slot.cabsimid(),
                             slot.isfactory() ? "factory" : "user", quoted(slot.irname()).c_str(),
                             static_cast<double>(slot.hpf()), static_cast<double>(slot.lpf()),
                             static_cast<double>(slot.level()), slot.isdirty() ? "  (not saved)" : ""));
    return lines.textOr("no cabinet slots");
}

template <typename Assignment>
std::string assignmentWords(const char* kind, const Assignment& message) {
    return formatText("slot %u holds the %s response %s", message.cabsimenum(), kind,
                      quoted(message.irname()).c_str());
}

template <typename Value>
std::string valueWords(const char* what, const char* unit, const Value& message) {
    return formatText("slot %u: %s %g %s", message.cabsimenum(), what, static_cast<double>(message.value()),
                      unit);
}

std::string firmwareWords(const std::string& version) {
    return "firmware " + (version.empty() ? "unknown" : escaped(version));
}

// What no amplifier sends, on one line.
std::string asText(const TarvekMessage& message) {
    google::protobuf::TextFormat::Printer printer;
    printer.SetSingleLineMode(true);
    printer.SetTruncateStringFieldLongerThan(200);
    std::string text;
    printer.PrintToString(message, &text);
    return "message: " + escaped(text);
}

}  // namespace

std::string wordsOf(const TarvekMessage& message) {
    switch (message.type_case()) {
        case TarvekMessage::kConnectionMessage:
            return words(message.connectionmessage());
        case TarvekMessage::kProductProfileResponse:
            return "product family " + escaped(message.productprofileresponse().productfamily());
        case TarvekMessage::kCabsimSelectionChanged:
            return formatText("slot %u is selected", message.cabsimselectionchanged().cabsimenum());
        case TarvekMessage::kCabsimError:
            return errorText(kCabinetErrors, message.cabsimerror().error());
        case TarvekMessage::kFactoryIRListResponse:
            return words(message.factoryirlistresponse());
        case TarvekMessage::kCabsimIRListResponse:
            return words(message.cabsimirlistresponse());
        case TarvekMessage::kAssignFactoryIRToCabsim:
            return assignmentWords("factory", message.assignfactoryirtocabsim());
        case TarvekMessage::kAssignUserIRToCabsim:
            return assignmentWords("user", message.assignuserirtocabsim());
        case TarvekMessage::kUserIRListResponse:
            return words(message.userirlistresponse());
        case TarvekMessage::kUserIRAdded:
            return "stored " + quoted(message.useriradded().name());
        case TarvekMessage::kUserIRError:
            return errorText(kResponseErrors, message.userirerror().error());
        case TarvekMessage::kAddUserIRFailed:
            return quoted(message.adduserirfailed().name()) + " was not stored";
        case TarvekMessage::kMoveUserIR:
            return formatText("moved slot %u to slot %u", message.moveuserir().oldslot(),
                              message.moveuserir().newslot());
        case TarvekMessage::kRemoveUserIR:
            return formatText("removed slot %u", message.removeuserir().slot());
        case TarvekMessage::kSetCabsimHpf:
            return valueWords("hpf", "Hz", message.setcabsimhpf());
        case TarvekMessage::kSetCabsimLpf:
            return valueWords("lpf", "Hz", message.setcabsimlpf());
        case TarvekMessage::kSetCabsimLevel:
            return valueWords("level", "dB", message.setcabsimlevel());
        case TarvekMessage::kCurrentFwResponse:
            return firmwareWords(message.currentfwresponse().fwversion());
        case TarvekMessage::kReverbTaperType:
            return formatText("reverb-taper %u", message.reverbtapertype().value());
        case TarvekMessage::kVibratoChannelBright:
            return std::string("vibrato-bright ") + (message.vibratochannelbright().value() ? "on" : "off");
        case TarvekMessage::kGlobalSettingsError:
            return errorText(kSettingsErrors, message.globalsettingserror().error());
        case TarvekMessage::kCurrentAmplifierResponse:
            return words(message.currentamplifierresponse());
        case TarvekMessage::kFactoryRestoreResponse:
            return message.factoryrestoreresponse().issuccessful()
                       ? "what users stored is deleted; restart the amplifier for the factory settings"
                       : "not all that users stored could be deleted";
        default:
            return asText(message);
    }
}

}  // namespace tvk::client
