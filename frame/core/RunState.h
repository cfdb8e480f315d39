#pragma once

#include <atomic>
#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <utility>

namespace orvik { namespace core {

/// State of a root's run, seen by the caller and by all working threads.
struct RunState
{
    std::mutex mutex;  // guards running and failure
    std::condition_variable ended;
    bool running = false;
    std::exception_ptr failure;

    void end(std::exception_ptr what)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        running = false;
        failure = std::move(what);
        ended.notify_all();
    }

    std::atomic<bool> cancelled{false};

    std::mutex progressMutex;  // held while the callback runs, so that two calls never overlap
    std::function<void(double)> progress;
};

}}  // namespace orvik::core
