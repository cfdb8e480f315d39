// The part of the Python package that is C++: calls by the names of classes and attributes. What users see is written in
// Python, in orvik_fd.

#include "Kernels.h"
#include "Run.h"

#include "frame/core/Scheduler.h"
#include "frame/util/BaseException.h"

#include <pybind11/stl.h>

namespace py = pybind11;

namespace orvik { namespace python {

namespace {

std::vector<core::eInstructionSet> toSets(const std::vector<unsigned int>& numbers)
{
    std::vector<core::eInstructionSet> sets;
    for (const unsigned int number : numbers)
        sets.push_back(static_cast<core::eInstructionSet>(number));
    return sets;
}

std::vector<unsigned int> instructionSetNumbers()
{
    std::vector<unsigned int> numbers;
    for (const core::eInstructionSet set : instructionSets())
        numbers.push_back(set);
    return numbers;
}

/// Exceptions of the library become the package's own, with the same text.
void translate(std::exception_ptr failure)
{
    try {
        if (failure)
            std::rethrow_exception(failure);
    } catch (const BaseException& e) {
        const bool isCancelled = e.getMessage() == core::getCancelledText();
        const py::object type = py::module_::import("orvik_fd").attr(isCancelled ? "CancelledError" : "Error");
        PyErr_SetString(type.ptr(), e.what());
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
        .def("returning", [](py::object self, const py::args& attributes) {
            self.cast<Run&>().returns(attributes);
            return self;
        })
        .def("execute", &Run::execute)
        .def("start", &Run::start)
        .def("wait", &Run::wait)
        .def("isDone", &Run::isDone)
        .def("cancel", &Run::cancel)
        .def("getResult", &Run::getResult);

    module.def("endAll", &Run::endAll);
    module.def("instructionSets", &instructionSetNumbers);
    module.def("forceInstructionSets", [](const std::string& className, const std::vector<unsigned int>& sets) {
        forceInstructionSets(className, toSets(sets));
    });
    module.def("releaseForcedInstructionSets", &releaseForcedInstructionSets);
    module.def("setNbThreads", &core::setNbThreads);
    module.def("getNbThreads", &core::getNbThreads);
}

}}  // namespace orvik::python
