#include "utility/RealtimeThread.h"

#if defined(__x86_64__)
#include <xmmintrin.h>
#endif

namespace tvk {

namespace {

thread_local bool marked = false;

#if defined(__x86_64__)
constexpr unsigned long kFlushBits = 0x8040;  // MXCSR: FTZ is bit 15, DAZ bit 6
unsigned long readFloatControl() {
    return _mm_getcsr();
}
void writeFloatControl(unsigned long value) {
    _mm_setcsr(static_cast<unsigned>(value));
}
#elif defined(__aarch64__)
constexpr unsigned long kFlushBits = 1UL << 24;  // FPCR: FZ
unsigned long readFloatControl() {
    unsigned long value;
    asm volatile("mrs %0, fpcr" : "=r"(value));
    return value;
}
void writeFloatControl(unsigned long value) {
    asm volatile("msr fpcr, %0" : : "r"(value));
}
#else
constexpr unsigned long kFlushBits = 0;
unsigned long readFloatControl() {
    return 0;
}
void writeFloatControl(unsigned long) {}
#endif

}  // namespace

RealtimeThreadScope::RealtimeThreadScope() : markedBefore_(marked), floatControlBefore_(readFloatControl()) {
    marked = true;
    writeFloatControl(floatControlBefore_ | kFlushBits);
}

RealtimeThreadScope::~RealtimeThreadScope() {
    writeFloatControl(floatControlBefore_);
    marked = markedBefore_;
}

bool RealtimeThreadScope::isMarked() {
    return marked;
}

}  // namespace tvk
