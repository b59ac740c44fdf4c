// The words of the verb "settings".
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tvk::client {

class Conversation;

// Pairs of a name and a value; none asks for both settings. Throws ClientError (BadUse).
std::function<void(Conversation&)> settingsOf(const std::vector<std::string>& words);

}  // namespace tvk::client
