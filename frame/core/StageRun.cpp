#include "frame/core/StageRun.h"

#include "frame/core/BaseAction.h"
#include "frame/core/Scheduler.h"
#include "frame/core/TaskHandOver.h"
#include "frame/core/ThreadPool.h"

#include <tbb/task_group.h>

#include <algorithm>
#include <exception>
#include <mutex>

namespace orvik { namespace core {

namespace {

/// The loop that each thread of a stage runs: take the next action, run it, tell the provider.
class StageRun
{
public:
    StageRun(BaseActionProvider& provider, const BaseRequestOrigin& origin, unsigned long nbActions)
        : m_provider(provider), m_origin(origin),
          m_childOrigin(origin.withProgress(origin.reportsProgress() && nbActions == 1)), m_nbActions(nbActions)
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
        if (!result.getValue())
            fail(result.getMessage(), nullptr);
        return result.getValue() && request;
    }

    bool end(const boost::shared_ptr<BaseActionRequest>& request, const BoolResult& result,
             const std::exception_ptr& exception)
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

    void fail(const std::string& message, const std::exception_ptr& exception)
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
    StageTask(StageRun& stage, ThreadPool& pool) : m_stage(stage), m_pool(pool) {}
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
    ThreadPool& m_pool;
};

}  // namespace

BoolResult runProvider(BaseActionProvider& provider, const BaseRequestOrigin& origin)
{
    const ThreadPool* const own = poolOfThisThread();
    const unsigned int nbThreads = isForkedProcess() ? 1 : own ? own->nbThreads : getNbThreads();
    const unsigned long nbActions = provider.start(nbThreads);
    StageRun stage(provider, origin, nbActions);
    ThreadPool* const pool = std::min<unsigned long>(nbThreads, nbActions) > 1 ? poolForRuns() : nullptr;
    if (!pool) {
        stage.work();
        return stage.finish();
    }
    const unsigned long nbWorkers = std::min<unsigned long>(pool->nbThreads, nbActions);
    const auto runAll = [&] {
        // Isolated: while this thread waits, it takes up no element of another stage, whose working memory would come
        // on top of its own.
        tbb::this_task_arena::isolate([&] {
            tbb::task_group group;
            for (unsigned long i = 1; i < nbWorkers; ++i)
                group.run(StageTask(stage, *pool));
            {
                const PoolScope scope(*pool);
                stage.work();
            }
            group.wait();
        });
    };
    if (own) {
        runAll();
    } else {
        // When all places of the arena are taken, one of its threads runs this for the caller.
        const auto delegated = [&] {
            TaskHandOver::take();
            runAll();
            TaskHandOver::give();
        };
        TaskHandOver::give();
        pool->arena.execute(delegated);
        TaskHandOver::take();
    }
    return stage.finish();
}

}}  // namespace orvik::core
