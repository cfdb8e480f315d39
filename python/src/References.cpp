#include "References.h"

#include <mutex>
#include <vector>

namespace orvik { namespace python {

namespace {

/// Objects that nobody in C++ needs any more. Never destroyed: threads of the library may outlive the interpreter.
struct LetGo
{
    std::mutex mutex;
    std::vector<PyObject*> objects;
};

LetGo& letGo()
{
    static LetGo* const place = new LetGo;
    return *place;
}

int giveBack(void*)
{
    std::vector<PyObject*> objects;
    {
        const std::lock_guard<std::mutex> lock(letGo().mutex);
        objects.swap(letGo().objects);
    }
    for (PyObject* const object : objects)
        Py_DECREF(object);
    return 0;
}

void release(void* pointer)
{
    if (!Py_IsInitialized())
        return;  // its memory went with the interpreter
    PyObject* const object = static_cast<PyObject*>(pointer);
    if (PyGILState_Check()) {
        Py_DECREF(object);
        return;
    }
    {
        const std::lock_guard<std::mutex> lock(letGo().mutex);
        letGo().objects.push_back(object);
    }
    // Where the interpreter's queue is full, the next call of this gives the object back as well.
    Py_AddPendingCall(&giveBack, nullptr);
}

}  // namespace

boost::shared_ptr<void> keepReference(pybind11::handle object)
{
    object.inc_ref();
    return boost::shared_ptr<void>(object.ptr(), &release);
}

RaisedError::RaisedError()
{
    PyObject *type = nullptr, *value = nullptr, *trace = nullptr;
    PyErr_Fetch(&type, &value, &trace);
    PyErr_NormalizeException(&type, &value, &trace);
    if (trace)
        PyException_SetTraceback(value, trace);
    m_value = keepReference(value);
    Py_XDECREF(type);
    Py_XDECREF(value);
    Py_XDECREF(trace);
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
