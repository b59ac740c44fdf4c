// The time of an amplifier on a desk, which its clock socket lets pass.
//
// A Unix socket of type STREAM. The line "run SECONDS" asks for that much time; the line "at SECONDS"
// answers, with the time reached, when the time has passed and all threads of the amplifier wait; "error
// TEXT" when it cannot. A session that waits in this time sees every report in the millisecond in which it
// came, in every run alike.
#pragma once

#include <optional>
#include <string>

#include "client/ClientClock.h"
#include "client/Descriptor.h"

namespace tvk::client {

class DeskClock final : public ClientClock {
public:
    // Connects; throws ClientError (NoLink), as all calls do when the socket or its answers fail.
    explicit DeskClock(const std::string& path);

    // One end of a pair.
    DeskClock(Descriptor connected, const std::string& name);

    // Since the construction, as told by the last answer.
    std::chrono::nanoseconds now() override { return now_; }
    bool runsByItself() const override { return false; }

    // Lets time pass in steps of a millisecond.
    bool receive(Link& link, Report& report, std::chrono::milliseconds limit) override;

private:
    void runStep();
    std::string ask(const std::string& line);
    std::string readLine();
    void awaitSocket(short events);
    [[noreturn]] void fail(const std::string& what) const;

    Descriptor socket_;
    std::string name_;
    std::string buffer_;                              // read and not yet taken
    std::optional<std::chrono::nanoseconds> origin_;  // the desk's time at the construction
    std::chrono::nanoseconds now_{0};
};

}  // namespace tvk::client
