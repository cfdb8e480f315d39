#pragma once

#include <tbb/task_arena.h>

namespace orvik { namespace core {

/// Threads that work together. Made once per number of threads and never destroyed: the threads of oneTBB may outlive
/// whoever asked for them.
struct ThreadPool
{
    /// No place is kept free for a caller, since a run in the background has none that would take it, but where there is a
    /// thread too few.
    ThreadPool(unsigned int nb, bool isForCaller) : nbThreads(nb), arena(static_cast<int>(nb), isForCaller ? 1 : 0) {}
    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;

    const unsigned int nbThreads;
    tbb::task_arena arena;
};

/// The pool whose thread this is; null outside.
ThreadPool* poolOfThisThread();
/// The same, or where there is none the pool of as many threads as runs may use, or as there are where they can't be had;
/// null when there is none but the caller's own, which then does everything. @throws std::bad_alloc
ThreadPool* poolForRuns();

/// Makes this thread one of a pool for a while.
class PoolScope
{
public:
    explicit PoolScope(ThreadPool& pool);
    ~PoolScope();
    PoolScope(const PoolScope&) = delete;
    PoolScope& operator=(const PoolScope&) = delete;

private:
    ThreadPool* const m_previous;
};

/// Processors that this process may use.
unsigned int getNbProcessors();

/// Whether this process was made by fork from one that had the library loaded: of its threads there is only the one that
/// forked, and oneTBB would wait for the others for ever.
bool isForkedProcess();

}}  // namespace orvik::core
