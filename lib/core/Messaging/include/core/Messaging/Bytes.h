// A message or a frame as bytes.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace tvk {

using Bytes = std::vector<std::uint8_t>;
using OwnedBytes = std::unique_ptr<Bytes>;

}  // namespace tvk
