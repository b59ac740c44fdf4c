// Bad use of the program: one line of text, shown alone on standard error with status 2.
#pragma once

#include <stdexcept>

namespace tvk::desk {

class Refusal : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace tvk::desk
