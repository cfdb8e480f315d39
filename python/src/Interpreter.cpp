#include "Interpreter.h"

#include <atomic>
#include <chrono>
#include <thread>

#include <unistd.h>

namespace orvik { namespace python {

namespace {

std::atomic<bool> g_endBegun(false);
std::thread::id g_endingThread;  // not changed any more once the end has begun
std::atomic<unsigned int> g_nbComing(0);
unsigned int g_nbForks = 0;

thread_local bool t_inCallback = false;

/// A thread's way to the lock.
class Coming
{
public:
    explicit Coming(bool mayBeHeldUp)
    {
        ++g_nbComing;
        if (!mayBeHeldUp || !g_endBegun || std::this_thread::get_id() == g_endingThread)
            return;
        --g_nbComing;
        holdUp();
    }
    ~Coming() { --g_nbComing; }
};

}  // namespace

void holdUp()
{
    for (;;)
        pause();
}

Unlocked::Unlocked() : m_state(PyEval_SaveThread()) {}

Unlocked::~Unlocked()
{
    const Coming coming(!t_inCallback);
    PyEval_RestoreThread(m_state);
}

Locked::Locked(eThread thread) : m_before(t_inCallback)
{
    const Coming coming(thread == eOfCaller && !t_inCallback);
    // NOLINTNEXTLINE(cppcoreguidelines-prefer-member-initializer): not before the thread is counted
    m_state = PyGILState_Ensure();
    t_inCallback = t_inCallback || thread == eOfLibrary;
}

Locked::~Locked()
{
    t_inCallback = m_before;
    PyGILState_Release(m_state);
}

bool isInCallback()
{
    return t_inCallback;
}

void beginEnd()
{
    g_endingThread = std::this_thread::get_id();
    g_endBegun = true;
}

bool hasEndBegun()
{
    return g_endBegun;
}

void waitForComing()
{
    const Unlocked unlocked;
    while (g_nbComing != 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

void noteFork()
{
    g_nbComing = 0;
    ++g_nbForks;
}

unsigned int getNbForks()
{
    return g_nbForks;
}

}}  // namespace orvik::python
