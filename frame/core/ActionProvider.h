#pragma once

#include "frame/serialization/BaseSerializationObject.h"
#include "frame/util/ProcessingResult.h"

#include <boost/shared_ptr.hpp>

namespace orvik { namespace core {

class BaseAction;
struct RunState;

/// Passed on unchanged from a stage to its children; the scheduler treats all alike.
class BasePriority
{
public:
    explicit BasePriority(int level = 0) : m_level(level) {}
    int getLevel() const { return m_level; }

private:
    int m_level;
};

/// The run that a request belongs to: its cancellation flag, its progress.
class ORVIK_API BaseRequestOrigin
{
public:
    explicit BaseRequestOrigin(RunState* run = nullptr, bool reportsProgress = false)
        : m_run(run), m_reportsProgress(reportsProgress)
    {
    }

    bool isCancellationRequested() const;
    /// Whether elements done under this origin count for the caller's progress callback: those of the outermost
    /// dispatcher that has more than one.
    bool reportsProgress() const { return m_reportsProgress; }
    /// Calls the caller's progress callback, never two calls at once.
    void reportProgress(unsigned long nbDone, unsigned long nbElements) const;
    BaseRequestOrigin withProgress(bool reports) const { return BaseRequestOrigin(m_run, reports); }

private:
    RunState* m_run;
    bool m_reportsProgress;
};

/// One piece of work handed out by a provider.
class ORVIK_API BaseActionRequest
{
public:
    explicit BaseActionRequest(const boost::shared_ptr<BaseAction>& action) : m_action(action) {}
    virtual ~BaseActionRequest();
    const boost::shared_ptr<BaseAction>& getAction() const { return m_action; }

private:
    boost::shared_ptr<BaseAction> m_action;
};

/// Hands out the actions of one stage. The scheduler never makes two calls at once on one provider.
class ORVIK_API BaseActionProvider
{
public:
    BaseActionProvider();
    virtual ~BaseActionProvider();

    /// The next action, or an empty request when there is none left. `hasMore` tells whether others follow.
    virtual BoolResult queryNextAction(const BaseRequestOrigin& origin, boost::shared_ptr<BaseActionRequest>& request,
                                       bool& hasMore, boost::shared_ptr<BaseSerializationObject>& data) = 0;
    virtual bool hasPendingAction() const = 0;
    /// An action that was handed out has ended; `ended` becomes true with the last one.
    virtual void notifyDerived(const boost::shared_ptr<BaseActionRequest>& request,
                               const boost::shared_ptr<const BaseSerializationObject>& data, bool& ended) = 0;
    virtual void clearDerived() = 0;
    virtual void requestCancellationDerived() = 0;

    /// How many actions this provider will hand out, given the threads there are; called once, before the first query.
    virtual unsigned long start(unsigned int nbThreads) = 0;
};

/// Delivers exactly one action.
class ORVIK_API SingleActionProvider : public BaseActionProvider
{
public:
    SingleActionProvider();
    ~SingleActionProvider() override;

    /// False for a null action.
    BoolResult init(const boost::shared_ptr<BaseAction>& action);

    BoolResult queryNextAction(const BaseRequestOrigin& origin, boost::shared_ptr<BaseActionRequest>& request, bool& hasMore,
                               boost::shared_ptr<BaseSerializationObject>& data) override;
    bool hasPendingAction() const override;
    void notifyDerived(const boost::shared_ptr<BaseActionRequest>& request,
                       const boost::shared_ptr<const BaseSerializationObject>& data, bool& ended) override;
    void clearDerived() override;
    void requestCancellationDerived() override;
    unsigned long start(unsigned int nbThreads) override;

private:
    boost::shared_ptr<BaseAction> m_action;
};

}}  // namespace orvik::core
