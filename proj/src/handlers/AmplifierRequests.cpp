#include <optional>

#include "core/System/DspArchive.h"
#include "handlers/Attempt.h"
#include "handlers/Reply.h"
#include "proj/models/CabsimModel.h"
#include "proj/models/SystemInfoModel.h"
#include "utility/Exception.h"
#include "utility/Log.h"

namespace tvk {

namespace {

constexpr const char* kTag = "MessageHandler";
constexpr const char* kProfile = "/home/root/product_profile.json";

// A string of a message is UTF-8 alone; the client could not read it otherwise.
std::string messageString(const std::string& text) {
    return isUtf8(text) ? text : escaped(text);
}

}  // namespace

std::string MessageHandler::readProductFamily() const {
    std::string text;
    if (storage_.load(kProfile, text) != Storage::Load::Done) TVK_THROW("%s cannot be read", kProfile);
    std::string family;
    DspArchive(text).get("productFamily", family);
    if (family.empty()) TVK_THROW("%s has no product family", kProfile);
    return family;
}

void MessageHandler::productProfileRequest() {
    log::debug(kTag, "sendProductProfile");
    TarvekMessage message = newReply();
    if (succeeds([&] { message.mutable_productprofileresponse()->set_productfamily(readProductFamily()); }))
        reply(message, "Failed to send ProductProfileResponse message.");
    else
        TVK_ERROR_LIMITED(log_, "Failed to read product profile from filesystem.");
}

void MessageHandler::currentFwRequest() {
    TarvekMessage message = newReply();
    if (succeeds([&] {
            const std::string version = systemInfo_.getFirmwareVersion();
            message.mutable_currentfwresponse()->set_fwversion(messageString(version));
        }))
        reply(message, "Failed to send current firmware response message.");
    else
        warn("Failed to get current firmware version");
}

void MessageHandler::getCurrentAmplifier() {
    std::optional<int> amplifier;
    if (!succeeds([&] { amplifier = cabsims_.getCurrentAmplifier(); }) || !amplifier) {
        warn("Failed to get current amplifier");
        return;
    }
    TarvekMessage message = newReply();
    CurrentAmplifierResponse& response = *message.mutable_currentamplifierresponse();
    response.set_dummy(true);
    response.set_currentampenum(static_cast<unsigned>(*amplifier));
    reply(message, "Failed to send current amplifier response message.");
}

void MessageHandler::factoryRestoreRequest() {
    bool isRestored = false;
    succeeds([&] { isRestored = systemInfo_.factoryRestore(); });
    TarvekMessage message = newReply();
    FactoryRestoreResponse& response = *message.mutable_factoryrestoreresponse();
    response.set_dummy(true);
    response.set_issuccessful(isRestored);
    reply(message, "Failed to send factory restore response message.");
}

}  // namespace tvk
