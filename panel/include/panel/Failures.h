// The two ways in which the program gives up: one line of text each, shown on standard error.
#pragma once

#include <stdexcept>

namespace tvk::panel {

// Bad use; status 2.
class Refusal : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The line cannot be opened, takes nothing, or was hung up; status 3.
class LinkTrouble : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace tvk::panel
