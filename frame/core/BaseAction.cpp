#include "frame/core/BaseAction.h"

#include "frame/core/BackgroundRuns.h"
#include "frame/core/RunState.h"
#include "frame/util/FrameMessages.h"

#include <algorithm>
#include <chrono>
#include <new>
#include <utility>

namespace orvik { namespace core {

namespace {

std::string textOf(const std::exception_ptr& failure)
{
    try {
        std::rethrow_exception(failure);
    } catch (const std::exception& e) {
        return e.what();
    } catch (...) {
        return UnHandleException().what();
    }
}

}  // namespace

BaseAction::BaseAction() = default;

BaseAction::~BaseAction()
{
    // The thread of a background run may hold the state a moment longer; by then the libraries that the callback and
    // the exception belong to may be gone.
    if (m_run)
        m_run->clear();
}

std::shared_ptr<RunState> BaseAction::getRunState() const
{
    return std::atomic_load(&m_run);
}

RunState& BaseAction::accessRunState()
{
    std::shared_ptr<RunState> state = getRunState();
    if (!state) {
        const std::shared_ptr<RunState> made = std::make_shared<RunState>();
        if (std::atomic_compare_exchange_strong(&m_run, &state, made))
            state = made;
    }
    return *state;
}

bool BaseAction::isComplexAction() const
{
    return false;
}

BoolResult BaseAction::prepareRun()
{
    return success();
}

void BaseAction::requestCancellationdDerived() {}
void BaseAction::cleanOnErrorDerived(const eCleanReason&) {}
void BaseAction::clearIntermediateData() noexcept {}

BoolResult BaseAction::enterRun()
{
    try {
        accessRunState();
    } catch (...) {
        m_hasNoMemory = true;
        throw;
    }
    std::exception_ptr earlier;  // destroyed when the lock is given back
    const std::lock_guard<std::mutex> lock(m_run->mutex);
    if (m_run->running)
        return failure(getClassName() + " is running already");
    std::swap(m_run->failure, earlier);
    if (!m_run->work.begin()) {
        m_run->failure = std::make_exception_ptr(
            processor::ORVIKBaseProcessingException(getProcessEndText(), __PRETTY_FUNCTION__, __FILE__, __LINE__));
        return failure(getProcessEndText());
    }
    m_run->running = true;
    m_run->cancelled = false;
    return success();
}

BoolResult BaseAction::execute(const BaseRequestOrigin& origin)
{
    m_origin = origin;
    BoolResult result = failure(std::string());
    try {
        result = prepareRun();
        if (result) {
            result = runDerived();
            if (result)
                return result;
        }
    } catch (...) {
        cleanOnErrorDerived(origin.isCancellationRequested() ? eCR_Cancellation : eCR_Failure);
        clearIntermediateData();
        throw;
    }
    cleanOnErrorDerived(origin.isCancellationRequested() ? eCR_Cancellation : eCR_Failure);
    clearIntermediateData();
    return result;
}

std::exception_ptr BaseAction::executeCaught() noexcept
{
    const WithinWork within(m_run->work, WithinWork::eOwn);
    try {
        const BoolResult result = execute(BaseRequestOrigin(m_run.get(), true));
        if (!result)
            ORVIK_THROW_PROCESSING(result.getMessage());
    } catch (...) {
        return std::current_exception();
    }
    return nullptr;
}

std::exception_ptr BaseAction::runToEnd() noexcept
{
    const std::exception_ptr failure = executeCaught();
    m_run->end(failure);
    return failure;
}

void BaseAction::runInBackgroundToEnd(boost::shared_ptr<BaseAction> self) noexcept
{
    const std::shared_ptr<RunState> run = self->m_run;
    std::exception_ptr failure = self->executeCaught();
    // Before anyone hears of the end: who does may unload the library that the action's destructor belongs to.
    self.reset();
    run->end(std::move(failure));
}

void BaseAction::executeAsRoot()
{
    const BoolResult entered = enterRun();
    if (!entered.getValue())
        ORVIK_THROW_PROCESSING(entered.getMessage());
    if (const std::exception_ptr failure = runToEnd())
        std::rethrow_exception(failure);
}

BoolResult BaseAction::run(const eSynchroType& synchro)
{
    const boost::shared_ptr<BaseAction> self = weak_from_this().lock();
    if (!self)
        return failure(getClassName() + " can't run in the background: no shared pointer holds it");
    const BoolResult entered = enterRun();
    if (!entered.getValue())
        return entered;
    if (synchro != eST_Asynchronous) {
        const std::exception_ptr ended = runToEnd();
        return ended ? failure(textOf(ended)) : success();
    }
    try {
        m_run->work.leaveToBackground();
        runInBackground(self, &BaseAction::runInBackgroundToEnd);
    } catch (...) {
        // Nothing was started; who waits for the end must not wait for ever.
        m_run->end(std::current_exception());
        throw;
    }
    return success();
}

void BaseAction::waitForEnd() const
{
    const std::shared_ptr<RunState> run = getRunState();
    if (!run)
        return;
    std::unique_lock<std::mutex> lock(run->mutex);
    if (run->running && Work::isInCallback()) {
        lock.unlock();
        ORVIK_THROW_PROCESSING(
            getClassName() + " is running: a progress callback can't wait for the end of a run, which may need its thread");
    }
    run->changed.wait(lock, [&] { return !run->running; });
}

bool BaseAction::waitForEnd(unsigned long milliseconds) const
{
    const std::shared_ptr<RunState> run = getRunState();
    if (!run)
        return true;
    const unsigned long year = 365ul * 24 * 3600 * 1000;  // the clock's nanoseconds hold some hundreds of them
    std::unique_lock<std::mutex> lock(run->mutex);
    return run->changed.wait_for(lock, std::chrono::milliseconds(std::min(milliseconds, year)),
                                 [&] { return !run->running; });
}

bool BaseAction::isRunning() const
{
    const std::shared_ptr<RunState> run = getRunState();
    if (!run)
        return false;
    const std::lock_guard<std::mutex> lock(run->mutex);
    return run->running;
}

bool BaseAction::hasFailed() const
{
    return getFailure() != nullptr;
}

std::exception_ptr BaseAction::getFailure() const
{
    const std::shared_ptr<RunState> run = getRunState();
    if (!run)
        return m_hasNoMemory ? std::make_exception_ptr(std::bad_alloc()) : nullptr;
    const std::lock_guard<std::mutex> lock(run->mutex);
    return run->failure;
}

std::string BaseAction::getErrorMessage() const
{
    const std::exception_ptr failure = getFailure();
    return failure ? textOf(failure) : std::string();
}

void BaseAction::rethrowFailure() const
{
    if (const std::exception_ptr failure = getFailure())
        std::rethrow_exception(failure);
}

void BaseAction::requestCancellation()
{
    const std::shared_ptr<RunState> run = getRunState();
    if (!run)
        return;
    const std::lock_guard<std::mutex> lock(run->mutex);
    if (!run->running)
        return;
    run->cancelled = true;
    requestCancellationdDerived();
}

void BaseAction::setProgressCallback(const std::function<void(double)>& callback)
{
    RunState& run = accessRunState();
    run.setProgress(callback ? std::make_shared<const RunState::Callback>(callback) : nullptr);
}

BaseComplexAction::BaseComplexAction() = default;
BaseComplexAction::~BaseComplexAction() = default;

bool BaseComplexAction::isComplexAction() const
{
    return true;
}

}}  // namespace orvik::core
