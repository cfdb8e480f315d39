#include "Run.h"

#include "Arrays.h"
#include "References.h"
#include "Values.h"

#include "frame/imaproc/ImageAttributes.h"
#include "frame/processor/ProcessorFactory.h"

#include <boost/weak_ptr.hpp>

#include <algorithm>
#include <chrono>
#include <thread>

namespace py = pybind11;

namespace orvik { namespace python {

using processor::BaseAttribute;
using processor::BaseProcessor;

namespace {

typedef std::chrono::steady_clock Clock;

/// How often a waiting thread looks for signals, Ctrl-C above all.
const unsigned long g_signalMilliseconds = 50;

/// A call on fewer samples runs on the caller's thread: to wake another one takes longer than many such calls.
const unsigned long g_nbSamplesOfSmall = 1ul << 16;

/// Whether this thread is in a progress callback. It is one of those that work, so it must not wait for them.
thread_local bool t_inProgress = false;

/// The runs that were started. A processor that nobody holds any more is at its end.
std::vector<boost::weak_ptr<BaseProcessor> >& startedRuns()
{
    static auto* const runs = new std::vector<boost::weak_ptr<BaseProcessor> >;  // used with the interpreter lock held
    return *runs;
}

void checkSignals()
{
    if (PyErr_CheckSignals() != 0)
        throw py::error_already_set();
}

/// Looks for signals while the caller's own thread works: between elements, the only places where a run can end early.
class SignalWatch
{
public:
    void operator()(double)
    {
        const Clock::time_point now = Clock::now();
        if (std::this_thread::get_id() != m_caller || now - m_last < std::chrono::milliseconds(g_signalMilliseconds))
            return;
        m_last = now;
        const py::gil_scoped_acquire locked;
        checkSignals();
    }

private:
    std::thread::id m_caller = std::this_thread::get_id();
    Clock::time_point m_last = Clock::now();
};

py::object onlyArgument(const std::string& attribute, const py::kwargs& arguments, std::string& name)
{
    if (arguments.size() != 1)
        throw py::type_error(attribute + " takes one argument");
    const auto argument = *arguments.begin();
    name = argument.first.cast<std::string>();
    return py::reinterpret_borrow<py::object>(argument.second);
}

}  // namespace

Run::Run(const std::string& className, const py::object& progress)
    : m_className(className),
      m_processor(processor::ProcessorFactory::getInstance().createProcessor("orvik::imaproc::" + className)),
      m_progress(progress)
{
    if (!m_processor)
        throw py::value_error("no class has the name " + className);
    m_processor->init(processor::ePRP_WithRules);
}

BaseAttribute& Run::attribute(const std::string& name) const
{
    for (const boost::shared_ptr<BaseAttribute>& attribute : m_processor->getAttributes())
        if (attribute->getObjectName() == name)
            return *attribute;
    throw py::value_error(m_className + " has no attribute " + name);
}

void Run::set(const std::string& attributeName, const py::kwargs& arguments)
{
    BaseAttribute& target = attribute(attributeName);
    auto* const image = dynamic_cast<imaproc::BaseInputImageAttribute*>(&target);
    if (!image) {
        setParameter(target, arguments);
        return;
    }
    std::string name;
    const py::object array = onlyArgument(attributeName, arguments, name);
    py::ssize_t nbAxes = 0;
    const boost::shared_ptr<const image::BaseImage> value = readArray(array, name, nbAxes);
    if (m_nbSamples == 0)
        m_nbAxes = nbAxes;
    m_nbSamples += value->getSizeX() * value->getSizeY() * value->getSizeZ() * value->getSizeC() * value->getSizeT();
    image->assign(value);
}

void Run::give(const std::string& attributeName, const py::kwargs& argument)
{
    std::string name;
    const py::object array = onlyArgument(attributeName, argument, name);
    if (array.is_none())
        return;
    dynamic_cast<imaproc::BaseOutputImageAttribute&>(attribute(attributeName)).assign(writeArray(array, name));
    m_given.emplace_back(attributeName, array);
}

void Run::returns(const py::args& attributes)
{
    for (const py::handle& name : attributes)
        m_results.push_back(name.cast<std::string>());
}

void Run::prepare(bool everyPlane)
{
    m_everyPlane = everyPlane;
    for (const std::string& name : m_results) {
        auto* const lists = dynamic_cast<imaproc::BasePlanIndexedAttribute*>(&attribute(name));
        if (!lists || everyPlane)
            continue;
        // A list of the first plane alone: the library refuses images that have more.
        lists->initEmpty();
        lists->accessStorage()->insert(PlanIndex(), lists->accessStorage()->createEntry());
    }
}

void Run::watchProgress()
{
    if (m_progress.is_none())
        return;
    const boost::shared_ptr<void> callback = keepReference(m_progress);
    m_processor->setProgressCallback([callback](double fraction) {
        const py::gil_scoped_acquire locked;
        const bool before = t_inProgress;
        t_inProgress = true;
        PyObject* const answer = PyObject_CallFunction(static_cast<PyObject*>(callback.get()), "d", fraction);
        t_inProgress = before;
        if (!answer)
            throw py::error_already_set();
        Py_DECREF(answer);
    });
}

py::object Run::execute(bool everyPlane)
{
    if (!t_inProgress && (m_nbSamples > g_nbSamplesOfSmall || !m_progress.is_none())) {
        start(everyPlane);
        wait(py::none());
        return getResult();
    }
    prepare(everyPlane);
    if (m_progress.is_none())
        m_processor->setProgressCallback(SignalWatch());
    else
        watchProgress();
    {
        const py::gil_scoped_release unlocked;
        processor::executeSyncRun(m_processor);
    }
    return getResult();
}

void Run::start(bool everyPlane)
{
    prepare(everyPlane);
    watchProgress();
    auto& runs = startedRuns();
    runs.erase(std::remove_if(runs.begin(), runs.end(), [](const auto& run) { return run.expired(); }), runs.end());
    runs.push_back(m_processor);
    const py::gil_scoped_release unlocked;
    m_processor->run(core::eST_Asynchronous);
}

bool Run::waitMilliseconds(unsigned long milliseconds)
{
    const py::gil_scoped_release unlocked;
    return m_processor->waitForEnd(milliseconds);
}

bool Run::wait(const py::object& seconds)
{
    // Longer than clocks can tell is without limit; NaN and what is below 0 do not wait.
    const double limit = seconds.is_none() ? 1e9 : std::min(seconds.cast<double>(), 1e9);
    const Clock::time_point begin = Clock::now();
    for (;;) {
        const double left = limit - std::chrono::duration<double>(Clock::now() - begin).count();
        const double slice = std::min(left * 1000, static_cast<double>(g_signalMilliseconds));
        if (waitMilliseconds(slice > 0 ? static_cast<unsigned long>(slice) + 1 : 0))
            return true;
        if (!(left > 0))
            return false;
        try {
            checkSignals();
        } catch (py::error_already_set&) {
            m_processor->requestCancellation();
            const py::gil_scoped_release unlocked;
            m_processor->waitForEnd();
            throw;
        }
    }
}

bool Run::isDone() const
{
    return !m_processor->isRunning();
}

void Run::cancel()
{
    m_processor->requestCancellation();
}

py::object Run::getResult() const
{
    m_processor->rethrowFailure();
    if (m_results.size() == 1)
        return read(m_results[0]);
    py::tuple results(m_results.size());
    for (std::size_t i = 0; i < m_results.size(); ++i)
        results[i] = read(m_results[i]);
    return std::move(results);
}

py::object Run::read(const std::string& name) const
{
    for (const auto& given : m_given)
        if (given.first == name)
            return given.second;
    BaseAttribute& source = attribute(name);
    if (const auto* const image = dynamic_cast<imaproc::BaseOutputImageAttribute*>(&source))
        return image->getStorage() ? py::object(toArray(image->getStorage(), m_nbAxes)) : py::none();
    if (const auto* const lists = dynamic_cast<imaproc::BasePlanIndexedAttribute*>(&source))
        return readLists(*lists->accessStorage());
    if (const auto* const number = dynamic_cast<processor::BaseValueAttribute<double>*>(&source))
        return py::float_(number->getStorage());
    throw py::type_error(m_className + ": " + name + " has no form in Python");
}

py::object Run::readLists(BasePlanIndexedColl& coll) const
{
    const auto list = [&](const PlanIndex& plane) {
        return toStructuredArray(dynamic_cast<BaseDataItemNode&>(*coll.getStorage(plane)));
    };
    if (!m_everyPlane)
        return list(PlanIndex());
    py::dict lists;
    for (const PlanIndex& plane : coll.getPlans())
        lists[py::make_tuple(plane.z, plane.c, plane.t)] = list(plane);
    return std::move(lists);
}

void Run::endAll()
{
    std::vector<boost::shared_ptr<BaseProcessor> > runs;
    for (const auto& run : startedRuns())
        if (boost::shared_ptr<BaseProcessor> processor = run.lock())
            runs.push_back(std::move(processor));
    const py::gil_scoped_release unlocked;
    for (const auto& run : runs)
        run->requestCancellation();
    for (const auto& run : runs)
        run->waitForEnd();
}

}}  // namespace orvik::python
