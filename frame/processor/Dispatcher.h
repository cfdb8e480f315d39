#pragma once

#include "frame/processor/Split.h"

namespace orvik { namespace processor {

/// Hands out one child processor per element of its splits.
class ORVIK_API BaseProcessorDispatcher : public core::BaseActionProvider
{
public:
    BaseProcessorDispatcher();
    ~BaseProcessorDispatcher() override;

    virtual const std::string& getProcessorName() const = 0;
    virtual const std::string& getProcessorToolTip() const = 0;
    virtual boost::shared_ptr<BaseProcessor> createProcessor() const = 0;
    /// Gives a child its part of each attribute.
    virtual BoolResult initAttributes(const ElementsRange& range, const core::BaseRequestOrigin& origin,
                                      const boost::shared_ptr<BaseProcessor>& child) = 0;

    BoolResult queryNextAction(const core::BaseRequestOrigin& origin, boost::shared_ptr<core::BaseActionRequest>& request,
                               bool& hasMore, boost::shared_ptr<BaseSerializationObject>& data) override;
    bool hasPendingAction() const override { return m_next < m_nbElements; }
    void notifyDerived(const boost::shared_ptr<core::BaseActionRequest>& request,
                       const boost::shared_ptr<const BaseSerializationObject>& data, bool& ended) override;
    void clearDerived() override;
    void requestCancellationDerived() override;

protected:
    /// Finds the one number of elements that all splits agree on; `split(i)` is null for one that was given as null.
    template<class SplitAt>
    BoolResult initElements(const core::BasePriority& priority, unsigned long nbSplits, const SplitAt& split);

    unsigned long m_nbElements;
    unsigned long m_grain;  // elements per child

private:
    core::BasePriority m_priority;
    unsigned long m_next;
    unsigned long m_nbRunning;
};

class ORVIK_API BaseStaticProcessorDispatcher : public BaseProcessorDispatcher
{
public:
    BaseStaticProcessorDispatcher();
    ~BaseStaticProcessorDispatcher() override;
    BoolResult initBase(const core::BasePriority& priority, std::vector<boost::shared_ptr<BaseStaticSplit>> splits);
    BoolResult initAttributes(const ElementsRange& range, const core::BaseRequestOrigin& origin,
                              const boost::shared_ptr<BaseProcessor>& child) override;
    void clearDerived() override;
    unsigned long start(unsigned int nbThreads) override;

private:
    std::vector<boost::shared_ptr<BaseStaticSplit>> m_splits;
};

class ORVIK_API BaseDynamicProcessorDispatcher : public BaseProcessorDispatcher
{
public:
    BaseDynamicProcessorDispatcher();
    ~BaseDynamicProcessorDispatcher() override;
    BoolResult initBase(const core::BasePriority& priority, std::vector<boost::shared_ptr<BaseDynamicSplit>> splits);
    BoolResult initAttributes(const ElementsRange& range, const core::BaseRequestOrigin& origin,
                              const boost::shared_ptr<BaseProcessor>& child) override;
    void clearDerived() override;
    /// Chooses the lines per strip: enough strips for the threads, none so thin that its margins or its making cost
    /// more than it wins.
    unsigned long start(unsigned int nbThreads) override;

protected:
    virtual unsigned long getMinElements() const = 0;
    virtual unsigned long getMinMargins() const = 0;
    virtual bool areMarginsCheap() const = 0;

private:
    std::vector<boost::shared_ptr<BaseDynamicSplit>> m_splits;
};

template<class P>
class StaticProcessorDispatcher : public BaseStaticProcessorDispatcher
{
public:
    typedef BaseStaticSplit Split;
    const std::string& getProcessorName() const override { return P::getObjectNameStr(); }
    const std::string& getProcessorToolTip() const override { return P::getToolTipStr(); }
    boost::shared_ptr<BaseProcessor> createProcessor() const override { return makeTogether<P>(); }
};

template<class P>
class DynamicProcessorDispatcher : public BaseDynamicProcessorDispatcher
{
public:
    typedef BaseDynamicSplit Split;
    const std::string& getProcessorName() const override { return P::getObjectNameStr(); }
    const std::string& getProcessorToolTip() const override { return P::getToolTipStr(); }
    boost::shared_ptr<BaseProcessor> createProcessor() const override { return makeTogether<P>(); }

protected:
    unsigned long getMinElements() const override { return P::s_minStripLines; }
    unsigned long getMinMargins() const override { return P::s_minStripMargins; }
    bool areMarginsCheap() const override { return P::s_areMarginsCheap; }
};

/// The answer of a stage that has a provider, or failed to make one.
template<class Provider>
RetrievalResult provided(const BoolResult& initialised, const boost::shared_ptr<Provider>& made, ProviderPtr& provider)
{
    if (initialised)
        provider = made;
    return initialised;
}

/// A stage that runs one prepared sub-processor.
ORVIK_API RetrievalResult provideProcessor(const boost::shared_ptr<core::BaseAction>& action,
                                           const core::BasePriority& priority, ProviderPtr& provider);

}}  // namespace orvik::processor
