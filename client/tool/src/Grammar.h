// The verbs on the command line.
#pragma once

#include <CLI/CLI.hpp>

#include "TarvekMessage.pb.h"
#include "client/tool/Command.h"

namespace tvk::client {

// Builds the verbs into an app. When the app has parsed, command.play is what was asked for.
//
// command: filled while parsing. isLine: of a run, without the link's options. All outlive the parsing.
class Grammar {
public:
    Grammar(CLI::App& app, Command& command, bool isLine) : app_(app), command_(command), isLine_(isLine) {}
    Grammar(const Grammar&) = delete;
    Grammar& operator=(const Grammar&) = delete;

    void build();

private:
    using Play = std::function<void(Conversation&)>;

    CLI::App* addVerb(CLI::App& parent, const std::string& name, const std::string& about,
                      const std::string& example);
    CLI::App* addGroup(const std::string& name, const std::string& about);
    void addLinkOptions(CLI::App& verb);

    void addConnection();
    void addAmplifier();
    void addResponses();
    void addCabinets();
    void addCabinetValue(CLI::App& group, const std::string& name, const std::string& about,
                         const std::string& example, TarvekMessage (*request)(std::uint32_t, float));
    void addSettings();
    void addRawAndRun();

    CLI::App& app_;
    Command& command_;
    const bool isLine_;
};

}  // namespace tvk::client
