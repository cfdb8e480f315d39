#pragma once

#include "frame/core/ActionProvider.h"
#include "frame/serialization/BaseDynamicObject.h"

#include <boost/smart_ptr/enable_shared_from_this.hpp>

#include <atomic>
#include <exception>
#include <functional>
#include <memory>

namespace orvik { namespace core {

enum eSynchroType : unsigned long
{
    eST_Synchronous = 0,
    eST_Asynchronous = 1
};

/// Something that can be run to its end, at once or in the background.
class ORVIK_API BaseAction : public BaseDynamicObject, public boost::enable_shared_from_this<BaseAction>
{
public:
    enum eCleanReason : unsigned long
    {
        eCR_Failure = 0,
        eCR_Cancellation = 1
    };

    BaseAction();
    ~BaseAction() override;

    /// Asynchronous: starts the work and returns at once; the action keeps itself alive until the end.
    /// Synchronous: returns when ended. The result is false with the reason when the action failed, was running already
    /// or is not held by a shared pointer. @throws std::bad_alloc when there is no memory to start it.
    BoolResult run(const eSynchroType& synchro);
    void setActionPriority(const BasePriority& priority) { m_priority = priority; }
    const BasePriority& getActionPriority() const { return m_priority; }

    /// Blocks until the run in progress, if any, has ended; raises instead in a progress callback, whose thread it may need.
    void waitForEnd() const;
    /// The same for at most that long. Whether the run has ended.
    bool waitForEnd(unsigned long milliseconds) const;
    bool isRunning() const;
    /// Whether the last run ended by a failure; its text is `getErrorMessage()`.
    bool hasFailed() const;
    std::string getErrorMessage() const;
    /// Raises again, unchanged, what ended the last run; returns when it did not fail.
    void rethrowFailure() const;
    /// Ends the run in progress as soon as the lines in hand are done: it fails and says that it was cancelled.
    /// Its outputs then hold unspecified values. Without effect on an action that is not running.
    void requestCancellation();
    /// Called with the fraction, from 0 to 1, of the elements of the current stage that are done: on a working thread, never
    /// twice at once; what it throws ends the run. Replaced, it is not running any more, unless a callback replaces it.
    void setProgressCallback(const std::function<void(double)>& callback);

    virtual bool isComplexAction() const;

    // --- the frame's own part

    /// Runs the action as part of the run that `origin` tells.
    BoolResult execute(const BaseRequestOrigin& origin);
    /// Runs a root on the calling thread; failures leave by exceptions.
    void executeAsRoot();
    virtual void requestCancellationdDerived();
    virtual void cleanOnErrorDerived(const eCleanReason& reason);
    /// Empties what a run keeps between its stages; also called after a failure, so it must not throw.
    virtual void clearIntermediateData() noexcept;

protected:
    /// Checks and fills attributes before anything is done.
    virtual BoolResult prepareRun();
    virtual BoolResult runDerived() = 0;
    const BaseRequestOrigin& getOrigin() const { return m_origin; }

private:
    /// Null until the action is run as a root, or is told what to call; children of others never have one.
    std::shared_ptr<RunState> getRunState() const;
    RunState& accessRunState();
    BoolResult enterRun();
    std::exception_ptr getFailure() const;
    /// Runs, and gives back what ended the run, null for success.
    std::exception_ptr executeCaught() noexcept;
    /// The same, and tells who waits; by the time the caller looks at the state, another run may have begun.
    std::exception_ptr runToEnd() noexcept;
    static void runInBackgroundToEnd(boost::shared_ptr<BaseAction> self) noexcept;

    std::shared_ptr<RunState> m_run;
    std::atomic<bool> m_hasNoMemory{false};  // a run failed since not even its state could be made
    BaseRequestOrigin m_origin;
    BasePriority m_priority;
};

/// An action that is made of others.
class ORVIK_API BaseComplexAction : public BaseAction
{
public:
    BaseComplexAction();
    ~BaseComplexAction() override;
    bool isComplexAction() const override;
};

}}  // namespace orvik::core
