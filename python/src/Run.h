#pragma once

#include <pybind11/pybind11.h>

#include "References.h"

#include "frame/processor/BaseProcessor.h"

#include <memory>
#include <utility>
#include <vector>

namespace orvik { namespace python {

/// One call of a function: a processor of the library, found by the name of its class, with its arguments, which is run
/// once, at once or in the background.
class Run
{
public:
    /// @param className  within the library's namespace of image processing: "fd::CannyEdges2dImgLvl1".
    /// @param progress  None, or called with the fraction that is done, on a thread of the library.
    Run(const std::string& className, const pybind11::object& progress);

    /// Gives an input its value: an array by the only argument, or a parameter as setParameter has it. None gives nothing.
    void set(const std::string& attribute, const pybind11::kwargs& arguments);
    /// Gives an input its list of records, a row of the only argument each, see the function of that name.
    void setList(const std::string& attribute, const pybind11::kwargs& argument);
    /// Gives an array that a result is written to, by the only argument. None lets the library make one.
    void give(const std::string& attribute, const pybind11::kwargs& argument);
    /// The attributes that are the result: one, or a tuple of them.
    void returns(const pybind11::args& attributes);

    /// Runs to the end and gives the result. Signals are served; what a handler raises cancels the run.
    /// @param everyPlane  lists of features of every plane, not of the only one.
    pybind11::object execute(bool everyPlane);
    /// Starts a run in the background.
    void start(bool everyPlane);
    /// Waits for the end, at most that many seconds, without limit when there is no number. Signals as by execute; after a
    /// second one the cancelled run is left alone.
    /// @throws RuntimeError in a progress callback, unless the run has ended.
    bool wait(const pybind11::object& seconds);
    bool isDone();
    void cancel();
    /// The result of a run that has ended. @throws what ended it.
    pybind11::object getResult();

    // All of these, for a run that was started before a fork: RuntimeError in the new process.

    /// Whether the run was started by this process, not by the one that this is a fork of.
    bool isOwn() const;

    /// Cancels the runs that are on and waits for their end: before the interpreter goes. None can be started any more.
    static void endAll();
    /// To be called in a process made by fork.
    static void forgetAll();

    // For Python's collector of cycles: an exception, as an example, refers by its traceback to what called the function that
    // raised it, and that to the run. Arrays that are read are left out, since an ended run is soon made to let go of them.

    /// Shows the collector what the run alone holds: nothing while it is on.
    int traverse(visitproc visit, void* arg) const;
    /// Lets go of everything. The run is of no use afterwards, and says so.
    void clear();

private:
    /// What a run calls, and what that raised.
    struct Callback
    {
        Reference callable, raised;
    };

    processor::BaseAttribute& attribute(const std::string& name) const;
    void prepare(bool everyPlane);
    void watchProgress();
    void checkOwn() const;
    bool waitMilliseconds(unsigned long milliseconds);
    /// Lets go of what a run needs no more once it has ended, which it gives back: its callback and its arrays may refer to
    /// who holds the run.
    bool clearIfEnded(bool ended);
    pybind11::object read(const std::string& name) const;
    pybind11::object readLists(BasePlanIndexedColl& coll) const;

    std::string m_className;
    // These outlive the processor, which so lets go of no last reference while it has its locks: that may run Python code.
    std::shared_ptr<Callback> m_callback;
    std::vector<std::pair<std::string, Reference>> m_given;
    Ptr<processor::BaseProcessor> m_processor;
    std::vector<std::string> m_results;
    pybind11::ssize_t m_nbAxes = 2;
    unsigned long m_nbSamples = 0, m_nbPlanes = 1, m_nbVolumes = 1;  // of all inputs, of the first one
    bool m_everyPlane = false;
    unsigned int m_nbForks;  // at its start
};

}}  // namespace orvik::python
