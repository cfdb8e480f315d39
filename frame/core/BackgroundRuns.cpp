#include "frame/core/BackgroundRuns.h"

#include "frame/core/BaseAction.h"
#include "frame/core/TaskHandOver.h"
#include "frame/core/ThreadPool.h"

#include <boost/weak_ptr.hpp>

#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace orvik { namespace core {

namespace {

/// What a thread runs in the background, as StageTask does. The task outlives its work by a moment; the reference to the
/// action must not, so it lies in a place of its own, which the work gives back.
class BackgroundTask
{
public:
    typedef void (*Work)(boost::shared_ptr<BaseAction> action);

    BackgroundTask(boost::shared_ptr<BaseAction>* action, Work work, ThreadPool& pool)
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
        const std::unique_ptr<boost::shared_ptr<BaseAction>> action(m_action);
        m_work(std::move(*action));
    }

private:
    boost::shared_ptr<BaseAction>* m_action;
    Work m_work;
    ThreadPool& m_pool;
};

/// The background runs of this process, so that its end waits for them.
struct BackgroundRuns
{
    std::mutex mutex;
    std::map<const BaseAction*, boost::weak_ptr<BaseAction>> actions;
};

BackgroundRuns& backgroundRuns()
{
    static BackgroundRuns* const runs = new BackgroundRuns;
    return *runs;
}

void endBackgroundRuns()
{
    if (isForkedProcess())
        return;  // they run in the other process
    std::vector<boost::shared_ptr<BaseAction>> actions;
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

void runInBackground(const boost::shared_ptr<BaseAction>& action, void (*work)(boost::shared_ptr<BaseAction> action))
{
    if (isForkedProcess()) {
        work(action);
        return;
    }
    static const bool registered = std::atexit(&endBackgroundRuns) == 0;
    static_cast<void>(registered);
    ThreadPool& pool = poolForRuns();
    std::unique_ptr<boost::shared_ptr<BaseAction>> reference(new boost::shared_ptr<BaseAction>(action));
    {
        const std::lock_guard<std::mutex> lock(backgroundRuns().mutex);
        backgroundRuns().actions[action.get()] = action;
    }
    try {
        pool.arena.enqueue(BackgroundTask(reference.get(), work, pool));
        (void)reference.release();  // the task's now
    } catch (...) {
        forgetBackgroundRun(*action);
        throw;
    }
}

void forgetBackgroundRun(const BaseAction& action)
{
    if (isForkedProcess())
        return;
    const std::lock_guard<std::mutex> lock(backgroundRuns().mutex);
    backgroundRuns().actions.erase(&action);
}

}}  // namespace orvik::core
