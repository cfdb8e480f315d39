#include "frame/processor/Dispatcher.h"

#include "frame/core/Scheduler.h"

#include <algorithm>

namespace orvik { namespace processor {

namespace {

/// A strip of fewer samples takes less time than the handing out.
const unsigned long g_minStripSamples = 32768;
/// Lines of margins that a strip whose thickness is asked for reads for each of its own, at most.
const unsigned long g_maxMarginLines = 16;
/// Strips per thread, so that a thread that is held up does not hold up the others.
const unsigned long g_stripsPerThread = 4;

unsigned long divideUp(unsigned long a, unsigned long b)
{
    return (a + b - 1) / b;
}

/// Gives a child what each split has for it.
template<class Split, class Process>
BoolResult giveAll(const std::vector<boost::shared_ptr<Split>>& splits, const BaseProcessor& child, const Process& process)
{
    for (const boost::shared_ptr<Split>& split : splits) {
        const BoolResult result = split->checkProcessorType(child)
                                      ? process(*split)
                                      : failure("the split of " + split->getAttributeName()
                                                + " is made for another class than " + child.getClassName());
        if (!result)
            return result;
    }
    return success();
}

}  // namespace

BaseProcessorDispatcher::BaseProcessorDispatcher() : m_nbElements(0), m_grain(1), m_next(0), m_nbRunning(0) {}
BaseProcessorDispatcher::~BaseProcessorDispatcher() = default;

template<class SplitAt>
BoolResult BaseProcessorDispatcher::initElements(const core::BasePriority& priority, unsigned long nbSplits,
                                                 const SplitAt& splitAt)
{
    m_priority = priority;
    m_next = m_nbRunning = 0;
    m_nbElements = 0;
    const BaseDataSplit* decider = nullptr;
    for (unsigned long i = 0; i < nbSplits; ++i) {
        const BaseDataSplit* const split = splitAt(i);
        if (!split)
            return failure(getProcessorName() + ": a split is null");
        const unsigned long nbElements = split->getNbElements();
        if (nbElements == 0)
            continue;
        if (decider && nbElements != m_nbElements)
            return failure(getProcessorName() + ": attribute " + split->getAttributeName() + " has "
                           + std::to_string(nbElements) + " elements, attribute " + decider->getAttributeName() + " has "
                           + std::to_string(m_nbElements));
        decider = split;
        m_nbElements = nbElements;
    }
    return decider ? success() : failure(getProcessorName() + ": no attribute tells the number of elements");
}

BoolResult BaseProcessorDispatcher::queryNextAction(const core::BaseRequestOrigin& origin,
                                                    boost::shared_ptr<core::BaseActionRequest>& request, bool& hasMore,
                                                    boost::shared_ptr<BaseSerializationObject>&)
{
    request.reset();
    hasMore = false;
    if (!hasPendingAction())
        return success();
    const ArenaScope together;  // the child with all that it is given
    const ElementsRange range(m_next, std::min(m_grain, m_nbElements - m_next));
    const boost::shared_ptr<BaseProcessor> child = createProcessor();
    BoolResult result = child->init(ePRP_WithRules);
    if (result)
        result = initAttributes(range, origin, child);
    if (!result)
        return result;
    child->setActionPriority(m_priority);
    request = makeTogether<core::BaseActionRequest>(child);
    m_next += range.getCount();
    ++m_nbRunning;
    hasMore = hasPendingAction();
    return success();
}

void BaseProcessorDispatcher::notifyDerived(const boost::shared_ptr<core::BaseActionRequest>&,
                                            const boost::shared_ptr<const BaseSerializationObject>&, bool& ended)
{
    ended = --m_nbRunning == 0 && !hasPendingAction();
}

void BaseProcessorDispatcher::clearDerived()
{
    m_next = m_nbElements = 0;
}

void BaseProcessorDispatcher::requestCancellationDerived()
{
    m_next = m_nbElements;
}

BaseStaticProcessorDispatcher::BaseStaticProcessorDispatcher() = default;
BaseStaticProcessorDispatcher::~BaseStaticProcessorDispatcher() = default;

BoolResult BaseStaticProcessorDispatcher::initBase(const core::BasePriority& priority,
                                                   std::vector<boost::shared_ptr<BaseStaticSplit>> splits)
{
    m_splits = std::move(splits);
    return initElements(priority, m_splits.size(), [this](unsigned long i) { return m_splits[i].get(); });
}

BoolResult BaseStaticProcessorDispatcher::initAttributes(const ElementsRange& range, const core::BaseRequestOrigin& origin,
                                                         const boost::shared_ptr<BaseProcessor>& child)
{
    return giveAll(m_splits, *child, [&](BaseStaticSplit& split) {
        return split.processAttribute(*child, static_cast<unsigned int>(range.getStart()), origin);
    });
}

void BaseStaticProcessorDispatcher::clearDerived()
{
    BaseProcessorDispatcher::clearDerived();
    m_splits.clear();
}

unsigned long BaseStaticProcessorDispatcher::start(unsigned int)
{
    m_grain = 1;
    return m_nbElements;
}

BaseDynamicProcessorDispatcher::BaseDynamicProcessorDispatcher() = default;
BaseDynamicProcessorDispatcher::~BaseDynamicProcessorDispatcher() = default;

BoolResult BaseDynamicProcessorDispatcher::initBase(const core::BasePriority& priority,
                                                    std::vector<boost::shared_ptr<BaseDynamicSplit>> splits)
{
    m_splits = std::move(splits);
    return initElements(priority, m_splits.size(), [this](unsigned long i) { return m_splits[i].get(); });
}

BoolResult BaseDynamicProcessorDispatcher::initAttributes(const ElementsRange& range, const core::BaseRequestOrigin& origin,
                                                          const boost::shared_ptr<BaseProcessor>& child)
{
    return giveAll(m_splits, *child, [&](BaseDynamicSplit& split) {
        return split.processAttribute(*child, range.getStart(), range.getCount(), origin);
    });
}

void BaseDynamicProcessorDispatcher::clearDerived()
{
    BaseProcessorDispatcher::clearDerived();
    m_splits.clear();
}

unsigned long BaseDynamicProcessorDispatcher::start(unsigned int nbThreads)
{
    if (m_nbElements == 0)
        return 0;
    unsigned long margin = 0, samples = 1;
    for (const boost::shared_ptr<BaseDynamicSplit>& split : m_splits) {
        margin = std::max(margin, split->getMargin());
        samples = std::max(samples, split->getElementSamples());
    }
    unsigned long grain = core::getStripGrain();
    const unsigned long ofThread = divideUp(m_nbElements, nbThreads), thick = 2 * margin + 1;
    if (grain == 0)
        grain = std::max({divideUp(m_nbElements, g_stripsPerThread * nbThreads),
                          areMarginsCheap() ? std::min(thick, ofThread) : thick, getMinElements(),
                          divideUp(g_minStripSamples, samples), std::min(getMinMargins() * margin, ofThread)});
    else  // else the time would grow with the square of the image where margins are as large
        grain = std::max(grain, divideUp(2 * margin, g_maxMarginLines));
    m_grain = std::min(grain, m_nbElements);
    return divideUp(m_nbElements, m_grain);
}

RetrievalResult provideProcessor(const boost::shared_ptr<core::BaseAction>& action, const core::BasePriority& priority,
                                 ProviderPtr& provider)
{
    if (action)
        action->setActionPriority(priority);
    const boost::shared_ptr<core::SingleActionProvider> single = makeTogether<core::SingleActionProvider>();
    return provided(single->init(action), single, provider);
}

}}  // namespace orvik::processor
