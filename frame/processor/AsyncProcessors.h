#pragma once

#include "frame/processor/BaseProcessor.h"

namespace orvik { namespace processor {

class ORVIK_API BaseSyncProcessor : public BaseProcessor
{
public:
    BaseSyncProcessor();
    ~BaseSyncProcessor() override;
    eProcessorType getProcessorType() const override { return ePT_Sync; }
};

/// A sequence of stages, each with a provider of work; a stage begins when the work of the one before has ended.
/// A stage that leaves the provider empty has no work.
class ORVIK_API BaseAsyncProcessor : public BaseProcessor
{
public:
    /// How many stages there are; 0 for as many as the algorithm asks for.
    struct SequenceInfo
    {
        unsigned int nbStages;
    };

    BaseAsyncProcessor();
    ~BaseAsyncProcessor() override;

    virtual SequenceInfo retrieveSequenceInfo() const = 0;
    /// The frame's own form: maps a stage or an iteration to the algorithm's operation.
    virtual RetrievalResult retrieveProvider(const core::BasePriority& priority, unsigned int stage,
                                             unsigned int iterationNumber, ProviderPtr& provider) = 0;

    void requestCancellationdDerived() override;

protected:
    BoolResult runDerived() override;
};

class ORVIK_API BaseAsync1Processor : public BaseAsyncProcessor
{
public:
    BaseAsync1Processor();
    ~BaseAsync1Processor() override;
    eProcessorType getProcessorType() const override { return ePT_Async1; }
    SequenceInfo retrieveSequenceInfo() const override { return {1}; }
    RetrievalResult retrieveProvider(const core::BasePriority& priority, unsigned int stage, unsigned int iterationNumber,
                                     ProviderPtr& provider) override;
    virtual RetrievalResult retrieveProvider(const core::BasePriority& priority, ProviderPtr& provider) = 0;
};

class ORVIK_API BaseAsync2Processor : public BaseAsyncProcessor
{
public:
    BaseAsync2Processor();
    ~BaseAsync2Processor() override;
    eProcessorType getProcessorType() const override { return ePT_Async2; }
    SequenceInfo retrieveSequenceInfo() const override { return {2}; }
    RetrievalResult retrieveProvider(const core::BasePriority& priority, unsigned int stage, unsigned int iterationNumber,
                                     ProviderPtr& provider) override;
    virtual RetrievalResult retrieveFirstProvider(const core::BasePriority& priority, ProviderPtr& provider) = 0;
    virtual RetrievalResult retrieveSecondProvider(const core::BasePriority& priority, ProviderPtr& provider) = 0;
};

class ORVIK_API BaseAsync3Processor : public BaseAsyncProcessor
{
public:
    BaseAsync3Processor();
    ~BaseAsync3Processor() override;
    eProcessorType getProcessorType() const override { return ePT_Async3; }
    SequenceInfo retrieveSequenceInfo() const override { return {3}; }
    RetrievalResult retrieveProvider(const core::BasePriority& priority, unsigned int stage, unsigned int iterationNumber,
                                     ProviderPtr& provider) override;
    virtual RetrievalResult retrieveFirstProvider(const core::BasePriority& priority, ProviderPtr& provider) = 0;
    virtual RetrievalResult retrieveSecondProvider(const core::BasePriority& priority, ProviderPtr& provider) = 0;
    virtual RetrievalResult retrieveThirdProvider(const core::BasePriority& priority, ProviderPtr& provider) = 0;
};

/// Asked with 0, 1, 2 and so on until it answers that there is no more.
class ORVIK_API BaseRepeatedAsync1Processor : public BaseAsyncProcessor
{
public:
    BaseRepeatedAsync1Processor();
    ~BaseRepeatedAsync1Processor() override;
    eProcessorType getProcessorType() const override { return ePT_RepeatedAsync1; }
    SequenceInfo retrieveSequenceInfo() const override { return {0}; }
    RetrievalResult retrieveProvider(const core::BasePriority& priority, unsigned int stage, unsigned int iterationNumber,
                                     ProviderPtr& provider) override;
    virtual RetrievalResult retrieveProvider(const core::BasePriority& priority, unsigned int iterationNumber,
                                             ProviderPtr& provider) = 0;

protected:
    /// The answer to a number beyond the last valid one.
    static RetrievalResult invalidIteration(unsigned int lastValid);
};

}}  // namespace orvik::processor
