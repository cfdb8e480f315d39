#pragma once

#include <pybind11/pybind11.h>

#include "frame/attr/Declarations.h"

#include <exception>
#include <utility>

namespace orvik { namespace python {

/// A Python object that is alive for as long as somebody in C++ holds one of these, on whatever thread the last of them lets
/// go: without the interpreter lock the object is set aside and given back as soon as the interpreter comes to it. With the
/// lock, to let go may run any Python code: first put in order what that code may come back to.
typedef Ptr<void> Reference;

/// With the lock held.
Reference keepReference(pybind11::handle object);
/// Takes the interpreter's current error. With the lock held.
Reference keepRaised();

/// What Python code raised that the library called. Unlike pybind11's exception it may be thrown as often as somebody asks
/// for the failure, and be let go on any thread.
class RaisedError : public std::exception
{
public:
    explicit RaisedError(Reference value) : m_value(std::move(value)) {}
    const char* what() const noexcept override;
    /// Makes it the interpreter's current error again, the same object each time. With the lock held.
    void restore() const;

private:
    Reference m_value;
};

}}  // namespace orvik::python
