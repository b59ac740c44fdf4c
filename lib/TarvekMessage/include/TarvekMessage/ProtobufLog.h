// What the protobuf library itself would write to standard error.
#pragma once

namespace tvk {

// Throws the library's own lines away from now on: a peer can cause one with every message that it sends, and
// whoever parses says in our log what failed. Any thread.
void silenceProtobufLog();

}  // namespace tvk
