// Sends bytes, or frames under a good CRC, to the serial link's receiver. Its laws:
// support/UartReceiverLaws.h.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "support/UartReceiverLaws.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static UartReceiverLaws laws;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    if (const char* const law = laws.brokenBy(UartReceiverLaws::streamOf(input))) {
        std::fprintf(stderr, "broken: %s\n", law);
        std::abort();
    }
    return 0;
}
