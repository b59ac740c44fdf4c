#include "client/MessageCodec.h"

#include <google/protobuf/stubs/logging.h>
#include <mutex>

#include "TarvekMessage.pb.h"

namespace tvk::client {

namespace {

// The library writes to standard error what it does not like about a peer's bytes.
void silenceLibrary() {
    static std::once_flag once;
    std::call_once(once, [] { google::protobuf::SetLogHandler(nullptr); });
}

}  // namespace

std::optional<Bytes> encode(const TarvekMessage& message) {
    silenceLibrary();
    const std::size_t size = message.ByteSizeLong();
    if (size == 0 || size > kMaxMessageBytes) return std::nullopt;
    Bytes bytes(size);
    if (!message.SerializeToArray(bytes.data(), static_cast<int>(size))) return std::nullopt;
    return bytes;
}

bool decode(std::span<const std::uint8_t> bytes, TarvekMessage& message) {
    silenceLibrary();
    return bytes.size() <= kMaxMessageBytes &&
           message.ParseFromArray(bytes.data(), static_cast<int>(bytes.size()));
}

}  // namespace tvk::client
