#include "frame/core/BackgroundRuns.h"

#include "frame/core/BaseAction.h"
#include "frame/core/TaskHandOver.h"
#include "frame/core/ThreadPool.h"

#include <memory>
#include <utility>

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

}  // namespace

void runInBackground(const boost::shared_ptr<BaseAction>& action, void (*work)(boost::shared_ptr<BaseAction> action))
{
    ThreadPool* const pool = poolForRuns();
    if (!pool) {
        work(action);
        return;
    }
    std::unique_ptr<boost::shared_ptr<BaseAction>> reference(new boost::shared_ptr<BaseAction>(action));
    pool->arena.enqueue(BackgroundTask(reference.get(), work, *pool));
    (void)reference.release();  // the task's now
}

}}  // namespace orvik::core
