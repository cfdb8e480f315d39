#include "frame/core/ThreadPool.h"

#include "frame/core/Scheduler.h"

#include <tbb/global_control.h>
#include <tbb/info.h>

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <memory>
#include <mutex>

namespace orvik { namespace core {

namespace {

thread_local ThreadPool* t_pool = nullptr;

/// Asked while the library loads: oneTBB looks at the machine once, and a failing allocation then would leave every later
/// caller waiting for the look to end.
const unsigned int g_nbProcessors = static_cast<unsigned int>(tbb::info::default_concurrency());

std::atomic<bool> g_forked(false);
const bool g_forkWatched = pthread_atfork(nullptr, nullptr,
                                          [] {
                                              g_forked = true;
                                              t_pool = nullptr;
                                          })
                           == 0;

/// Pools by their number of threads.
class Pools
{
public:
    ThreadPool& get(unsigned int nbThreads)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        ThreadPool*& pool = m_pools[nbThreads];
        if (!pool)
            pool = new ThreadPool(nbThreads);
        if (nbThreads > m_allowed)
            allow(nbThreads);
        return *pool;
    }

private:
    /// oneTBB makes no more threads than processors, the caller's included, unless told; a run in the background has no
    /// caller. Of two controls the lower one would win, so the first goes.
    void allow(unsigned int nbThreads)
    {
        m_control.reset();
        m_control = std::make_unique<tbb::global_control>(tbb::global_control::max_allowed_parallelism,
                                                          std::max(nbThreads, g_nbProcessors) + 1);
        m_allowed = nbThreads;
    }

    std::mutex m_mutex;
    std::map<unsigned int, ThreadPool*> m_pools;
    std::unique_ptr<tbb::global_control> m_control;
    unsigned int m_allowed = 0;
};

}  // namespace

ThreadPool* poolOfThisThread()
{
    return t_pool;
}

ThreadPool& poolForRuns()
{
    if (t_pool)
        return *t_pool;
    static Pools* const pools = new Pools;
    return pools->get(getNbThreads());
}

PoolScope::PoolScope(ThreadPool& pool) : m_previous(t_pool)
{
    t_pool = &pool;
}

PoolScope::~PoolScope()
{
    t_pool = m_previous;
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
