#include "frame/core/RunState.h"

#include <utility>

namespace orvik { namespace core {

namespace {

/// The call in progress. When it is over who waits for that hears of it; who does holds the callback as well, and destroys it.
struct Call
{
    RunState& run;
    std::shared_ptr<const RunState::Callback> callback;

    ~Call()
    {
        callback.reset();
        const std::lock_guard<std::mutex> lock(run.mutex);
        run.called = nullptr;
        run.changed.notify_all();
    }
};

}  // namespace

const char* getProcessEndText()
{
    return "No run can be started any more: the process is ending";
}

void RunState::end(std::exception_ptr what) noexcept
{
    const std::lock_guard<std::mutex> lock(mutex);
    running = false;
    failure = std::move(what);
    work.end();
    changed.notify_all();
}

void RunState::report(double fraction)
{
    std::shared_ptr<const Callback> callback;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        callback = progress;
        called = callback.get();
    }
    if (!callback)
        return;
    const WithinWork within(work, WithinWork::eCallback);
    const Call call{*this, std::move(callback)};
    (*call.callback)(fraction);
}

void RunState::setProgress(std::shared_ptr<const Callback> callback)
{
    std::unique_lock<std::mutex> lock(mutex);
    progress.swap(callback);
    if (callback && !Work::isInCallback())
        changed.wait(lock, [&] { return called != callback.get(); });
    lock.unlock();
}

void RunState::clear() noexcept
{
    std::shared_ptr<const Callback> callback;
    std::exception_ptr earlier;
    const std::lock_guard<std::mutex> lock(mutex);
    progress.swap(callback);
    std::swap(failure, earlier);
}

}}  // namespace orvik::core
