#include "Arrays.h"

#include "Interpreter.h"

#include "frame/util/BaseException.h"

#include <algorithm>
#include <array>

namespace py = pybind11;

namespace orvik { namespace python {

using image::eImageBufferType;
using imaproc::ConstImagePtr;
using imaproc::ImagePtr;

namespace {

const py::ssize_t g_minAxes = 2, g_maxAxes = 5;

std::string textOf(const py::handle& object)
{
    return py::str(object);
}

std::string typeName(const py::handle& object)
{
    return textOf(py::type::handle_of(object).attr("__name__"));
}

struct Types
{
    std::vector<py::dtype> ofImages;  // by eImageBufferType
    py::object plainArray;
};

const Types& types()
{
    // Never destroyed: at the end of the process the interpreter is gone before statics are.
    static const Types& known =
        *new Types{{py::dtype("V1"), py::dtype("i1"), py::dtype("u1"), py::dtype("i2"), py::dtype("u2"), py::dtype("i4"),
                    py::dtype("u4"), py::dtype("f4"), py::dtype("?"), py::dtype("u2"), py::dtype("u4"), py::dtype("u1")},
                   py::module_::import("numpy").attr("ndarray")};
    return known;
}

/// "binary", "label" or "": what an array's class says of its samples. Plain arrays say nothing.
std::string markOf(const py::array& array, const std::string& name)
{
    if (py::type::handle_of(array).is(types().plainArray))
        return std::string();
    if (py::hasattr(array, "mask"))
        throw py::type_error(name + ": masked arrays are not supported, since the mask would be ignored");
    return py::hasattr(array, "sampleKind") ? textOf(array.attr("sampleKind")) : std::string();
}

eImageBufferType typeOf(const py::array& array, const std::string& name)
{
    const py::dtype dtype = array.dtype();
    const char kind = dtype.kind();
    const py::ssize_t size = dtype.itemsize();
    const char order = dtype.byteorder();
    if (order == '>')  // '<' never stands for this machine's own order, which is '='
        throw py::type_error(name + ": samples of type " + textOf(dtype) + " are not in the byte order of this machine");
    const std::string mark = markOf(array, name);
    if (kind == 'b')
        return image::eIBT_Binary;
    if (mark == "binary" && kind == 'u' && size == 1)
        return image::eIBT_Binary;
    if (mark == "label" && kind == 'u' && size <= 4)
        return size == 1 ? image::eIBT_Label8 : size == 2 ? image::eIBT_Label16 : image::eIBT_Label32;
    if (kind == 'u' && size <= 4)
        return size == 1 ? image::eIBT_UInt8 : size == 2 ? image::eIBT_UInt16 : image::eIBT_UInt32;
    if (kind == 'i' && size <= 4)
        return size == 1 ? image::eIBT_Int8 : size == 2 ? image::eIBT_Int16 : image::eIBT_Int32;
    if (kind == 'f' && size == 4)
        return image::eIBT_Real32;
    throw py::type_error(name + ": samples of type " + textOf(dtype)
                         + " are none of int8, uint8, int16, uint16, int32, uint32, float32 and bool");
}

py::array asArray(const py::object& object, const std::string& name)
{
    if (py::isinstance<py::array>(object))
        return py::reinterpret_borrow<py::array>(object);
    // Pictures and arrays of other libraries; not lists, which would become 64-bit numbers.
    if (py::hasattr(object, "__array_interface__") || py::hasattr(object, "__array__"))
        return py::module_::import("numpy").attr("asarray")(object);
    throw py::type_error(name + ": an array is expected, not " + typeName(object));
}

image::ImageSizes sizesOf(const py::array& array, const std::string& name)
{
    const py::ssize_t nbAxes = array.ndim();
    if (nbAxes < g_minAxes || nbAxes > g_maxAxes)
        throw py::value_error(name + ": an array of shape " + textOf(array.attr("shape")) + " has " + std::to_string(nbAxes)
                              + " axes, 2 to 5 are expected: (y, x) to (t, c, z, y, x)");
    if (array.size() == 0)
        throw py::value_error(name + ": an array of shape " + textOf(array.attr("shape")) + " has no samples");
    std::array<unsigned long, g_maxAxes> sizes = {1, 1, 1, 1, 1};
    for (py::ssize_t axis = 0; axis < nbAxes; ++axis)
        sizes[axis] = static_cast<unsigned long>(array.shape(nbAxes - 1 - axis));
    return image::ImageSizes(sizes[0], sizes[1], sizes[2], sizes[3], sizes[4]);
}

/// Distances of an array in an image's terms. False for samples that do not follow one another along x or are misaligned,
/// and where several lines are one, which an image would take for lines without gaps.
bool stridesOf(const py::array& array, image::ImageStrides& strides)
{
    const py::ssize_t last = array.ndim() - 1;
    if ((array.shape(last) > 1 && array.strides(last) != array.itemsize())
        || !(array.flags() & py::detail::npy_api::NPY_ARRAY_ALIGNED_))
        return false;
    std::array<long, g_maxAxes> distances = {};
    for (py::ssize_t axis = 1; axis <= last; ++axis) {
        if (array.shape(last - axis) == 1)
            continue;  // there is no neighbour, and NumPy leaves anything there
        distances[axis] = array.strides(last - axis);
        if (distances[axis] == 0)
            return false;
    }
    strides = image::ImageStrides(distances[1], distances[2], distances[3], distances[4]);
    return true;
}

}  // namespace

void lookUpTypes()
{
    types();
}

ConstImagePtr readArray(const py::object& object, const std::string& name, py::ssize_t& nbAxes)
{
    py::array array = asArray(object, name);
    nbAxes = array.ndim();
    const eImageBufferType type = typeOf(array, name);
    const image::ImageSizes sizes = sizesOf(array, name);
    image::ImageStrides strides;
    if (stridesOf(array, strides)) {
        try {
            return image::wrapBuffer(array.data(), type, sizes, strides, keepReference(array));
        } catch (const imaproc::ORVIKImageProcessingException&) {
            // Lines that overlap.
        }
    }
    // NumPy gives the interpreter lock away while it copies.
    PyObject* const copy = heldUpAtEnd([&] { return PyObject_CallMethod(array.ptr(), "copy", "s", "C"); });
    if (!copy)
        throw py::error_already_set();
    array = py::reinterpret_steal<py::array>(copy);
    return image::wrapBuffer(array.data(), type, sizes, image::ImageStrides(), keepReference(array));
}

ImagePtr writeArray(const Reference& object, const std::string& name)
{
    const py::handle given(static_cast<PyObject*>(object.get()));
    if (!py::isinstance<py::array>(given))
        throw py::type_error(name + ": an array is expected, not " + typeName(given));
    py::array array = py::reinterpret_borrow<py::array>(given);
    const eImageBufferType type = typeOf(array, name);
    const image::ImageSizes sizes = sizesOf(array, name);
    if (!array.writeable())
        throw py::value_error(name + ": the array is read-only");
    image::ImageStrides strides;
    if (!stridesOf(array, strides))
        throw py::value_error(name + ": a result can't be written to an array with strides " + textOf(array.attr("strides"))
                              + ": the samples of a line must follow one another");
    try {
        return image::wrapBuffer(array.mutable_data(), type, sizes, strides, object);
    } catch (const imaproc::ORVIKImageProcessingException& e) {
        throw py::value_error(name + ": " + e.what());
    }
}

py::array toArray(const ImagePtr& image, py::ssize_t nbAxes)
{
    const eImageBufferType type = image->getBufferType();
    const py::dtype& dtype = types().ofImages[type];
    const image::ImageSizes& sizes = image->getGeometry().getSizes();
    const image::ImageStrides& strides = image->getStrides();
    const std::array<unsigned long, g_maxAxes> allSizes = {sizes.x, sizes.y, sizes.z, sizes.c, sizes.t};
    const std::array<long, g_maxAxes> allStrides = {static_cast<long>(dtype.itemsize()), strides.y, strides.z, strides.c,
                                                    strides.t};
    std::vector<py::ssize_t> shape(allSizes.rend() - nbAxes, allSizes.rend());
    std::vector<py::ssize_t> distances(allStrides.rend() - nbAxes, allStrides.rend());
    const py::capsule owner(new ImagePtr(image), [](void* pointer) { delete static_cast<ImagePtr*>(pointer); });
    py::array array(dtype, std::move(shape), std::move(distances), image->accessLine(0), owner);
    if (type == image::eIBT_Label8 || type == image::eIBT_Label16 || type == image::eIBT_Label32)
        return py::module_::import("orvik_fd").attr("asLabel")(array);
    return array;
}

}}  // namespace orvik::python
