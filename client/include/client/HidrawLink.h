// Reports over a character device of the Linux hidraw driver, "/dev/hidrawN".
//
// The amplifier's report descriptor has no report numbers: a write is the number 0 and the report's 64 bytes,
// a read is the 64 bytes alone.
#pragma once

#include <string>

#include "client/Descriptor.h"
#include "client/Link.h"

namespace tvk::client {

class HidrawLink final : public Link {
public:
    // Opens the node; throws ClientError (NoLink).
    explicit HidrawLink(const std::string& path);

    bool send(const Report& report) override;
    bool receive(Report& report, std::chrono::milliseconds limit) override;

private:
    [[noreturn]] void throwGone() const;

    Descriptor node_;
    std::string path_;
};

}  // namespace tvk::client
