#include "utility/RealtimeLogWriter.h"

#include <chrono>
#include <pthread.h>

#include "utility/Clock.h"
#include "utility/Log.h"

namespace tvk {

RealtimeLogWriter::RealtimeLogWriter()
    : thread_([this] {
          pthread_setname_np(pthread_self(), "LogWriter");
          while (running_.load(std::memory_order_relaxed)) {
              log::drainRealtimeRing();
              Clock::current().sleepFor(std::chrono::milliseconds(10));
          }
      }) {}

RealtimeLogWriter::~RealtimeLogWriter() {
    running_.store(false, std::memory_order_relaxed);
    thread_.join();
    log::drainRealtimeRing();
}

}  // namespace tvk
