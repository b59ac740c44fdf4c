#include "client/tool/Tool.h"

#include "client/ClientError.h"
#include "client/Session.h"
#include "client/tool/Command.h"
#include "client/tool/Conversation.h"

namespace tvk::client {

namespace {

int converse(const Command& command, const Environment& environment, Printer& printer) {
    if (command.options.hid.empty())
        throw ClientError(
            Failure::BadUse,
            "--hid PATH is missing; name the socket of tarvek-desk's ready line or a /dev/hidrawN");
    const std::unique_ptr<Link> link = environment.openLink(command.options.hid);
    const std::unique_ptr<ClientClock> clock = environment.openClock(command.options.clock);
    Session session(*link, *clock);
    Conversation conversation(session, *clock, printer, environment.stop);
    if (command.isStaying) environment.catchSignals();
    try {
        if (command.isConnecting) conversation.connect();
        command.play(conversation);
    } catch (const ClientError& error) {
        conversation.fail(error);
    }
    conversation.close();
    return conversation.status();
}

bool asksForJson(const std::vector<std::string>& args) {
    for (const std::string& arg : args)
        if (arg == "--json") return true;
    return false;
}

}  // namespace

int runTool(const std::vector<std::string>& args, const Environment& environment) {
    // Known before the words are understood, since they may not be.
    Printer printer(environment.out, environment.errors, asksForJson(args), environment.isTerminal);
    try {
        const std::variant<Command, HelpText> parsed = parseCommand(args);
        if (const HelpText* const help = std::get_if<HelpText>(&parsed)) {
            environment.out << help->text << std::flush;
            return 0;
        }
        return converse(std::get<Command>(parsed), environment, printer);
    } catch (const ClientError& error) {
        printer.failure(error.getFailure(), error.what());
        return static_cast<int>(error.getFailure());
    }
}

}  // namespace tvk::client
