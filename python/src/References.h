#pragma once

#include <pybind11/pybind11.h>

#include <boost/shared_ptr.hpp>

#include <exception>

namespace orvik { namespace python {

/// Keeps a Python object alive for as long as somebody in C++ holds the result, on whatever thread the last of them lets
/// go: without the interpreter lock the object is set aside and given back as soon as the interpreter comes to it.
/// To be called with the lock held.
boost::shared_ptr<void> keepReference(pybind11::handle object);

/// What Python code raised that the library called. Unlike pybind11's exception it may be thrown as often as somebody asks
/// for the failure, and be let go on any thread.
class RaisedError : public std::exception
{
public:
    /// Takes the interpreter's current error. With the lock held.
    RaisedError();
    const char* what() const noexcept override;
    /// Makes it the interpreter's current error again, the same object each time. With the lock held.
    void restore() const;

private:
    boost::shared_ptr<void> m_value;
};

}}  // namespace orvik::python
