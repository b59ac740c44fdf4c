#include "blackbox/support/DeskProcess.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <linux/capability.h>
#include <poll.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::vector<std::string> linesOf(const std::filesystem::path& file) {
    std::ifstream stream(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

void redirect(const std::filesystem::path& file, int descriptor) {
    dup2(::open(file.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600), descriptor);
}

void giveUpRealTime() {
    const rlimit none{0, 0};
    setrlimit(RLIMIT_RTPRIO, &none);
    setrlimit(RLIMIT_MEMLOCK, &none);
    // For a test that runs as root, whom limits do not bind. An ordinary user has nothing to drop.
    prctl(PR_CAPBSET_DROP, CAP_SYS_NICE);
    prctl(PR_CAPBSET_DROP, CAP_IPC_LOCK);
}

}  // namespace

DeskProcess::DeskProcess(const std::filesystem::path& folder, std::vector<std::string> arguments,
                         Rights rights) {
    static std::atomic<int> started{0};
    const std::string name = "desk" + std::to_string(started++);
    outputFile_ = folder / (name + ".out");
    errorFile_ = folder / (name + ".err");
    arguments.insert(arguments.begin(), TARVEK_DESK_PROGRAM);
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    pid_ = fork();
    if (pid_ < 0) throw std::runtime_error("no child process");
    if (pid_ == 0) {
        // A test that is killed takes the program with it.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        redirect(outputFile_, STDOUT_FILENO);
        redirect(errorFile_, STDERR_FILENO);
        if (rights == Rights::NoRealTime) giveUpRealTime();
        execv(pointers.front(), pointers.data());
        _exit(127);
    }
}

DeskProcess::~DeskProcess() {
    if (ended_) return;
    kill(pid_, SIGKILL);
    wait();
}

bool DeskProcess::hasEnded() {
    if (!ended_) ended_ = waitpid(pid_, &status_, WNOHANG) == pid_;
    return ended_;
}

bool DeskProcess::waitForLine(const std::string& start) {
    while (true) {
        const bool isLast = hasEnded();
        if (findLine(start) >= 0) return true;
        if (isLast) return false;
        poll(nullptr, 0, 10);
    }
}

void DeskProcess::signal(int number) {
    kill(pid_, number);
}

int DeskProcess::wait() {
    while (!ended_)
        ended_ = waitpid(pid_, &status_, 0) == pid_ || errno != EINTR;
    return WIFEXITED(status_) ? WEXITSTATUS(status_) : -WTERMSIG(status_);
}

std::vector<std::string> DeskProcess::outputLines() const {
    return linesOf(outputFile_);
}

std::vector<std::string> DeskProcess::errorLines() const {
    return linesOf(errorFile_);
}

int DeskProcess::findLine(const std::string& start, int from) const {
    const std::vector<std::string> lines = outputLines();
    for (std::size_t i = static_cast<std::size_t>(from); i < lines.size(); ++i)
        if (lines[i].rfind(start, 0) == 0) return static_cast<int>(i);
    return -1;
}
