// A link that can be opened and closed.
#pragma once

#include <string>

namespace tvk {

class IDevice {
public:
    virtual ~IDevice() = default;

    // False when it does not open, and when it is open already.
    virtual bool open(const std::string& path) = 0;
    virtual bool isOpen() const = 0;

    // A closed device stays closed.
    virtual void close() = 0;
};

}  // namespace tvk
