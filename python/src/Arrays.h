#pragma once

#include <pybind11/numpy.h>

#include "frame/image/BaseImage.h"

namespace orvik { namespace python {

/// An array of shape (y, x), (z, y, x), (c, z, y, x) or (t, c, z, y, x) as an image. Its memory is used where the samples of
/// each line follow one another and none overlap; other layouts are copied.
/// @param name  the argument's, for messages.
/// @param nbAxes  becomes the array's.
/// @throws TypeError for what is no array, or has samples of a type that no image has; ValueError for its shape.
boost::shared_ptr<const image::BaseImage> readArray(const pybind11::object& object, const std::string& name,
                                                    pybind11::ssize_t& nbAxes);

/// An array that a result is to be written to: never copied.
/// @throws as readArray, and ValueError for one that is read-only or whose layout no image has.
boost::shared_ptr<image::BaseImage> writeArray(const pybind11::object& object, const std::string& name);

/// An image as an array with that many axes, which shares its memory.
pybind11::array toArray(const boost::shared_ptr<image::BaseImage>& image, pybind11::ssize_t nbAxes);

}}  // namespace orvik::python
