#include "utility/PriorityMutex.h"

#include <cerrno>
#include <system_error>

namespace tvk {

PriorityMutex::PriorityMutex(int type) : mutex_{} {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, type);
    pthread_mutexattr_setprotocol(&attributes, PTHREAD_PRIO_INHERIT);
    const int error = pthread_mutex_init(&mutex_, &attributes);
    pthread_mutexattr_destroy(&attributes);
    if (error != 0) throw std::system_error(error, std::generic_category(), "PriorityMutex");
}

void PriorityMutex::lock() {
    const int error = pthread_mutex_lock(&mutex_);
    if (error != 0) throw std::system_error(error, std::generic_category(), "PriorityMutex::lock");
}

bool PriorityMutex::try_lock() {
    const int error = pthread_mutex_trylock(&mutex_);
    if (error != 0 && error != EBUSY)
        throw std::system_error(error, std::generic_category(), "PriorityMutex::try_lock");
    return error == 0;
}

}  // namespace tvk
