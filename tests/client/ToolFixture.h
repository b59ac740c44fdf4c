// The program in process, on a link to an amplifier that does as it is told, in its time.
#pragma once

#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "FakeAmplifier.h"
#include "MessageText.h"
#include "client/tool/Tool.h"
#include "support/LogRecorder.h"
#include "support/SoundFileBytes.h"
#include "support/TemporaryFolder.h"

class ToolFixture : public testing::Test {
protected:
    struct Result {
        int status;
        std::string out;
        std::string errors;
    };

    ToolFixture() {
        amplifier.answer = [this](const TarvekMessage& request) { return answers[request.type_case()]; };
    }

    // To requests of a kind, texts of messages.
    void onRequest(const std::string& request, const std::vector<std::string>& replies) {
        FakeAmplifier::Messages& messages = answers[messageOf(request).type_case()];
        messages.clear();
        for (const std::string& reply : replies)
            messages.push_back(messageOf(reply));
    }

    Result run(std::vector<std::string> args) {
        args.insert(args.begin(), {"--hid", "fake"});
        return runBare(args);
    }

    Result runBare(const std::vector<std::string>& args) {
        std::ostringstream out;
        std::ostringstream errors;
        const tvk::client::Environment environment{
            out,
            errors,
            false,
            [this](const std::string&) { return amplifier.newLink(); },
            [this](const std::string&) { return std::make_unique<FakeClock>(amplifier); },
            stop,
            [this] { isCatchingSignals = true; }};
        const int status = tvk::client::runTool(args, environment);
        return {status, out.str(), errors.str()};
    }

    // What came after the connection request, heartbeats aside.
    std::vector<std::string> requests() const {
        std::vector<std::string> texts;
        for (const TarvekMessage& message : amplifier.received)
            if (!message.has_connectionmessage()) texts.push_back(textOf(message));
        return texts;
    }

    std::string fileWith(const std::string& name, const std::string& bytes) const {
        soundfile::write(folder.file(name), bytes);
        return folder.file(name);
    }

    LogRecorder log;
    TemporaryFolder folder;
    std::map<int, FakeAmplifier::Messages> answers;
    FakeAmplifier amplifier;
    std::atomic<bool> stop{false};
    bool isCatchingSignals = false;
};
