#pragma once

#include <pybind11/numpy.h>

#include "References.h"

#include "frame/image/BaseImage.h"

namespace orvik { namespace python {

/// Looks up NumPy's types, while the package is imported. Later two threads might come at once, and one of them wait with the
/// interpreter lock for the other one, which waits for that lock.
void lookUpTypes();

/// An array of shape (y, x), (z, y, x), (c, z, y, x) or (t, c, z, y, x) as an image. Its memory is used where the samples of
/// each line follow one another and none overlap; other layouts are copied.
/// @param name  the argument's, for messages.
/// @param nbAxes  becomes the array's.
/// @throws TypeError for what is no array, or has samples of a type that no image has; ValueError for its shape.
imaproc::ConstImagePtr readArray(const pybind11::object& object, const std::string& name, pybind11::ssize_t& nbAxes);

/// An array that a result is to be written to: never copied.
/// @throws as readArray, and ValueError for one that is read-only or whose layout no image has.
imaproc::ImagePtr writeArray(const Reference& object, const std::string& name);

/// An image as an array with that many axes, which shares its memory.
pybind11::array toArray(const imaproc::ImagePtr& image, pybind11::ssize_t nbAxes);

}}  // namespace orvik::python
