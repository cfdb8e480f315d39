// The part of the Python package that is C++: calls by the names of classes and attributes. What users see is written in
// Python, in orvik_fd.

#include "Arrays.h"
#include "Kernels.h"
#include "Run.h"
#include "Values.h"

#include "frame/core/Scheduler.h"
#include "frame/util/BaseException.h"

#include <pybind11/stl.h>

namespace py = pybind11;

namespace orvik { namespace python {

namespace {

/// Exceptions of the library become the package's own, with the same text; those of callbacks are themselves.
// NOLINTNEXTLINE(performance-unnecessary-value-param): as pybind11 calls it
void translate(std::exception_ptr failure)
{
    try {
        if (failure)
            std::rethrow_exception(failure);
    } catch (const BaseException& e) {
        const bool isCancelled = e.getMessage() == core::getCancelledText();
        const py::object type = py::module_::import("orvik_fd").attr(isCancelled ? "CancelledError" : "Error");
        PyErr_SetString(type.ptr(), e.what());
    } catch (const RaisedError& e) {
        e.restore();
    }
}

/// None while the object is being made, when the collector may already see it.
Run* runOf(PyObject* self)
{
    const auto place = reinterpret_cast<py::detail::instance*>(self)->get_value_and_holder();
    return place.holder_constructed() ? place.value_ptr<Run>() : nullptr;
}

void letCollect(PyHeapTypeObject* heapType)
{
    PyTypeObject& type = heapType->ht_type;
    type.tp_flags |= Py_TPFLAGS_HAVE_GC;
    type.tp_traverse = [](PyObject* self, visitproc visit, void* arg) {
        Py_VISIT(Py_TYPE(self));
        const Run* const run = runOf(self);
        return run ? run->traverse(visit, arg) : 0;
    };
    type.tp_clear = [](PyObject* self) {
        if (Run* const run = runOf(self))
            run->clear();
        return 0;
    };
    type.tp_dealloc = [](PyObject* self) {
        PyObject_GC_UnTrack(self);  // pybind11 2.10 leaves it to the collector while the run is taken down
        py::detail::pybind11_object_dealloc(self);
    };
}

}  // namespace

PYBIND11_MODULE(_core, module)
{
    lookUpTypes();
    py::register_exception_translator(&translate);

    py::class_<Run>(module, "Run", py::custom_type_setup(&letCollect))
        .def(py::init<const std::string&, const py::object&>())
        .def("set", &Run::set)
        .def("setList", &Run::setList)
        .def("give", &Run::give)
        .def("returning",
             [](py::object self, const py::args& attributes) {
                 self.cast<Run&>().returns(attributes);
                 return self;
             })
        .def("execute", &Run::execute)
        .def("start", &Run::start)
        .def("wait", &Run::wait)
        .def("isDone", &Run::isDone)
        .def("isOwn", &Run::isOwn)
        .def("cancel", &Run::cancel)
        .def("getResult", &Run::getResult);

    py::class_<Named>(module, "Named").def(py::init([](const std::string& name, const py::object& value) {
        return Named{name, value};
    }));

    module.def("endAll", &Run::endAll);
    module.def("forgetAll", &Run::forgetAll);
    module.def("instructionSets", &instructionSets);
    module.def("forceInstructionSets", &forceInstructionSets);
    module.def("releaseForcedInstructionSets", &releaseForcedInstructionSets);
    module.def("setNbThreads", &core::setNbThreads);
    module.def("getNbThreads", &core::getNbThreads);
}

}}  // namespace orvik::python
