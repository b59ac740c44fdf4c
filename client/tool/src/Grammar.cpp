#include "Grammar.h"

#include <cmath>
#include <limits>
#include <memory>
#include <optional>

#include "Settings.h"
#include "client/ClientError.h"
#include "client/Requests.h"
#include "client/ResponseFile.h"
#include "client/ResponseName.h"
#include "client/tool/Conversation.h"
#include "client/tool/RawFile.h"
#include "client/tool/RunScript.h"
#include "client/tool/TextFile.h"
#include "utility/EscapedText.h"

namespace tvk::client {

namespace {

[[noreturn]] void refuse(const std::string& text) {
    throw ClientError(Failure::BadUse, text);
}

std::function<void(Conversation&)> asking(TarvekMessage request) {
    return [request = std::move(request)](Conversation& conversation) { conversation.ask(request); };
}

std::function<void(Conversation&)> editing(TarvekMessage request, bool isSaved) {
    return [request = std::move(request), isSaved](Conversation& conversation) {
        conversation.edit(request, isSaved);
    };
}

constexpr const char* kSlotHelp = "Cabinet slot, 0 to 2";

}  // namespace

void Grammar::build() {
    app_.require_subcommand(1);
    app_.set_help_flag("-h,--help", "This text");
    addLinkOptions(app_);
    addConnection();
    addAmplifier();
    addResponses();
    addCabinets();
    addSettings();
    addRawAndRun();
}

void Grammar::addLinkOptions(CLI::App& verb) {
    if (isLine_) return;
    verb.add_option("--hid", command_.options.hid, "The link: a socket of tarvek-desk, or /dev/hidrawN")
        ->type_name("PATH")
        ->envname("TARVEK_HID");
    verb.add_option("--clock", command_.options.clock,
                    "Waits take their time from the clock socket of tarvek-desk --hold")
        ->type_name("PATH")
        ->envname("TARVEK_CLOCK");
    verb.add_flag("--json", command_.options.isJson, "Every message as one line of JSON");
}

CLI::App* Grammar::addVerb(CLI::App& parent, const std::string& name, const std::string& about,
                           const std::string& example) {
    CLI::App* const verb = parent.add_subcommand(name, about);
    verb->footer("\nExample: tarvek-client --hid /run/hid " + example);
    addLinkOptions(*verb);
    return verb;
}

CLI::App* Grammar::addGroup(const std::string& name, const std::string& about) {
    CLI::App* const group = app_.add_subcommand(name, about);
    group->require_subcommand(1);
    group->footer("\nExample: tarvek-client " + name + " list --help");
    return group;
}

void Grammar::addConnection() {
    CLI::App* const verb =
        addVerb(app_, "connect", "Connect, stay, and print what the amplifier sends", "connect --seconds 10");
    const auto seconds = std::make_shared<double>(std::numeric_limits<double>::infinity());
    verb->add_option("--seconds", *seconds, "How long; until Ctrl-C without it")->type_name("SECONDS");
    verb->callback([this, seconds] {
        // A century of nanoseconds fits.
        constexpr double kMost = 3e9;
        if (std::isnan(*seconds) || *seconds < 0.0) refuse("--seconds: a duration is a number from 0 on");
        const auto duration = *seconds > kMost ? std::chrono::nanoseconds::max()
                                               : std::chrono::nanoseconds(std::llround(*seconds * 1e9));
        command_.isStaying = true;
        command_.play = [duration](Conversation& conversation) { conversation.watch(duration); };
    });
}

void Grammar::addAmplifier() {
    addVerb(app_, "amp", "Which of the four amplifiers it is", "amp --json")->callback([this] {
        command_.play = asking(requests::currentAmplifier());
    });
    addVerb(app_, "firmware", "The version of its firmware", "firmware")->callback([this] {
        command_.play = asking(requests::firmware());
    });
    addVerb(app_, "profile", "The product family it belongs to", "profile")->callback([this] {
        command_.play = asking(requests::productProfile());
    });
    CLI::App* const restore =
        addVerb(app_, "factory-restore", "Delete all responses and settings that users stored",
                "factory-restore --yes");
    const auto isSure = std::make_shared<bool>(false);
    restore->add_flag("--yes", *isSure, "Without it nothing is done");
    restore->callback([this, isSure] {
        if (!*isSure)
            refuse(
                "factory-restore deletes all uploaded responses and all settings; add --yes if that is "
                "meant");
        command_.play = asking(requests::factoryRestore());
    });
}

void Grammar::addResponses() {
    CLI::App* const group = addGroup("ir", "Responses that users uploaded");
    addVerb(*group, "list", "The uploaded responses in their order", "ir list")->callback([this] {
        command_.play = asking(requests::userIRList());
    });

    CLI::App* const add = addVerb(*group, "add", "Upload a response, in place of one with the same name",
                                  "ir add room.wav \"Big room\"");
    struct Upload {
        std::string file;
        std::optional<std::string> name;
    };
    const auto upload = std::make_shared<Upload>();
    add->add_option("file", upload->file, "WAV or AIFF at 44100 Hz")->required()->type_name("FILE");
    add->add_option("name", upload->name,
                    "Its name on the amplifier; the file's without extension if not given")
        ->type_name("NAME");
    add->callback([this, upload] {
        command_.play = [file = ResponseFile::load(upload->file, upload->name)](Conversation& conversation) {
            if (!file.leftOut().empty())
                conversation.printer().note(escaped(file.name) + ": " + file.leftOut());
            conversation.upload(file.request, escaped(file.name));
        };
    });

    CLI::App* const move =
        addVerb(*group, "move", "Take a response out of one place and insert it at another", "ir move 3 1");
    const auto slots = std::make_shared<std::pair<std::uint32_t, std::uint32_t>>();
    move->add_option("from", slots->first, "Its place in the list, from 1")->required();
    move->add_option("to", slots->second, "Where it goes, from 1")->required();
    move->callback(
        [this, slots] { command_.play = asking(requests::moveUserIR(slots->first, slots->second)); });

    CLI::App* const remove = addVerb(*group, "remove", "Delete a response", "ir remove 2");
    const auto slot = std::make_shared<std::uint32_t>(0);
    remove->add_option("place", *slot, "Its place in the list, from 1")->required();
    remove->callback([this, slot] { command_.play = asking(requests::removeUserIR(*slot)); });

    CLI::App* const factory = addGroup("factory", "Responses that ship with the amplifier");
    addVerb(*factory, "list", "The factory responses", "factory list")->callback([this] {
        command_.play = asking(requests::factoryIRList());
    });
}

void Grammar::addCabinets() {
    CLI::App* const group = addGroup("cab", "The three cabinet slots");
    addVerb(*group, "list", "The slots", "cab list")->callback([this] {
        command_.play = asking(requests::cabsimIRList());
    });

    CLI::App* const select =
        addVerb(*group, "select", "Put a slot in force; without a number tell which is", "cab select 1");
    const auto selected = std::make_shared<std::optional<std::uint32_t>>();
    select->add_option("slot", *selected, kSlotHelp);
    select->callback([this, selected] {
        if (*selected)
            command_.play = [request = requests::setCabsimSelection(**selected)](Conversation& conversation) {
                conversation.select(request);
            };
        else
            command_.play = asking(requests::cabsimSelection());
    });

    CLI::App* const assign = addVerb(*group, "assign", "Put a response in a slot; None takes it out",
                                     "cab assign 0 \"Big room\" --save");
    struct Assignment {
        std::uint32_t slot = 0;
        std::string name;
        bool isFactory = false;
        bool isSaved = false;
    };
    const auto assignment = std::make_shared<Assignment>();
    assign->add_option("slot", assignment->slot, kSlotHelp)->required();
    assign->add_option("name", assignment->name, "The response's name")->required();
    assign->add_flag("--factory", assignment->isFactory, "One that ships with the amplifier");
    assign->add_flag("--save", assignment->isSaved, "Keep it beyond the connection");
    assign->callback([this, assignment] {
        const Assignment& a = *assignment;
        const std::string fault = faultOfSlotName(a.name);
        if (!fault.empty()) refuse("\"" + escaped(a.name) + "\": a name " + fault);
        command_.play = editing(
            a.isFactory ? requests::assignFactoryIR(a.slot, a.name) : requests::assignUserIR(a.slot, a.name),
            a.isSaved);
    });

    addCabinetValue(*group, "hpf", "Set a slot's high-pass, 20 to 500 Hz", "cab hpf 0 100 --save",
                    &requests::setCabsimHpf);
    addCabinetValue(*group, "lpf", "Set a slot's low-pass, 1000 to 20000 Hz", "cab lpf 0 8000 --save",
                    &requests::setCabsimLpf);
    addCabinetValue(*group, "level", "Set a slot's level, -36 to 0 dB", "cab level 0 -6 --save",
                    &requests::setCabsimLevel);

    addVerb(*group, "save", "Keep the slots beyond the connection", "cab save")->callback([this] {
        command_.play = [](Conversation& conversation) { conversation.save(); };
    });
    addVerb(*group, "sync", "Go back to the slots as saved", "cab sync")->callback([this] {
        command_.play = [](Conversation& conversation) { conversation.sync(); };
    });
}

void Grammar::addCabinetValue(CLI::App& group, const std::string& name, const std::string& about,
                              const std::string& example, TarvekMessage (*request)(std::uint32_t, float)) {
    CLI::App* const verb = addVerb(group, name, about, example);
    struct Value {
        std::uint32_t slot = 0;
        float value = 0.0f;
        bool isSaved = false;
    };
    const auto value = std::make_shared<Value>();
    verb->add_option("slot", value->slot, kSlotHelp)->required();
    verb->add_option("value", value->value, "What is beyond the limits is set to them")->required();
    verb->add_flag("--save", value->isSaved, "Keep it beyond the connection");
    verb->callback([this, value, request] {
        command_.play = editing(request(value->slot, value->value), value->isSaved);
    });
}

void Grammar::addSettings() {
    CLI::App* const verb =
        addVerb(app_, "settings", "The settings of the whole amplifier; with names and values, set them",
                "settings reverb-taper 1 vibrato-bright on");
    const auto words = std::make_shared<std::vector<std::string>>();
    verb->add_option("settings", *words, "reverb-taper NUMBER, vibrato-bright on|off");
    verb->callback([this, words] { command_.play = settingsOf(*words); });
}

void Grammar::addRawAndRun() {
    CLI::App* const raw = addVerb(app_, "raw", "Send messages in protobuf's text form, and print what comes",
                                  "raw messages.txt");
    struct Raw {
        std::string file;
        bool isUnconnected = false;
    };
    const auto options = std::make_shared<Raw>();
    raw->add_option("file", options->file, "Messages with --- lines between them; - is the standard input")
        ->required()
        ->type_name("FILE");
    raw->add_flag("--no-connect", options->isUnconnected, "Without opening the connection before");
    raw->callback([this, options] {
        command_.isConnecting = !options->isUnconnected;
        command_.play = [messages = parseMessages(readText(options->file), options->file)](
                            Conversation& conversation) { conversation.exchange(messages); };
    });
    if (isLine_) return;
    CLI::App* const run =
        addVerb(app_, "run", "Play verbs, one a line, in one connection", "run evening.txt");
    struct Run {
        std::string file;
        bool isKeptGoing = false;
    };
    const auto played = std::make_shared<Run>();
    run->add_option("file", played->file, "The verbs; - is the standard input")
        ->required()
        ->type_name("FILE");
    run->add_flag("--keep-going", played->isKeptGoing, "A verb that fails does not end the run");
    run->callback([this, played] {
        command_.isConnecting = false;
        command_.isStaying = true;
        command_.play = prepareRun(played->file, played->isKeptGoing);
    });
}

}  // namespace tvk::client
