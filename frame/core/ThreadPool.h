#pragma once

#include <tbb/task_arena.h>

namespace orvik { namespace core {

/// Threads that work together. Made once per number of threads and never destroyed: the threads of oneTBB may outlive
/// whoever asked for them.
struct ThreadPool
{
    /// No place is kept free for a caller: a run in the background has none that would take it.
    explicit ThreadPool(unsigned int nb) : nbThreads(nb), arena(static_cast<int>(nb), 0) {}
    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;

    const unsigned int nbThreads;
    tbb::task_arena arena;
};

/// The pool whose thread this is; null outside.
ThreadPool* poolOfThisThread();
/// The same, or where there is none the pool of as many threads as runs may use.
ThreadPool& poolForRuns();

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
