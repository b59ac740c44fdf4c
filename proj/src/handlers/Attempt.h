// A request's work, from which no exception comes.
#pragma once

#include <exception>

#include "proj/handlers/MessageHandler.h"
#include "utility/EscapedText.h"

namespace tvk {

template <typename Work>
bool MessageHandler::succeeds(Work work) {
    try {
        work();
        return true;
    } catch (const std::exception& error) {
        warn(escaped(error.what()));
        return false;
    }
}

}  // namespace tvk
