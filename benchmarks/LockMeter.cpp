// Times the mutexes of the whole process by standing in for the function of the C library that locks them.

#include "LockMeter.h"

#include <dlfcn.h>
#include <pthread.h>

#include <atomic>
#include <chrono>

namespace {

std::atomic<long> g_waited(0);  // nanoseconds

}  // namespace

extern "C" __attribute__((visibility("default"))) int pthread_mutex_lock(pthread_mutex_t* mutex)
{
    if (pthread_mutex_trylock(mutex) == 0)
        return 0;
    typedef int (*Lock)(pthread_mutex_t*);
    static const Lock lock = reinterpret_cast<Lock>(dlsym(RTLD_NEXT, "pthread_mutex_lock"));
    const auto start = std::chrono::steady_clock::now();
    const int result = lock(mutex);
    g_waited += std::chrono::nanoseconds(std::chrono::steady_clock::now() - start).count();
    return result;
}

namespace orvik::bench {

void LockMeter::restart()
{
    g_waited = 0;
}

double LockMeter::waited()
{
    return 1e-9 * static_cast<double>(g_waited);
}

}  // namespace orvik::bench
