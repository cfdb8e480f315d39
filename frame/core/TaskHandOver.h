#pragma once

#ifdef __SANITIZE_THREAD__
extern "C" void __tsan_acquire(void*);
extern "C" void __tsan_release(void*);
#endif

namespace orvik { namespace core {

/// oneTBB hands a task from thread to thread by atomics that the thread sanitizer does not see, not being built with
/// it. So it is told: what was done before a task was given is done for who takes one, and a task that was destroyed is
/// done with for those that are made later, maybe in the same memory and of another type.
struct TaskHandOver
{
#ifdef __SANITIZE_THREAD__
    static void give()
    {
        __tsan_release(&s_given);
    }
    static void take()
    {
        __tsan_acquire(&s_given);
    }
    static void leave()
    {
        __tsan_release(&s_left);
    }
    static void reuse()
    {
        __tsan_acquire(&s_left);
    }
    inline static char s_given = 0, s_left = 0;
#else
    static void give() {}
    static void take() {}
    static void leave() {}
    static void reuse() {}
#endif
};

}}  // namespace orvik::core
