// cmake --install into a folder that stands for the amplifier's file system.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <vector>

#include "support/TemporaryFolder.h"

namespace fs = std::filesystem;

namespace {

std::string textOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

// Status of a shell command; what it printed in output.
int run(const std::string& command, const fs::path& output) {
    const int status = std::system((command + " >'" + output.string() + "' 2>&1").c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Contents by path, relative to the folder; folders end in "/" and hold nothing.
std::map<std::string, std::string> treeOf(const fs::path& folder) {
    std::map<std::string, std::string> tree;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const std::string path = fs::relative(entry.path(), folder).string();
        if (entry.is_directory())
            tree[path + "/"];
        else
            tree[path] = textOf(entry.path());
    }
    return tree;
}

// A unit file's values by "Section.Key"; a key that comes twice has both, with a blank between them.
std::map<std::string, std::string> keysOf(const std::string& unit) {
    std::map<std::string, std::string> keys;
    std::istringstream lines(unit);
    std::string section;
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line.front() == '#' || line.front() == ';') continue;
        if (line.front() == '[') {
            section = line.substr(1, line.find(']') - 1);
            continue;
        }
        const std::size_t equals = line.find('=');
        EXPECT_NE(equals, std::string::npos) << line;
        std::string& value = keys[section + "." + line.substr(0, equals)];
        value += (value.empty() ? "" : " ") + line.substr(equals + 1);
    }
    return keys;
}

class Install : public testing::Test {
protected:
    fs::path root() const { return fs::path(folder.path()) / "root"; }
    fs::path unit() const { return root() / "usr/lib/systemd/system/tarvek.service"; }
    fs::path output() const { return fs::path(folder.path()) / "output"; }

    void install(const std::string& environment, const std::string& options) {
        const std::string command =
            environment + " '" TARVEK_CMAKE "' --install '" TARVEK_BUILD "' --component product " + options;
        ASSERT_EQ(run(command, output()), 0) << textOf(output());
    }
    void installWithPrefix() { install("", "--prefix '" + root().string() + "'"); }

    TemporaryFolder folder;
};

}  // namespace

TEST_F(Install, PutsTheProcessAndAllThatItReadsWhereItLooksForThem) {
    installWithPrefix();
    const fs::path program = root() / "usr/bin/tarvek";
    EXPECT_TRUE(textOf(program) == textOf(fs::path(TARVEK_BUILD) / "bin/tarvek"));
    EXPECT_EQ(fs::status(program).permissions() & fs::perms::all, fs::perms(0755));
    EXPECT_TRUE(treeOf(root() / "home/root") == treeOf(fs::path(TARVEK_SOURCE) / "data/root/home/root"));
    EXPECT_TRUE(fs::exists(root() / "home/root/product_profile.json"));
    EXPECT_TRUE(fs::exists(root() / "home/root/release-version"));
    EXPECT_TRUE(fs::is_directory(root() / "mnt/user-data"));
    EXPECT_TRUE(fs::is_empty(root() / "mnt/user-data"));
}

TEST_F(Install, PutsNothingElseThere) {
    installWithPrefix();
    std::vector<std::string> others;
    for (const auto& [path, text] : treeOf(root()))
        if (!path.ends_with('/') && !path.starts_with("home/root/")) others.push_back(path);
    EXPECT_EQ(others, (std::vector<std::string>{"usr/bin/tarvek", "usr/lib/systemd/system/tarvek.service"}));
}

TEST_F(Install, IsTheSameUnderAStagingFolder) {
    install("DESTDIR='" + (root() / "staged").string() + "'", "");
    installWithPrefix();
    const auto staged = treeOf(root() / "staged");
    fs::remove_all(root() / "staged");
    EXPECT_TRUE(staged == treeOf(root()));
}

TEST_F(Install, HasAUnitThatEndsTheProcessInOrderStartsItAgainAndGrantsItsLimits) {
    installWithPrefix();
    auto keys = keysOf(textOf(unit()));
    EXPECT_EQ(keys["Service.ExecStart"], "/usr/bin/tarvek");
    EXPECT_TRUE(fs::exists(root().string() + keys["Service.ExecStart"]));
    EXPECT_EQ(keys["Service.KillSignal"], "SIGUSR1");
    EXPECT_EQ(keys["Service.Restart"], "always");
    EXPECT_EQ(keys["Unit.StartLimitIntervalSec"], "0");
    EXPECT_GE(std::stoi(keys["Service.LimitRTPRIO"]), 49);
    EXPECT_EQ(keys["Service.LimitMEMLOCK"], "infinity");
    EXPECT_EQ(keys["Unit.RequiresMountsFor"], "/home/root /mnt/user-data");
    EXPECT_EQ(keys["Install.WantedBy"], "multi-user.target");
}

// Where the machine has no systemd, the keys above are all that can be looked at.
TEST_F(Install, HasAUnitThatSystemdHasNothingToSayAbout) {
    installWithPrefix();
    if (run("command -v systemd-analyze", output()) != 0) return;
    // The unit's program is the installed one; the targets that it names are the machine's.
    std::string text = textOf(unit());
    const std::string program = "ExecStart=/usr/bin/tarvek";
    ASSERT_NE(text.find(program), std::string::npos);
    text.replace(text.find(program), program.size(), "ExecStart=" + (root() / "usr/bin/tarvek").string());
    const fs::path copy = fs::path(folder.path()) / "tarvek.service";
    std::ofstream(copy) << text;
    EXPECT_EQ(run("systemd-analyze verify --man=no '" + copy.string() + "'", output()), 0);
    EXPECT_EQ(textOf(output()), "");
}
