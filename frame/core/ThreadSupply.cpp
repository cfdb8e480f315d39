#include "frame/core/ThreadSupply.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <thread>
#include <vector>

#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace orvik { namespace core {

namespace {

/// As large as those of oneTBB: what it makes next finds these, and their memory, among those that the C library keeps.
const std::size_t g_stackBytes = 4ul << 20;

const std::size_t g_reserveBytes = 64ul << 10;
std::atomic<void*> g_reserve(nullptr);
std::atomic<std::new_handler> g_previousHandler(nullptr);

std::mutex& reserveMutex()
{
    static std::mutex mutex;
    return mutex;
}

/// What `new` calls before it tries again.
void giveReserve()
{
    if (void* const block = g_reserve.exchange(nullptr))
        std::free(block);
    else if (const std::new_handler previous = g_previousHandler)
        previous();
    else
        throw std::bad_alloc();
}

/// A thread that waits until all have been made.
struct Trial
{
    std::mutex* open = nullptr;
    pthread_t thread{};
    long id = 0;

    static void* wait(void* self)
    {
        Trial& trial = *static_cast<Trial*>(self);
        trial.id = syscall(SYS_gettid);
        const std::lock_guard<std::mutex> lock(*trial.open);
        return nullptr;
    }
};

bool make(Trial& trial)
{
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0)
        return false;
    const bool made = pthread_attr_setstacksize(&attributes, g_stackBytes) == 0
                      && pthread_create(&trial.thread, &attributes, &Trial::wait, &trial) == 0;
    pthread_attr_destroy(&attributes);
    return made;
}

/// A thread that was joined counts for the limits of the process a moment longer, until the kernel has put it away.
void waitUntilGone(const Trial& trial)
{
    for (int i = 0; i < 1000 && syscall(SYS_tgkill, getpid(), trial.id, 0) == 0; ++i)
        std::this_thread::sleep_for(std::chrono::microseconds(100));
}

}  // namespace

unsigned int countMakeableThreads(unsigned int nb)
{
    std::mutex open;
    std::vector<Trial> trials(nb);
    unsigned int nbMade = 0;
    {
        const std::lock_guard<std::mutex> lock(open);
        for (; nbMade < nb; ++nbMade) {
            trials[nbMade].open = &open;
            if (!make(trials[nbMade]))
                break;
        }
    }
    for (unsigned int i = 0; i < nbMade; ++i)
        pthread_join(trials[i].thread, nullptr);
    for (unsigned int i = 0; i < nbMade; ++i)
        waitUntilGone(trials[i]);
    return nbMade;
}

MemoryReserve::MemoryReserve() : m_lock(reserveMutex()), m_previous(std::get_new_handler())
{
    void* const block = std::malloc(g_reserveBytes);
    if (!block)
        throw std::bad_alloc();
    g_reserve = block;
    g_previousHandler = m_previous;
    std::set_new_handler(&giveReserve);
}

MemoryReserve::~MemoryReserve()
{
    if (std::get_new_handler() == &giveReserve)  // or the program has set another meanwhile
        std::set_new_handler(m_previous);
    std::free(g_reserve.exchange(nullptr));
}

}}  // namespace orvik::core
