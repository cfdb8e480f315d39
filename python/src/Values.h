#pragma once

#include <pybind11/numpy.h>

#include "frame/processor/BaseAttribute.h"

namespace orvik { namespace python {

/// Gives a parameter its value from keyword arguments: a record from those that are named after its leaves, with a small
/// first letter, a number from the only one. Leaves that are None keep what they read as while unset;
/// a pair of a name and a value comes from an argument of that name.
/// @throws TypeError or ValueError that names the argument when its value does not fit.
void setParameter(processor::BaseAttribute& attribute, const pybind11::kwargs& arguments);

/// A list of records as a structured array with the leaves as fields.
pybind11::array toStructuredArray(BaseDataItemNode& list);

}}  // namespace orvik::python
