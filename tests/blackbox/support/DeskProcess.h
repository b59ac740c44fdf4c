// tarvek-desk as a child process, seen from outside: its lines, its files, its status.
#pragma once

#include <filesystem>
#include <string>
#include <sys/types.h>
#include <vector>

class DeskProcess {
public:
    // Starts the program; its outputs go to files in the folder. Without the right to real-time scheduling
    // and to locked memory it starts like a program of any user.
    enum class Rights { AsWeAre, NoRealTime };
    DeskProcess(const std::filesystem::path& folder, std::vector<std::string> arguments,
                Rights rights = Rights::AsWeAre);
    ~DeskProcess();
    DeskProcess(const DeskProcess&) = delete;
    DeskProcess& operator=(const DeskProcess&) = delete;

    // Waits until a line of standard output starts with the text; false when the process ends before.
    bool waitForLine(const std::string& start);

    void signal(int number);

    // Waits for the end: the exit status, or the negative number of the signal that killed it.
    int wait();

    std::vector<std::string> outputLines() const;
    std::vector<std::string> errorLines() const;

    // The first line of standard output that starts with the text, from line `from` on; -1 without one.
    int findLine(const std::string& start, int from = 0) const;

    // True once the process is gone.
    bool hasEnded();

private:
    std::filesystem::path outputFile_;
    std::filesystem::path errorFile_;
    pid_t pid_ = -1;
    bool ended_ = false;
    int status_ = 0;
};
