#include "proj/models/audio/AudioProcessorThread.h"

#include <cerrno>
#include <sys/mman.h>

#include "proj/models/audio/AudioProcessor.h"
#include "utility/Log.h"
#include "utility/RealtimeThread.h"

namespace {

constexpr int kPriority = 49;
constexpr int kCpu = 1;

const char* lockErrorText(int error) {
    switch (error) {
        case ENOSYS:
            return "The implementation does not support this memory locking interface.";
        case EAGAIN:
            return "Some or all of the memory identified by the operation could not be locked when the call "
                   "was made.";
        case EINVAL:
            return "The flags argument is zero, or includes unimplemented flags.";
        case ENOMEM:
            return "Locking all of the pages currently mapped into the address space of the process would "
                   "exceed an implementation-dependent limit on the amount of memory that the process may "
                   "lock.";
        case EPERM:
            return "The calling process does not have the appropriate privilege to perform the requested "
                   "operation.";
        default:
            return "unknown error";
    }
}

}  // namespace

AudioProcessorThread::AudioProcessorThread(AudioProcessor& audioProcessor)
    : TarvekThread(kPriority, kCpu), audioProcessor_(audioProcessor) {}

AudioProcessorThread::~AudioProcessorThread() {
    stop();
    join();
}

void AudioProcessorThread::init() {
    setName("AudioProcessor");
    if (mlockall(MCL_CURRENT | MCL_FUTURE) == 0)
        tvk::log::debug("AudioProcessor", "mlockall succeeded");
    else
        TVK_WARN("%s", lockErrorText(errno));
}

void AudioProcessorThread::loop() {
    const tvk::RealtimeThreadScope realtime;
    audioProcessor_.process();
}
