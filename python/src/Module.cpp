// The part of the Python package that is C++: calls by the names of classes and attributes. What users see is written in
// Python, in orvik_fd.

#include "Kernels.h"
#include "References.h"
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

}  // namespace

PYBIND11_MODULE(_core, module)
{
    py::register_exception_translator(&translate);

    py::class_<Run>(module, "Run")
        .def(py::init<const std::string&, const py::object&>())
        .def("set", &Run::set)
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
