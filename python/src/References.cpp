#include "References.h"

#include <atomic>

namespace orvik { namespace python {

namespace {

/// An object that C++ holds, and once it is let go of without the interpreter lock, a link in the list of those. Taken
/// beforehand, so that letting go needs neither memory nor a lock, which another thread may have while the process forks.
struct Kept
{
    PyObject* object;
    Kept* next;
};

std::atomic<Kept*> g_letGo(nullptr);

void giveBack(Kept* kept)
{
    PyObject* const object = kept->object;
    delete kept;
    Py_DECREF(object);  // last: it may run any Python code, and that come back here
}

int giveAllBack(void*)
{
    for (Kept* kept = g_letGo.exchange(nullptr); kept;) {
        Kept* const next = kept->next;
        giveBack(kept);
        kept = next;
    }
    return 0;
}

void release(Kept* kept)
{
    if (!Py_IsInitialized())
        return;  // its memory went with the interpreter
    if (PyGILState_Check()) {
        giveBack(kept);
        return;
    }
    kept->next = g_letGo;
    while (!g_letGo.compare_exchange_weak(kept->next, kept)) {
    }
    // Where the interpreter's queue is full, the next call of this gives the object back as well.
    Py_AddPendingCall(&giveAllBack, nullptr);
}

}  // namespace

Reference keepReference(pybind11::handle object)
{
    Kept* const kept = new Kept{object.inc_ref().ptr(), nullptr};
    return Reference(Ptr<Kept>(kept, &release), object.ptr());
}

Reference keepRaised()
{
    PyObject *type = nullptr, *value = nullptr, *trace = nullptr;
    PyErr_Fetch(&type, &value, &trace);
    PyErr_NormalizeException(&type, &value, &trace);
    const auto ownedType = pybind11::reinterpret_steal<pybind11::object>(type);
    const auto ownedValue = pybind11::reinterpret_steal<pybind11::object>(value);
    const auto ownedTrace = pybind11::reinterpret_steal<pybind11::object>(trace);
    if (trace)
        PyException_SetTraceback(value, trace);
    return keepReference(value);
}

const char* RaisedError::what() const noexcept
{
    return "what the library called in Python raised an exception";
}

void RaisedError::restore() const
{
    PyObject* const value = static_cast<PyObject*>(m_value.get());
    PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(value)), value);
}

}}  // namespace orvik::python
