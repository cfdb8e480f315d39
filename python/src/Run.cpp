#include "Run.h"

#include "Arrays.h"
#include "Interpreter.h"
#include "Values.h"

#include "frame/imaproc/ImageAttributes.h"
#include "frame/processor/ProcessorFactory.h"
#include "frame/util/BaseException.h"

#include <boost/weak_ptr.hpp>

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <thread>

namespace py = pybind11;

namespace orvik { namespace python {

using processor::BaseAttribute;
using processor::BaseProcessor;

namespace {

typedef std::chrono::steady_clock Clock;
typedef Ptr<BaseProcessor> ProcessorPtr;

/// How often a waiting thread looks for signals, Ctrl-C above all.
const unsigned long g_signalMilliseconds = 50;

/// A call on fewer samples runs on the caller's thread: to wake another one takes longer than many such calls.
const unsigned long g_nbSamplesOfSmall = 1ul << 16;

/// The runs that were started and may not have ended. A processor that nobody holds any more is at its end.
std::vector<boost::weak_ptr<BaseProcessor>>& startedRuns()
{
    static auto* const runs = new std::vector<boost::weak_ptr<BaseProcessor>>;  // used with the interpreter lock held
    return *runs;
}

/// Takes the runs that have ended from the list and lets go of the arrays that they read. That may run Python code, which
/// may start runs: only once the list is in order.
void clearEndedRuns()
{
    auto& runs = startedRuns();
    std::vector<ProcessorPtr> held, ended;
    held.reserve(runs.size());
    ended.reserve(runs.size());
    runs.erase(std::remove_if(runs.begin(), runs.end(),
                              [&](const auto& run) {
                                  held.push_back(run.lock());
                                  const ProcessorPtr& processor = held.back();
                                  if (processor && processor->isRunning())
                                      return false;
                                  if (processor)
                                      ended.push_back(processor);
                                  return true;
                              }),
               runs.end());
    for (const ProcessorPtr& processor : ended)
        processor->clearInputData();
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
        const Locked locked(Locked::eOfCaller);
        if (PyErr_CheckSignals() != 0)
            throw RaisedError(keepRaised());
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
      m_nbForks(getNbForks())
{
    if (!m_processor)
        throw py::value_error("no class has the name " + className);
    if (!progress.is_none())
        m_callback = std::make_shared<Callback>(Callback{keepReference(progress), Reference()});
    m_processor->init(processor::ePRP_WithRules);
}

BaseAttribute& Run::attribute(const std::string& name) const
{
    checkOwn();
    for (const Ptr<BaseAttribute>& attribute : m_processor->getAttributes())
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
    const imaproc::ConstImagePtr value = readArray(array, name, nbAxes);
    if (m_nbSamples == 0) {
        m_nbAxes = nbAxes;
        m_nbVolumes = value->getSizeC() * value->getSizeT();
        m_nbPlanes = value->getSizeZ() * m_nbVolumes;
    }
    m_nbSamples += value->getSizeX() * value->getSizeY() * value->getSizeZ() * value->getSizeC() * value->getSizeT();
    image->assign(value);
}

void Run::setList(const std::string& attributeName, const py::kwargs& argument)
{
    std::string name;
    const py::object rows = onlyArgument(attributeName, argument, name);
    python::setList(attribute(attributeName), rows, name);
}

void Run::give(const std::string& attributeName, const py::kwargs& argument)
{
    std::string name;
    const py::object array = onlyArgument(attributeName, argument, name);
    if (array.is_none())
        return;
    const Reference kept = keepReference(array);
    dynamic_cast<imaproc::BaseOutputImageAttribute&>(attribute(attributeName)).assign(writeArray(kept, name));
    m_given.emplace_back(attributeName, kept);
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
        BaseAttribute& result = attribute(name);
        if (auto* const record = dynamic_cast<processor::BaseDataItemAttribute*>(&result))
            record->initEmpty();
        auto* const lists = dynamic_cast<imaproc::BasePlanIndexedAttribute*>(&result);
        if (!lists || everyPlane)
            continue;
        const bool ofVolumes = name.find("3d") != std::string::npos;
        if ((ofVolumes ? m_nbVolumes : m_nbPlanes) > 1)
            throw processor::ORVIKBaseProcessingException(
                m_className + ": one " + (ofVolumes ? "volume" : "plane") + " is expected, not "
                    + std::to_string(ofVolumes ? m_nbVolumes : m_nbPlanes) + "; the multiSlice_ form takes any number",
                "", "", 0);
        lists->initEmpty();
        lists->accessStorage()->insert(PlanIndex(), lists->accessStorage()->createEntry());
    }
}

void Run::watchProgress()
{
    if (!m_callback)
        return;
    m_processor->setProgressCallback([callback = m_callback](double fraction) {
        const Locked locked(Locked::eOfLibrary);
        if (callback->raised)
            throw RaisedError(callback->raised);
        PyObject* const answer = PyObject_CallFunction(static_cast<PyObject*>(callback->callable.get()), "d", fraction);
        if (!answer) {
            callback->raised = keepRaised();
            throw RaisedError(callback->raised);
        }
        Py_DECREF(answer);
    });
}

py::object Run::execute(bool everyPlane)
{
    const bool isLong = m_nbSamples > g_nbSamplesOfSmall || m_callback;
    if (isLong && !isInCallback() && getNbForks() == 0) {
        start(everyPlane);
        wait(py::none());
        return getResult();
    }
    prepare(everyPlane);
    if (m_callback)
        watchProgress();
    else
        m_processor->setProgressCallback(SignalWatch());
    {
        const Unlocked unlocked;
        processor::executeSyncRun(m_processor);
    }
    return getResult();
}

void Run::start(bool everyPlane)
{
    clearEndedRuns();
    // From here on no Python code runs until the run is on: neither does the end of the interpreter begin, nor is another run
    // started that takes this one for one that has ended.
    if (hasEndBegun()) {
        {
            const Unlocked heldUp;
        }  // unless it is the thread that ends the interpreter
        throw std::runtime_error("the interpreter ends: no run can be started");
    }
    prepare(everyPlane);
    watchProgress();
    m_nbForks = getNbForks();
    if (m_nbForks != 0) {
        // There are no threads of the library: it runs to its end here.
        const Unlocked unlocked;
        m_processor->run(core::eST_Asynchronous);
        return;
    }
    startedRuns().emplace_back(m_processor);
    m_processor->run(core::eST_Asynchronous);
}

bool Run::isOwn() const
{
    return m_nbForks == getNbForks();
}

void Run::checkOwn() const
{
    if (!isOwn())
        throw std::runtime_error("this run belongs to the process that started it, of which this one is a fork");
    if (!m_processor)
        throw std::runtime_error("this run was collected");
}

bool Run::waitMilliseconds(unsigned long milliseconds)
{
    const Unlocked unlocked;
    return m_processor->waitForEnd(milliseconds);
}

bool Run::clearIfEnded(bool ended)
{
    if (!ended)
        return false;
    if (m_callback)
        Reference().swap(m_callback->callable);
    m_processor->clearInputData();
    return true;
}

bool Run::wait(const py::object& seconds)
{
    checkOwn();
    if (isInCallback() && m_processor->isRunning())
        throw std::runtime_error("a progress callback can't wait for a run: it is on one of the threads that work");
    // Longer than clocks can tell is without limit; NaN and what is below 0 do not wait.
    const double limit = seconds.is_none() ? 1e9 : std::min(toDouble(seconds, "timeout"), 1e9);
    const Clock::time_point begin = Clock::now();
    for (;;) {
        const double left = limit - std::chrono::duration<double>(Clock::now() - begin).count();
        const double slice = std::min(left * 1000, static_cast<double>(g_signalMilliseconds));
        if (waitMilliseconds(slice > 0 ? static_cast<unsigned long>(slice) + 1 : 0))
            return clearIfEnded(true);
        if (!(left > 0))
            return false;
        try {
            checkSignals();
        } catch (py::error_already_set&) {
            m_processor->requestCancellation();
            while (!waitMilliseconds(g_signalMilliseconds))
                checkSignals();
            throw;
        }
    }
}

bool Run::isDone()
{
    checkOwn();
    return clearIfEnded(!m_processor->isRunning());
}

void Run::cancel()
{
    checkOwn();
    m_processor->requestCancellation();
}

py::object Run::getResult()
{
    checkOwn();
    clearIfEnded(true);
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
            return py::reinterpret_borrow<py::object>(static_cast<PyObject*>(given.second.get()));
    BaseAttribute& source = attribute(name);
    if (const auto* const image = dynamic_cast<imaproc::BaseOutputImageAttribute*>(&source))
        return image->getStorage() ? py::object(toArray(image->getStorage(), m_nbAxes)) : py::none();
    if (const auto* const lists = dynamic_cast<imaproc::BasePlanIndexedAttribute*>(&source))
        return readLists(*lists->accessStorage());
    if (const auto* const record = dynamic_cast<processor::BaseDataItemAttribute*>(&source))
        return toStructuredArray(*boost::const_pointer_cast<BaseDataItemNode>(record->accessDataItemNodePtr()));
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
    std::vector<ProcessorPtr> runs;
    for (const auto& run : startedRuns())
        if (ProcessorPtr processor = run.lock())
            runs.push_back(std::move(processor));
    beginEnd();
    {
        const Unlocked unlocked;
        for (const auto& run : runs)
            run->requestCancellation();
        for (const auto& run : runs)
            run->waitForEnd();
    }
    waitForComing();
}

void Run::forgetAll()
{
    noteFork();
    startedRuns().clear();
}

int Run::traverse(visitproc visit, void* arg) const
{
    if (!isOwn() || (m_processor && m_processor->isRunning()))
        return 0;
    const auto show = [&](const Reference& kept) {
        Py_VISIT(static_cast<PyObject*>(kept.get()));
        return 0;
    };
    for (const auto& given : m_given)
        if (const int answer = show(given.second))
            return answer;
    return m_callback ? show(m_callback->callable) + show(m_callback->raised) : 0;
}

void Run::clear()
{
    const auto given = std::move(m_given);
    const auto callback = std::move(m_callback);
    const auto processor = std::move(m_processor);
}

}}  // namespace orvik::python
