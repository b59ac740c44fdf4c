#include "TarvekMessage/ProtobufLog.h"

#include <google/protobuf/stubs/logging.h>
#include <mutex>

namespace tvk {

void silenceProtobufLog() {
    static std::once_flag once;
    std::call_once(once, [] { google::protobuf::SetLogHandler(nullptr); });
}

}  // namespace tvk
