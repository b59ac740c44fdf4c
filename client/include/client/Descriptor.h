// Owns a file descriptor.
#pragma once

#include <unistd.h>
#include <utility>

namespace tvk::client {

class Descriptor {
public:
    explicit Descriptor(int descriptor = -1) : descriptor_(descriptor) {}
    ~Descriptor() {
        if (descriptor_ != -1) ::close(descriptor_);
    }
    Descriptor(Descriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }

    int get() const { return descriptor_; }

private:
    int descriptor_;
};

}  // namespace tvk::client
