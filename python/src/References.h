#pragma once

#include <pybind11/pybind11.h>

#include <boost/shared_ptr.hpp>

namespace orvik { namespace python {

/// Keeps a Python object alive for as long as somebody in C++ holds the result, on whatever thread the last of them lets
/// go: without the interpreter lock the object is set aside and given back as soon as the interpreter comes to it.
/// To be called with the lock held.
boost::shared_ptr<void> keepReference(pybind11::handle object);

}}  // namespace orvik::python
