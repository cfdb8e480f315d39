#include "frame/core/Scheduler.h"

#include "frame/core/BaseAction.h"
#include "frame/core/Environment.h"

#include <boost/weak_ptr.hpp>

#include <tbb/global_control.h>
#include <tbb/info.h>
#include <tbb/task_arena.h>
#include <tbb/task_group.h>

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#ifdef __SANITIZE_THREAD__
extern "C" void __tsan_acquire(void*);
extern "C" void __tsan_release(void*);
#endif

namespace orvik { namespace core {

namespace {

/// oneTBB hands a task from thread to thread by atomics that the thread sanitizer does not see, not being built with
/// it. So it is told: what was done before a task was given is done for who takes one, and a task that was destroyed is
/// done with for those that are made later, maybe in the same memory and of another type.
struct TaskHandOver
{
#ifdef __SANITIZE_THREAD__
    static void give() { __tsan_release(&s_given); }
    static void take() { __tsan_acquire(&s_given); }
    static void leave() { __tsan_release(&s_left); }
    static void reuse() { __tsan_acquire(&s_left); }
    static char s_given, s_left;
#else
    static void give() {}
    static void take() {}
    static void leave() {}
    static void reuse() {}
#endif
};
#ifdef __SANITIZE_THREAD__
char TaskHandOver::s_given = 0;
char TaskHandOver::s_left = 0;
#endif

/// Threads that work together. Made once per number of threads and never destroyed: the threads of oneTBB may outlive
/// whoever asked for them. No place is kept free for a caller: a run in the background has none that would take it.
struct Pool
{
    explicit Pool(unsigned int nb) : nbThreads(nb), arena(static_cast<int>(nb), 0) {}
    unsigned int nbThreads;
    tbb::task_arena arena;
};

/// The pool whose thread this is; null outside.
thread_local Pool* t_pool = nullptr;

/// Whether this process was made by fork from one that had the library loaded: of its threads there is only the one that
/// forked, and oneTBB would wait for the others for ever.
std::atomic<bool> g_forked(false);
const bool g_forkWatched = pthread_atfork(nullptr, nullptr, [] {
                               g_forked = true;
                               t_pool = nullptr;
                           }) == 0;

std::atomic<unsigned int> g_requestedThreads(0);
std::atomic<unsigned long> g_stripGrain(0);

/// Asked while the library loads: oneTBB looks at the machine once, and a failing allocation then would leave every later
/// caller waiting for the look to end.
const unsigned int g_nbProcessors = static_cast<unsigned int>(tbb::info::default_concurrency());

unsigned int defaultNbThreads()
{
    static const unsigned int nb = [] {
        const char* const variable = "ORVIK_NUM_THREADS";
        const std::string text = readEnvironment(variable);
        char* end = nullptr;
        const long asked = std::strtol(text.c_str(), &end, 10);
        const bool isNumber = *end == '\0' && asked >= 0 && asked <= 1024;  // 0 or nothing stands for the processors
        if (!isNumber)
            warnOfEnvironment(variable, text, "1 to 1024");
        return static_cast<unsigned int>(isNumber && asked > 0 ? asked : g_nbProcessors);
    }();
    return nb;
}

Pool& currentPool()
{
    if (t_pool)
        return *t_pool;
    static std::mutex mutex;
    static std::map<unsigned int, Pool*>* const pools = new std::map<unsigned int, Pool*>;
    static std::unique_ptr<tbb::global_control>& control = *new std::unique_ptr<tbb::global_control>;
    static unsigned int allowed = 0;
    const unsigned int nbThreads = getNbThreads();
    const std::lock_guard<std::mutex> lock(mutex);
    Pool*& pool = (*pools)[nbThreads];
    if (!pool)
        pool = new Pool(nbThreads);
    if (nbThreads > allowed) {
        // oneTBB makes no more threads than processors, the caller's included, unless told; a run in the background
        // has no caller. Of two controls the lower one would win, so the first goes.
        control.reset();
        control.reset(new tbb::global_control(tbb::global_control::max_allowed_parallelism,
                                              std::max(nbThreads, g_nbProcessors) + 1));
        allowed = nbThreads;
    }
    return *pool;
}

struct PoolScope
{
    explicit PoolScope(Pool& pool) : previous(t_pool) { t_pool = &pool; }
    ~PoolScope() { t_pool = previous; }
    Pool* previous;
};

/// The loop that each thread of a stage runs: take the next action, run it, tell the provider.
class StageRun
{
public:
    StageRun(BaseActionProvider& provider, const BaseRequestOrigin& origin, unsigned long nbActions)
        : m_provider(provider), m_origin(origin), m_childOrigin(origin.withProgress(origin.reportsProgress() && nbActions == 1)),
          m_nbActions(nbActions)
    {
    }

