#pragma once

#include "frame/util/ProcessEnd.h"

#include <atomic>
#include <condition_variable>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>

namespace orvik { namespace core {

/// The text of a run that is not started since the process ends.
const char* getProcessEndText();

/// State of a root's run, seen by the caller and by all working threads. Callbacks and exceptions are the caller's: what
/// destroys one may come back to the action, so none is destroyed under the lock.
struct RunState
{
    typedef std::function<void(double)> Callback;

    std::mutex mutex;  // guards what is not atomic
    std::condition_variable changed;
    bool running = false;
    std::exception_ptr failure;
    std::shared_ptr<const Callback> progress;
    const Callback* called = nullptr;  // the one that runs now; the frame never makes two calls at once
    std::atomic<bool> cancelled{false};
    Work work;

    bool isCancelled() const noexcept { return cancelled.load(std::memory_order_relaxed) || hasProcessEndBegun(); }
    /// The run is over: `failure` was null before.
    void end(std::exception_ptr what) noexcept;
    /// Calls the callback, if there is one, and keeps it meanwhile.
    void report(double fraction);
    /// Returns when the callback that there was is not running any more, unless the thread is in a callback itself.
    void setProgress(std::shared_ptr<const Callback> callback);
    /// Lets go of all that is the caller's.
    void clear() noexcept;
};

}}  // namespace orvik::core
