// A thread that writes one file whenever it is asked to, so that nobody else waits for the disk.
//
// Requests that come while one is pending are one. A request that is pending at the end is still written.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace tvk {

class SaveThread {
public:
    // Starts the thread, on processor 0 with priority 45. write: on that thread, with no lock held; what it
    // answers is handed to those who wait. It does not throw. name: 1 to 15 characters.
    SaveThread(const std::string& name, std::function<bool()> write);
    ~SaveThread();
    SaveThread(const SaveThread&) = delete;
    SaveThread& operator=(const SaveThread&) = delete;

    // Any thread but the audio thread.
    void request();

    // Returns when a write that began after the call is done, with its answer. The caller holds no lock that
    // write takes.
    bool requestAndWait();

    // Returns when every request made before is done.
    void finishPending();

private:
    void loop();

    const std::function<bool()> write_;
    std::mutex mutex_;
    std::condition_variable saveRequested_;
    std::condition_variable saveDone_;
    std::uint64_t requested_ = 0;  // requests made
    std::uint64_t done_ = 0;       // requests that a finished write covers
    bool isSaved_ = false;         // the answer of the last write
    bool isEnding_ = false;
    std::thread thread_;
};

}  // namespace tvk