    void work() noexcept
    {
        for (;;) {
            boost::shared_ptr<BaseActionRequest> request;
            if (!alone([&] { return takeNext(request); }))
                return;
            BoolResult result;
            std::exception_ptr exception;
            try {
                result = request->getAction()->execute(m_childOrigin);
            } catch (...) {
                exception = std::current_exception();
            }
            if (!alone([&] { return end(request, result, exception); }))
                return;
        }
    }

    BoolResult finish()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_exception)
            std::rethrow_exception(m_exception);
        if (m_failed)
            return failure(m_message);
        if (m_origin.isCancellationRequested())
            return failure(getCancelledText());
        return success();
    }

private:
    /// Runs something that tells whether to go on, and that no other thread runs meanwhile. What it throws has ended the
    /// stage before another one comes in: a callback that threw is not called again.
    template<class F>
    bool alone(const F& f) noexcept
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        try {
            return f();
        } catch (...) {
            fail(std::string(), std::current_exception());
            return false;
        }
    }

    bool takeNext(boost::shared_ptr<BaseActionRequest>& request)
    {
        if (m_failed || m_origin.isCancellationRequested())
            return false;
        bool hasMore = false;
        boost::shared_ptr<BaseSerializationObject> data;
        const BoolResult result = m_provider.queryNextAction(m_origin, request, hasMore, data);
        if (!result)
            fail(result.getMessage(), nullptr);
        return result.getValue() && request;
    }

    bool end(const boost::shared_ptr<BaseActionRequest>& request, const BoolResult& result, std::exception_ptr exception)
    {
        if (exception || !result.getValue()) {
            fail(exception ? std::string() : result.getMessage(), exception);
            return false;
        }
        bool ended = false;
        m_provider.notifyDerived(request, boost::shared_ptr<const BaseSerializationObject>(), ended);
        ++m_nbDone;
        if (!m_failed)
            m_origin.reportProgress(m_nbDone, m_nbActions);  // in here the fractions never go back
        return !m_failed;
    }

    void fail(const std::string& message, std::exception_ptr exception)
    {
        if (m_failed)
            return;
        m_message = message;  // first: without memory for it the failure is told again, as that
        m_exception = exception;
        m_failed = true;
    }

    BaseActionProvider& m_provider;
    const BaseRequestOrigin m_origin;
    const BaseRequestOrigin m_childOrigin;
    const unsigned long m_nbActions;
    unsigned long m_nbDone = 0;
    std::mutex m_mutex;  // one call at a time on the provider, and the order between what threads wrote and who reads it
    bool m_failed = false;
    std::string m_message;
    std::exception_ptr m_exception;
};

/// What another thread runs of a stage. Copied into oneTBB's task, after which it is given.
class StageTask
{
public:
    StageTask(StageRun& stage, Pool& pool) : m_stage(stage), m_pool(pool) {}
    StageTask(const StageTask& other) : m_stage((TaskHandOver::reuse(), other.m_stage)), m_pool(other.m_pool)
    {
        TaskHandOver::give();
    }
    ~StageTask() { TaskHandOver::leave(); }  // oneTBB reads nothing of its task after this
    StageTask& operator=(const StageTask&) = delete;
    void operator()() const
    {
        TaskHandOver::take();
        const PoolScope pool(m_pool);
        m_stage.work();
    }

private:
    StageRun& m_stage;
    Pool& m_pool;
};

/// What a thread runs in the background, in the same way. The task outlives its work by a moment; the reference to the
/// action must not, so it lies in a place of its own, which the work gives back.
class BackgroundTask
{
public:
    typedef void (*Work)(boost::shared_ptr<BaseAction> action);

