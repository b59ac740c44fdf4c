// What every reply has in common.
#pragma once

#include "TarvekMessage.pb.h"

namespace tvk {

// A reply before its type is set; never empty on the wire.
inline TarvekMessage newReply() {
    TarvekMessage message;
    message.set_ignore_this_padding(true);
    return message;
}

}  // namespace tvk
