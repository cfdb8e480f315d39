#pragma once

namespace orvik {

/// Something that the process must not end under: a run, a record on its way to the log. When `exit` is called, nothing new
/// begins, runs are cancelled, and what has begun is waited for before anything that it uses is destroyed.
class Work
{
public:
    Work() = default;
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;

    /// False, and nothing has begun, once the process ends. The work is done for this thread, which waits for it.
    bool begin() noexcept;
    /// Nobody waits for it.
    void leaveToBackground() noexcept;
    void end() noexcept;

    /// Whether this thread is in a function of the caller's that some work calls, and that it will come back from.
    static bool isInCallback() noexcept;

private:
    friend class WithinWork;
    friend struct WorkCount;

    bool m_isOfCaller = true;
    bool m_isCounted = false;
    const Work* m_outer = nullptr;  // whose callback it was begun by
};

/// Tells that this thread does some work, or is in a callback of it, while it lives: the end of the process does not wait for
/// what the thread that ends it is within.
class WithinWork
{
public:
    enum ePart
    {
        eOwn,
        eCallback  ///< may take any time where the thread is a caller's own, so it is not waited for, nor returned from later
    };

    WithinWork(Work& work, ePart part) noexcept;
    ~WithinWork();
    WithinWork(const WithinWork&) = delete;
    WithinWork& operator=(const WithinWork&) = delete;

private:
    friend class Work;
    friend struct WorkCount;

    Work& m_work;
    const ePart m_part;
    const WithinWork* const m_below;
};

bool hasProcessEndBegun() noexcept;

/// Whether this thread can't go through the end of oneTBB, since it is in a task of that: where a callback calls `exit` on
/// such a thread, the process ends once its works have, without what was to be done after.
void setInTask(bool isInTask) noexcept;

/// To be called when a library has been loaded that works are done with: what it destroys at the end of the process goes
/// after the works have ended.
void noteLoad() noexcept;

}  // namespace orvik
