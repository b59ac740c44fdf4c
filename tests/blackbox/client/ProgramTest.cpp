// The same conversation as a person has it: through tarvek-client alone.
#include <cstdio>
#include <nlohmann/json.hpp>
#include <sys/wait.h>

#include "blackbox/client/ClientConversation.h"

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

namespace fs = std::filesystem;

namespace {

struct Outcome {
    int status;
    std::string output;  // both streams
};

class ClientProgram : public ClientConversation {
protected:
    void SetUp() override { start(); }

    // Runs it to its end, with the desk's clock in its hand.
    Outcome run(const std::string& verb) {
        desk().lendClock();
        const std::string command = std::string(TARVEK_CLIENT_PROGRAM) + " --hid " + desk().readyText("hid") +
                                    " --clock " + desk().readyText("clock") + " " + verb + " 2>&1";
        Outcome outcome{-1, {}};
        std::FILE* const pipe = popen(command.c_str(), "r");
        char text[4096];
        while (const std::size_t count = std::fread(text, 1, sizeof text, pipe))
            outcome.output.append(text, count);
        outcome.status = WEXITSTATUS(pclose(pipe));
        desk().takeClockBack();
        return outcome;
    }

    std::string done(const std::string& verb) {
        const Outcome outcome = run(verb);
        EXPECT_EQ(outcome.status, 0) << verb << ": " << outcome.output;
        return outcome.output;
    }

    // The messages of --json, one a line.
    nlohmann::json json(const std::string& verb) {
        std::istringstream lines(done("--json " + verb));
        std::string last;
        for (std::string line; std::getline(lines, line);)
            if (line.rfind('{', 0) == 0) last = line;
        return nlohmann::json::parse(last);
    }

    std::string response(const std::string& name) {
        fs::copy_file(fs::path(TARVEK_PRODUCT_HOME) / "IRs" / "TestCabinet1.wav", folder() / (name + ".wav"));
        return folder() / (name + ".wav");
    }
};

}  // namespace

TEST_F(ClientProgram, TellsWhatTheAmplifierIs) {
    EXPECT_EQ(json("amp").at("currentAmplifierResponse").at("currentAmpEnum"), 0);
    EXPECT_EQ(json("profile").at("productProfileResponse").at("productFamily"), "slatePanel");
    EXPECT_THAT(json("firmware").at("currentFwResponse").at("fwVersion").get<std::string>(), Not(IsEmpty()));
}

TEST_F(ClientProgram, UploadsAssignsSavesAndFindsItAllAgainAfterARestart) {
    done("ir add " + response("dark"));
    done("ir add " + response("second") + " Other");
    done("ir move 2 1");
    EXPECT_THAT(done("ir list"), AllOf(HasSubstr("1  Other"), HasSubstr("2  dark")));
    done("cab assign 0 dark --save");
    done("cab hpf 0 80 --save");
    done("settings reverb-taper 1 vibrato-bright on");
    stop();
    start();
    const nlohmann::json slots = json("cab list").at("cabsimIRListResponse").at("record");
    EXPECT_EQ(slots.at(0).at("irName"), "dark");
    EXPECT_EQ(slots.at(0).at("hpf"), 80);
    EXPECT_THAT(done("ir list"), AllOf(HasSubstr("1  Other"), HasSubstr("2  dark")));
    EXPECT_THAT(done("settings"), AllOf(HasSubstr("reverb-taper 1"), HasSubstr("vibrato-bright on")));
    const double again = listen();
    EXPECT_LT(trebleOf(again), -15.0);
}

TEST_F(ClientProgram, AnUnsavedEditLapsesAndSaysSo) {
    EXPECT_THAT(done("cab hpf 0 80"), HasSubstr("laps"));
    desk().run(5.5);
    EXPECT_EQ(json("cab list").at("cabsimIRListResponse").at("record").at(0).at("hpf"), 20);
}

TEST_F(ClientProgram, RefusalsBadUseAndNoLinkHaveTheirStatuses) {
    EXPECT_EQ(run("ir remove 1").status, 1);
    EXPECT_EQ(run("ir move 1 60").status, 1);
    EXPECT_EQ(run("cab").status, 2);
    EXPECT_EQ(run("factory-restore").status, 2);
    EXPECT_EQ(run("ir add " + (folder() / "nothing.wav").string()).status, 2);
    std::ofstream(folder() / "words.wav") << "These are words.";
    EXPECT_EQ(run("ir add " + (folder() / "words.wav").string()).status, 2);
    EXPECT_FALSE(fs::exists(userData() / "userIRs/words.wav"));
    start({"--no-host"});
    EXPECT_EQ(run("amp").status, 3);
}

TEST_F(ClientProgram, PlaysVerbsInOneConnection) {
    std::ofstream(folder() / "evening.txt") << "ir add " << response("dark") << "\n"
                                            << "cab assign 1 dark\ncab select 1\ncab save\ncab list\n";
    EXPECT_THAT(done("run " + (folder() / "evening.txt").string()), HasSubstr("dark"));
    EXPECT_THAT(readText(userData() / "userCabsimConfig.json"), HasSubstr("dark"));
}

TEST_F(ClientProgram, RestoresTheFactorySettings) {
    done("ir add " + response("dark"));
    done("cab assign 0 dark --save");
    done("factory-restore --yes");
    stop();
    start();
    EXPECT_THAT(done("ir list"), Not(HasSubstr("dark")));
    EXPECT_THAT(done("cab list"), Not(HasSubstr("dark")));
}
