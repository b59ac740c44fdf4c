// The watch under a sanitizer, whose allocator calls the hooks below.

#if defined(TARVEK_SANITIZED)

#include <cstddef>

#include "RealtimeWatch.h"
#include "support/RealtimeGuard.h"

// Of the sanitizers' run-time library; not every compiler ships the header that declares it.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*onAllocation)(const volatile void* memory,
                                                                              std::size_t size),
                                                         void (*onFree)(const volatile void* memory));

namespace realtimewatch {

namespace {

void onAllocation(const volatile void*, std::size_t) {
    report(kAllocation);
}

void onFree(const volatile void* memory) {
    if (memory) report(kFree);
}

}  // namespace

void install() {
    static const int isInstalled = __sanitizer_install_malloc_and_free_hooks(onAllocation, onFree);
    static_cast<void>(isInstalled);
}

}  // namespace realtimewatch

bool RealtimeGuard::seesLocksAndSystemCalls() {
    return false;
}

#endif