    BackgroundTask(boost::shared_ptr<BaseAction>* action, Work work, Pool& pool)
        : m_action(action), m_work(work), m_pool(pool)
    {
    }
    BackgroundTask(const BackgroundTask& other)
        : m_action((TaskHandOver::reuse(), other.m_action)), m_work(other.m_work), m_pool(other.m_pool)
    {
        TaskHandOver::give();
    }
    ~BackgroundTask() { TaskHandOver::leave(); }  // oneTBB reads nothing of its task after this
    BackgroundTask& operator=(const BackgroundTask&) = delete;
    void operator()() const
    {
        TaskHandOver::take();
        const PoolScope pool(m_pool);
        const std::unique_ptr<boost::shared_ptr<BaseAction> > action(m_action);
        m_work(std::move(*action));
    }

private:
    boost::shared_ptr<BaseAction>* m_action;
    Work m_work;
    Pool& m_pool;
};

/// The background runs of this process, so that its end waits for them.
struct BackgroundRuns
{
    std::mutex mutex;
    std::map<const BaseAction*, boost::weak_ptr<BaseAction> > actions;
};

BackgroundRuns& backgroundRuns()
{
    static BackgroundRuns* const runs = new BackgroundRuns;
    return *runs;
}

void endBackgroundRuns()
{
    if (g_forked)
        return;  // they run in the other process
    std::vector<boost::shared_ptr<BaseAction> > actions;
    {
        const std::lock_guard<std::mutex> lock(backgroundRuns().mutex);
        for (const auto& run : backgroundRuns().actions)
            if (const boost::shared_ptr<BaseAction> action = run.second.lock())
                actions.push_back(action);
    }
    for (const boost::shared_ptr<BaseAction>& action : actions)
        action->requestCancellation();
    for (const boost::shared_ptr<BaseAction>& action : actions)
        action->waitForEnd();
}

}  // namespace

void setNbThreads(unsigned int nbThreads)
{
    g_requestedThreads = nbThreads;
}

unsigned int getNbThreads()
{
    const unsigned int requested = g_requestedThreads;
    return requested ? requested : defaultNbThreads();
}

void setStripGrain(unsigned long nbLines)
{
    g_stripGrain = nbLines;
}

unsigned long getStripGrain()
{
    return g_stripGrain;
}

const char* getCancelledText()
{
    return "The run was cancelled on request";
}

BoolResult runProvider(BaseActionProvider& provider, const BaseRequestOrigin& origin)
{
    const unsigned int nbThreads = g_forked ? 1 : t_pool ? t_pool->nbThreads : getNbThreads();
    const unsigned long nbActions = provider.start(nbThreads);
    StageRun stage(provider, origin, nbActions);
    const unsigned long nbWorkers = std::min<unsigned long>(nbThreads, nbActions);
    if (nbWorkers <= 1) {
        stage.work();
        return stage.finish();
    }
    Pool& pool = currentPool();
    const auto runAll = [&] {
        // Isolated: while this thread waits, it takes up no element of another stage, whose working memory would come
        // on top of its own.
        tbb::this_task_arena::isolate([&] {
            tbb::task_group group;
            for (unsigned long i = 1; i < nbWorkers; ++i)
                group.run(StageTask(stage, pool));
            {
                const PoolScope scope(pool);
                stage.work();
            }
            group.wait();
        });
    };
    if (t_pool) {
        runAll();
    } else {
        // When all places of the arena are taken, one of its threads runs this for the caller.
        const auto delegated = [&] {
            TaskHandOver::take();
            runAll();
            TaskHandOver::give();
        };
        TaskHandOver::give();
        pool.arena.execute(delegated);
        TaskHandOver::take();
    }
    return stage.finish();
}

void runInBackground(const boost::shared_ptr<BaseAction>& action, void (*work)(boost::shared_ptr<BaseAction> action))
{
    if (g_forked) {
        work(action);
        return;
    }
    static const bool registered = std::atexit(&endBackgroundRuns) == 0;
    static_cast<void>(registered);
    Pool& pool = currentPool();
    std::unique_ptr<boost::shared_ptr<BaseAction> > reference(new boost::shared_ptr<BaseAction>(action));
    {
        const std::lock_guard<std::mutex> lock(backgroundRuns().mutex);
        backgroundRuns().actions[action.get()] = action;
    }
    try {
        pool.arena.enqueue(BackgroundTask(reference.get(), work, pool));
        reference.release();  // the task's now
    } catch (...) {
        forgetBackgroundRun(*action);
        throw;
    }
}

void forgetBackgroundRun(const BaseAction& action)
{
    if (g_forked)
        return;
    const std::lock_guard<std::mutex> lock(backgroundRuns().mutex);
    backgroundRuns().actions.erase(&action);
}

}}  // namespace orvik::core
