#include "frame/util/ProcessEnd.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

#include <pthread.h>
#include <unistd.h>

namespace orvik {

namespace {

std::atomic<bool> g_endBegun(false);
std::atomic<long> g_nbWorks(0);
std::atomic<unsigned int> g_nbLoads(1), g_nbLoadsWatched(0);

// The library stays loaded, so these may lie where access takes no memory.
__attribute__((tls_model("initial-exec"))) thread_local const WithinWork* t_within = nullptr;
__attribute__((tls_model("initial-exec"))) thread_local bool t_isInTask = false;

}  // namespace

struct WorkCount
{
    /// Counted works that this thread is within; those that have begun one of them from a callback are, too.
    static long nbOfThisThread() noexcept
    {
        long nb = 0;
        for (const WithinWork* within = t_within; within; within = within->m_below)
            for (const Work* work = &within->m_work; work; work = work->m_outer)
                nb += work->m_isCounted && isFirst(*work, *within);
        return nb;
    }

    static bool add() noexcept
    {
        ++g_nbWorks;  // first: the end looks at the number after it has told that it has begun
        if (!g_endBegun)
            return true;
        --g_nbWorks;
        return false;
    }

    static void endWorks(int status, void*) noexcept
    {
        g_endBegun = true;
        const long nbOwn = nbOfThisThread();
        while (g_nbWorks > nbOwn)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        if (!t_isInTask)
            return;
        std::fflush(nullptr);
        _exit(status);
    }

private:
    /// Whether the walk above has not met this work before it came to `end`, nor on its own way there.
    static bool isFirst(const Work& counted, const WithinWork& end) noexcept
    {
        for (const WithinWork* within = t_within; within != &end; within = within->m_below)
            for (const Work* work = &within->m_work; work; work = work->m_outer)
                if (work == &counted)
                    return false;
        return true;
    }
};

namespace {

/// Handlers of `exit` run in turn from the last one registered, as destructors of statics do.
void watchEnd() noexcept
{
    static std::mutex mutex;
    const std::lock_guard<std::mutex> lock(mutex);
    const unsigned int nbLoads = g_nbLoads;
    if (nbLoads != g_nbLoadsWatched && on_exit(&WorkCount::endWorks, nullptr) == 0)
        g_nbLoadsWatched = nbLoads;
}

/// In a process made by fork there are no works but those that the forking thread is within.
const bool g_forkWatched = pthread_atfork(nullptr, nullptr, [] { g_nbWorks = WorkCount::nbOfThisThread(); }) == 0;

}  // namespace

bool Work::begin() noexcept
{
    if (g_nbLoadsWatched != g_nbLoads)
        watchEnd();
    if (!WorkCount::add())
        return false;
    m_isOfCaller = true;
    m_outer = t_within ? &t_within->m_work : nullptr;
    m_isCounted = true;
    return true;
}

void Work::leaveToBackground() noexcept
{
    m_isOfCaller = false;
    m_outer = nullptr;
}

void Work::end() noexcept
{
    m_isCounted = false;
    --g_nbWorks;
}

bool Work::isInCallback() noexcept
{
    for (const WithinWork* within = t_within; within; within = within->m_below)
        if (within->m_part == WithinWork::eCallback)
            return true;
    return false;
}

WithinWork::WithinWork(Work& work, ePart part) noexcept : m_work(work), m_part(part), m_below(t_within)
{
    t_within = this;
    if (m_part == eCallback && m_work.m_isOfCaller)
        m_work.end();
}

WithinWork::~WithinWork()
{
    t_within = m_below;
    if (m_part != eCallback || !m_work.m_isOfCaller)
        return;
    while (!WorkCount::add())
        pause();  // what the work would go on with may be gone
    m_work.m_isCounted = true;
}

bool hasProcessEndBegun() noexcept
{
    return g_endBegun;
}

void setInTask(bool isInTask) noexcept
{
    t_isInTask = isInTask;
}

void noteLoad() noexcept
{
    ++g_nbLoads;
}

}  // namespace orvik
