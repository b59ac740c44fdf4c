// Reports over a Unix socket of type SEQPACKET: one packet a report, in both directions.
#pragma once

#include <string>

#include "client/Descriptor.h"
#include "client/Link.h"

namespace tvk::client {

class SocketLink final : public Link {
public:
    // Connects; throws ClientError (NoLink).
    explicit SocketLink(const std::string& path);

    // One end of a pair.
    SocketLink(Descriptor connected, const std::string& name);

    bool send(const Report& report) override;
    bool receive(Report& report, std::chrono::milliseconds limit) override;

private:
    [[noreturn]] void throwGone() const;

    Descriptor socket_;
    std::string name_;
};

}  // namespace tvk::client
