// The link that lies behind a path.
#pragma once

#include <memory>
#include <string>

#include "client/Link.h"

namespace tvk::client {

// A Unix socket or a hidraw node, by the kind of file. Throws ClientError (NoLink).
std::unique_ptr<Link> openLink(const std::string& path);

}  // namespace tvk::client
