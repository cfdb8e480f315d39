#include "frame/core/ActionProvider.h"

#include "frame/core/BaseAction.h"
#include "frame/core/RunState.h"

#include "frame/util/Arena.h"

namespace orvik { namespace core {

bool BaseRequestOrigin::isCancellationRequested() const
{
    return m_run && m_run->isCancelled();
}

void BaseRequestOrigin::reportProgress(unsigned long nbDone, unsigned long nbElements) const
{
    if (m_run && m_reportsProgress)
        m_run->report(static_cast<double>(nbDone) / static_cast<double>(nbElements));
}

BaseActionRequest::~BaseActionRequest() = default;
BaseActionProvider::BaseActionProvider() = default;
BaseActionProvider::~BaseActionProvider() = default;
SingleActionProvider::SingleActionProvider() = default;
SingleActionProvider::~SingleActionProvider() = default;

BoolResult SingleActionProvider::init(const boost::shared_ptr<BaseAction>& action)
{
    m_action = action;
    return action ? success() : failure("A single action provider was given a null action");
}

BoolResult SingleActionProvider::queryNextAction(const BaseRequestOrigin&, boost::shared_ptr<BaseActionRequest>& request,
                                                 bool& hasMore, boost::shared_ptr<BaseSerializationObject>&)
{
    request = m_action ? makeTogether<BaseActionRequest>(m_action) : boost::shared_ptr<BaseActionRequest>();
    m_action.reset();
    hasMore = false;
    return success();
}

bool SingleActionProvider::hasPendingAction() const
{
    return m_action != nullptr;
}

void SingleActionProvider::notifyDerived(const boost::shared_ptr<BaseActionRequest>&,
                                         const boost::shared_ptr<const BaseSerializationObject>&, bool& ended)
{
    ended = true;
}

void SingleActionProvider::clearDerived()
{
    m_action.reset();
}

void SingleActionProvider::requestCancellationDerived()
{
    m_action.reset();
}

unsigned long SingleActionProvider::start(unsigned int)
{
    return m_action ? 1 : 0;
}

}}  // namespace orvik::core
