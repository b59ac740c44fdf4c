#include "handlers/Attempt.h"
#include "handlers/Reply.h"
#include "proj/models/GlobalSettingsModel.h"

namespace tvk {

namespace {

// GlobalSettingsErrorMessage.error.
constexpr unsigned kReverbTaperFailed = 1;
constexpr unsigned kVibratoBrightFailed = 2;

}  // namespace

void MessageHandler::reverbTaperType(const GlobalSettingsMessage::ReverbTaperType& request) {
    if (succeeds([&] { settings_.setReverbTaperType(request.value()); }))
        sendReverbTaperType();
    else
        sendGlobalSettingsError(kReverbTaperFailed);
}

void MessageHandler::vibratoChannelBright(const GlobalSettingsMessage::VibratoChannelBright& request) {
    if (succeeds([&] { settings_.setVibratoChannelBright(request.value()); }))
        sendVibratoChannelBright();
    else
        sendGlobalSettingsError(kVibratoBrightFailed);
}

void MessageHandler::reverbTaperTypeRequest() {
    sendReverbTaperType();
}

void MessageHandler::vibratoChannelBrightRequest() {
    sendVibratoChannelBright();
}

void MessageHandler::sendReverbTaperType() {
    succeeds([this] {
        TarvekMessage message = newReply();
        message.mutable_reverbtapertype()->set_value(settings_.getReverbTaperType());
        reply(message, "Failed to send reverb taper type changed message.");
    });
}

void MessageHandler::sendVibratoChannelBright() {
    succeeds([this] {
        TarvekMessage message = newReply();
        message.mutable_vibratochannelbright()->set_value(settings_.getVibratoChannelBright());
        reply(message, "Failed to send vibrato channel bright changed message.");
    });
}

void MessageHandler::sendGlobalSettingsError(unsigned error) {
    TarvekMessage message = newReply();
    message.mutable_globalsettingserror()->set_error(error);
    reply(message, "Failed to send GlobalSettingsError message.");
}

}  // namespace tvk
