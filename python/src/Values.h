#pragma once

#include <pybind11/numpy.h>

#include "frame/processor/BaseAttribute.h"

namespace orvik { namespace python {

/// A value that comes from an argument of another name than the one that it is given by; messages tell that.
struct Named
{
    std::string name;
    pybind11::object value;
};

/// @throws TypeError that names the argument for what is no number.
double toDouble(const pybind11::handle& object, const std::string& name);

/// Gives a parameter its value from keyword arguments: a record from those that are named after its leaves, with a small
/// first letter, a number from the only one. Leaves that are None keep what they read as while unset.
/// @throws TypeError or ValueError that names the argument when its value does not fit.
void setParameter(processor::BaseAttribute& attribute, const pybind11::kwargs& arguments);

/// Gives a list its records, one for each row of an array of doubles that has a column for each leaf; lists of planes or
/// volumes from a dict of such arrays by (t, c, z).
/// @throws TypeError that names the argument for another array.
void setList(processor::BaseAttribute& attribute, const pybind11::handle& rows, const std::string& name);

/// A list of records as a structured array with the leaves as fields. Of empty places these are NaN, whole numbers 0.
pybind11::array toStructuredArray(BaseDataItemNode& list);

}}  // namespace orvik::python
