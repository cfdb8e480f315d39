#include "frame/core/ThreadPool.h"

#include "frame/core/Scheduler.h"
#include "frame/core/TaskHandOver.h"
#include "frame/core/ThreadSupply.h"
#include "frame/util/Loggers.h"
#include "frame/util/ProcessEnd.h"

#include <log4cplus/loglevel.h>
#include <tbb/global_control.h>
#include <tbb/info.h>

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace orvik { namespace core {

namespace {

// The library stays loaded, so these may lie where access takes no memory.
__attribute__((tls_model("initial-exec"))) thread_local ThreadPool* t_pool = nullptr;
__attribute__((tls_model("initial-exec"))) thread_local bool t_hasMetOneTbb = false;

/// Asked while the library loads: oneTBB looks at the machine once, and a failing allocation then would leave every later
/// caller waiting for the look to end.
const unsigned int g_nbProcessors = static_cast<unsigned int>(tbb::info::default_concurrency());

std::atomic<bool> g_forked(false);
const bool g_forkWatched = pthread_atfork(nullptr, nullptr,
                                          [] {
                                              g_forked = true;
                                              t_pool = nullptr;
                                              setInTask(false);
                                          })
                           == 0;

/// All threads of a pool at once in one place, so that they have been made. oneTBB makes them when it has work for them;
/// where memory is short the first run would pay for it, on threads that can't tell.
class Meeting
{
public:
    explicit Meeting(unsigned int nb) : m_nbExpected(nb) {}
    void attend()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        ++m_nbCome;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return m_over; });
    }
    /// Threads that the program itself keeps busy by oneTBB come late, but they are there. Until then nobody leaves: one
    /// thread would come twice.
    void waitForAll()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait_for(lock, std::chrono::seconds(1), [this] { return m_nbCome >= m_nbExpected; });
    }
    void close()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_over = true;
        m_changed.notify_all();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    const unsigned int m_nbExpected;
    unsigned int m_nbCome = 0;
    bool m_over = false;
};

/// What brings a thread there. Its reference lies in a place of its own and is told to the thread sanitizer, as that of a
/// BackgroundTask.
class Invitation
{
public:
    typedef std::shared_ptr<Meeting> Reference;

    explicit Invitation(Reference* meeting) : m_meeting(meeting) {}
    Invitation(const Invitation& other) : m_meeting((TaskHandOver::reuse(), other.m_meeting)) { TaskHandOver::give(); }
    ~Invitation() { TaskHandOver::leave(); }  // oneTBB reads nothing of its task after this
    Invitation& operator=(const Invitation&) = delete;
    void operator()() const
    {
        TaskHandOver::take();
        const std::unique_ptr<Reference> meeting(m_meeting);
        (*meeting)->attend();
    }

private:
    Reference* m_meeting;
};

/// Pools by their number of threads.
class Pools
{
public:
    /// The pool of so many threads; where they can't be had, of those that there are, or null. `isShort` tells that, once.
    ThreadPool* get(unsigned int nbThreads, bool& isShort)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const bool mayTry = !m_wasShort || Clock::now() - m_lastTry > std::chrono::seconds(10);
        if (nbThreads > m_nbMade && mayTry && !makeThreads(nbThreads)) {
            isShort = !m_wasShort;
            m_wasShort = true;
            m_lastTry = Clock::now();
        }
        if (m_nbMade == 0)
            return nullptr;
        return nbThreads <= m_nbMade ? &pool(nbThreads, false) : &pool(m_nbMade + 1, true);
    }

private:
    typedef std::chrono::steady_clock Clock;

    ThreadPool& pool(unsigned int nbThreads, bool isForCaller)
    {
        ThreadPool*& pool = m_pools[{nbThreads, isForCaller}];
        if (!pool)
            pool = new ThreadPool(nbThreads, isForCaller);
        return *pool;
    }

    /// Whether all could be made.
    bool makeThreads(unsigned int nbThreads)
    {
        const unsigned int nb = m_nbMade + countMakeableThreads(nbThreads - m_nbMade);
        if (nb == m_nbMade)
            return false;
        // oneTBB makes no more threads than processors, the caller's included, unless told; a run in the background has no
        // caller. Of two controls the lower one would win, so the first goes.
        const MemoryReserve reserve;
        m_control.reset();
        m_control = std::make_unique<tbb::global_control>(tbb::global_control::max_allowed_parallelism,
                                                          (nb < nbThreads ? nb : std::max(nb, g_nbProcessors)) + 1);
        const std::size_t nbAllowed = tbb::global_control::active_value(tbb::global_control::max_allowed_parallelism) - 1;
        const auto meeting = std::make_shared<Meeting>(std::min<std::size_t>(nb, nbAllowed));
        const std::unique_ptr<Meeting, void (*)(Meeting*)> closing(meeting.get(), [](Meeting* held) { held->close(); });
        for (unsigned int i = 0; i < nb; ++i) {
            auto reference = std::make_unique<Invitation::Reference>(meeting);
            pool(nb, false).arena.enqueue(Invitation(reference.get()));
            (void)reference.release();  // the task's now
        }
        meeting->waitForAll();
        m_nbMade = nb;
        return nb == nbThreads;
    }

    std::mutex m_mutex;
    std::map<std::pair<unsigned int, bool>, ThreadPool*> m_pools;
    std::unique_ptr<tbb::global_control> m_control;
    unsigned int m_nbMade = 0;
    bool m_wasShort = false;
    Clock::time_point m_lastTry;
};

/// oneTBB takes memory for each thread that comes to it.
void meetOneTbb()
{
    if (t_hasMetOneTbb)
        return;
    const MemoryReserve reserve;
    tbb::this_task_arena::isolate([] {});
    t_hasMetOneTbb = true;
}

void logShortage(unsigned int nbThreads, unsigned int nbThere)
{
    const int level = log4cplus::WARN_LOG_LEVEL;
    if (isLogged(&processor::getORVIKBaseProcessingLogger, level))
        logMessage(processor::getORVIKBaseProcessingLogger(), level,
                   "Of " + std::to_string(nbThreads) + " threads only " + std::to_string(nbThere)
                       + " can be had, the caller's included; runs go on with these",
                   __FILE__, __LINE__);
}

}  // namespace

ThreadPool* poolOfThisThread()
{
    return t_pool;
}

ThreadPool* poolForRuns()
{
    if (t_pool || g_forked)
        return t_pool;
    meetOneTbb();
    static Pools* const pools = new Pools;
    const unsigned int nbThreads = getNbThreads();
    bool isShort = false;
    ThreadPool* const pool = pools->get(nbThreads, isShort);
    if (isShort)
        logShortage(nbThreads, pool ? pool->nbThreads : 1);
    return pool;
}

PoolScope::PoolScope(ThreadPool& pool) : m_previous(t_pool)
{
    t_pool = &pool;
    setInTask(true);
}

PoolScope::~PoolScope()
{
    t_pool = m_previous;
    setInTask(m_previous != nullptr);
}

unsigned int getNbProcessors()
{
    return g_nbProcessors;
}

bool isForkedProcess()
{
    return g_forked;
}

}}  // namespace orvik::core
