// The watch without sanitizers: definitions that the linker takes in place of the C library's.

#if !defined(TARVEK_SANITIZED)

#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <malloc.h>
#include <pthread.h>
#include <sys/uio.h>
#include <time.h>
#include <unistd.h>

#include "RealtimeWatch.h"
#include "support/RealtimeGuard.h"

// The allocator's own entries, which glibc exports for the purpose.
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* memory);
}

namespace {

using realtimewatch::report;

template <typename Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

using LockMutex = int (*)(pthread_mutex_t*);
using Write = ssize_t (*)(int, const void*, size_t);
using WriteV = ssize_t (*)(int, const iovec*, int);
using NanoSleep = int (*)(const timespec*, timespec*);
using ClockNanoSleep = int (*)(clockid_t, int, const timespec*, timespec*);
using USleep = int (*)(useconds_t);

}  // namespace

extern "C" {

void* malloc(size_t size) {
    report(realtimewatch::kAllocation);
    return __libc_malloc(size);
}

void* calloc(size_t count, size_t size) {
    report(realtimewatch::kAllocation);
    return __libc_calloc(count, size);
}

void* realloc(void* memory, size_t size) {
    report(realtimewatch::kAllocation);
    return __libc_realloc(memory, size);
}

void* memalign(size_t alignment, size_t size) {
    report(realtimewatch::kAllocation);
    return __libc_memalign(alignment, size);
}

void* aligned_alloc(size_t alignment, size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** memory, size_t alignment, size_t size) {
    void* const got = memalign(alignment, size);
    if (!got) return ENOMEM;
    *memory = got;
    return 0;
}

void free(void* memory) {
    if (memory) report(realtimewatch::kFree);
    __libc_free(memory);
}

int pthread_mutex_lock(pthread_mutex_t* mutex) {
    static const LockMutex real = next<LockMutex>("pthread_mutex_lock");
    report(realtimewatch::kLock);
    return real(mutex);
}

ssize_t write(int file, const void* data, size_t size) {
    static const Write real = next<Write>("write");
    report(realtimewatch::kSystemCall);
    return real(file, data, size);
}

ssize_t writev(int file, const iovec* parts, int count) {
    static const WriteV real = next<WriteV>("writev");
    report(realtimewatch::kSystemCall);
    return real(file, parts, count);
}

int nanosleep(const timespec* duration, timespec* remaining) {
    static const NanoSleep real = next<NanoSleep>("nanosleep");
    report(realtimewatch::kSystemCall);
    return real(duration, remaining);
}

int clock_nanosleep(clockid_t clock, int flags, const timespec* time, timespec* remaining) {
    static const ClockNanoSleep real = next<ClockNanoSleep>("clock_nanosleep");
    report(realtimewatch::kSystemCall);
    return real(clock, flags, time, remaining);
}

int usleep(useconds_t duration) {
    static const USleep real = next<USleep>("usleep");
    report(realtimewatch::kSystemCall);
    return real(duration);
}

}  // extern "C"

namespace realtimewatch {

// The functions are in place from the program's start.
void install() {}

}  // namespace realtimewatch

bool RealtimeGuard::seesLocksAndSystemCalls() {
    return true;
}

#endif
