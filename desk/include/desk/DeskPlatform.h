// What the amplifier is told of where it runs, on a desk.
#pragma once

#include "desk/Endpoints.h"
#include "desk/Peers.h"
#include "desk/ProductRoot.h"
#include "proj/platform/Platform.h"
#include "utility/Clock.h"

namespace tvk::desk {

// The product's paths and devices, replaced by the desk's; who watches and ends the run is left to the
// caller.
Platform deskPlatform(const ProductRoot& root, const Endpoints& endpoints, const Peers& peers, Clock& clock);

}  // namespace tvk::desk
