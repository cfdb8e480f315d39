#pragma once

#include <pybind11/pybind11.h>

#include <cxxabi.h>

namespace orvik { namespace python {

// Giving the interpreter lock away and taking it. An interpreter that ends also ends each thread that comes back to it, in a
// way that C++ code on its stack does not survive. So from the moment when it begins to end, threads that come back from
// the library are held up until the process ends. They can only be daemons: the interpreter waits for all others before.

/// For ever.
[[noreturn]] void holdUp();

/// Lets other Python threads go on while it lives.
class Unlocked
{
public:
    Unlocked();
    ~Unlocked();
    Unlocked(const Unlocked&) = delete;
    Unlocked& operator=(const Unlocked&) = delete;

private:
    PyThreadState* m_state;
};

/// Has the interpreter lock while it lives.
class Locked
{
public:
    enum eThread
    {
        eOfLibrary,  ///< one that works for a run, whose end is waited for: never held up
        eOfCaller    ///< one that has given the lock away to run something itself
    };

    explicit Locked(eThread thread);
    ~Locked();
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

private:
    PyGILState_STATE m_state;
    const bool m_before;
};

/// What `f`, a call of Python's without C++ objects of its own, returns. Python may let other threads go on meanwhile; when the
/// interpreter ends then, it unwinds the stack of this one, which is held up here instead.
template<class F>
PyObject* heldUpAtEnd(const F& f)
{
    try {
        return f();
    } catch (const abi::__forced_unwind&) {
        holdUp();
    }
}

/// Whether this thread works for a run and is in Python for a while, so that it must not wait for runs.
bool isInCallback();

/// From now on threads that come back from the library are held up, but for the calling one. With the lock held.
void beginEnd();
bool hasEndBegun();
/// Waits until those that were on their way to the lock have it.
void waitForComing();

/// To be called in a process made by fork, where the other threads are not.
void noteFork();
/// How many forks are between the process that the module was loaded by and this one.
unsigned int getNbForks();

}}  // namespace orvik::python
