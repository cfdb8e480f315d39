#include "frame/core/Scheduler.h"

#include "frame/core/BaseAction.h"

#include <boost/weak_ptr.hpp>

#include <tbb/global_control.h>
#include <tbb/info.h>
#include <tbb/task_arena.h>
#include <tbb/task_group.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace orvik { namespace core {

namespace {

/// Threads that work together. Made once per number of threads and never destroyed: the threads of oneTBB may outlive
/// whoever asked for them.
struct Pool
{
    explicit Pool(unsigned int nb) : nbThreads(nb), arena(static_cast<int>(nb)) {}
    unsigned int nbThreads;
    tbb::task_arena arena;
};

/// The pool whose thread this is; null outside.
thread_local Pool* t_pool = nullptr;

std::atomic<unsigned int> g_requestedThreads(0);
std::atomic<unsigned long> g_stripGrain(0);

/// Asked while the library loads: oneTBB looks at the machine once, and a failing allocation then would leave every later
/// caller waiting for the look to end.
const unsigned int g_nbProcessors = static_cast<unsigned int>(tbb::info::default_concurrency());

unsigned int defaultNbThreads()
{
    static const unsigned int nb = [] {
        const char* const text = std::getenv("ORVIK_NUM_THREADS");
        const long asked = text ? std::strtol(text, nullptr, 10) : 0;
        return static_cast<unsigned int>(asked > 0 && asked <= 1024 ? asked : g_nbProcessors);
    }();
    return nb;
}

Pool& currentPool()
{
    if (t_pool)
        return *t_pool;
    static std::mutex mutex;
    static std::map<unsigned int, Pool*>* const pools = new std::map<unsigned int, Pool*>;
    static tbb::global_control* control = nullptr;
    static unsigned int allowed = g_nbProcessors;
    const unsigned int nbThreads = getNbThreads();
    const std::lock_guard<std::mutex> lock(mutex);
    Pool*& pool = (*pools)[nbThreads];
    if (!pool)
        pool = new Pool(nbThreads);
    if (nbThreads > allowed) {
        // oneTBB makes no more threads than processors unless told; of two controls the lower one would win.
        delete control;
        control = new tbb::global_control(tbb::global_control::max_allowed_parallelism, nbThreads);
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
            try {
                if (!takeNext(request))
                    return;
                const BoolResult result = request->getAction()->execute(m_childOrigin);
                const std::lock_guard<std::mutex> lock(m_mutex);
                if (!result.getValue()) {
                    fail(result.getMessage(), nullptr);
                    return;
                }
                bool ended = false;
                m_provider.notifyDerived(request, boost::shared_ptr<const BaseSerializationObject>(), ended);
                // Under the lock, so that the fractions that the caller sees never go back.
                m_origin.reportProgress(++m_nbDone, m_nbActions);
            } catch (...) {
                const std::lock_guard<std::mutex> lock(m_mutex);
                fail(std::string(), std::current_exception());
                return;
            }
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
    bool takeNext(boost::shared_ptr<BaseActionRequest>& request)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_failed || m_origin.isCancellationRequested())
            return false;
        bool hasMore = false;
        boost::shared_ptr<BaseSerializationObject> data;
        const BoolResult result = m_provider.queryNextAction(m_origin, request, hasMore, data);
        if (!result.getValue())
            fail(result.getMessage(), nullptr);
        return result.getValue() && request;
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
    const unsigned int nbThreads = t_pool ? t_pool->nbThreads : getNbThreads();
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
                group.run([&] {
                    const PoolScope scope(pool);
                    stage.work();
                });
            {
                const PoolScope scope(pool);
                stage.work();
            }
            group.wait();
        });
    };
    if (t_pool)
        runAll();
    else
        pool.arena.execute(runAll);
    return stage.finish();
}

void runInBackground(const boost::shared_ptr<BaseAction>& action, void (*work)(boost::shared_ptr<BaseAction> action))
{
    static const bool registered = std::atexit(&endBackgroundRuns) == 0;
    static_cast<void>(registered);
    Pool& pool = currentPool();
    // The task outlives its work by a moment; the reference must not, so it is handed on from a place of its own.
    const std::shared_ptr<boost::shared_ptr<BaseAction> > reference =
        std::make_shared<boost::shared_ptr<BaseAction> >(action);
    {
        const std::lock_guard<std::mutex> lock(backgroundRuns().mutex);
        backgroundRuns().actions[action.get()] = action;
    }
    try {
        pool.arena.enqueue([reference, work, &pool] {
            const PoolScope scope(pool);
            work(std::move(*reference));
        });
    } catch (...) {
        forgetBackgroundRun(*action);
        throw;
    }
}

void forgetBackgroundRun(const BaseAction& action)
{
    const std::lock_guard<std::mutex> lock(backgroundRuns().mutex);
    backgroundRuns().actions.erase(&action);
}

}}  // namespace orvik::core
