// Verbs played in one connection, one a line.
#pragma once

#include <string>

#include "client/tool/Command.h"

namespace tvk::client {

class Conversation;

// path: a file, of which every line is understood before the first is played, or "-" for the standard input,
// line by line. isKeptGoing: a verb that fails does not end the run, whose status is that of its first
// failure.
std::function<void(Conversation&)> prepareRun(const std::string& path, bool isKeptGoing);

}  // namespace tvk::client
