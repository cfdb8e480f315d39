#include "frame/processor/AsyncProcessors.h"

#include "frame/core/Scheduler.h"
#include "frame/core/StageRun.h"

namespace orvik { namespace processor {

namespace {

RetrievalResult noMoreProvider()
{
    return RetrievalResult(eRRT_NoMoreProvider);
}

}  // namespace

BaseSyncProcessor::BaseSyncProcessor() = default;
BaseSyncProcessor::~BaseSyncProcessor() = default;
BaseAsyncProcessor::BaseAsyncProcessor() = default;
BaseAsyncProcessor::~BaseAsyncProcessor() = default;
BaseAsync1Processor::BaseAsync1Processor() = default;
BaseAsync1Processor::~BaseAsync1Processor() = default;
BaseAsync2Processor::BaseAsync2Processor() = default;
BaseAsync2Processor::~BaseAsync2Processor() = default;
BaseAsync3Processor::BaseAsync3Processor() = default;
BaseAsync3Processor::~BaseAsync3Processor() = default;
BaseRepeatedAsync1Processor::BaseRepeatedAsync1Processor() = default;
BaseRepeatedAsync1Processor::~BaseRepeatedAsync1Processor() = default;

BoolResult BaseAsyncProcessor::runDerived()
{
    initProcess();
    const StageResult before = preProcess();
    if (before.getValue() != eSRT_Done)
        return failure(before.getMessage());
    const unsigned int nbStages = retrieveSequenceInfo().nbStages;
    for (unsigned int stage = 0; nbStages == 0 || stage < nbStages; ++stage) {
        if (getOrigin().isCancellationRequested())
            return failure(core::getCancelledText());
        ProviderPtr provider;
        const RetrievalResult retrieved = retrieveProvider(getActionPriority(), stage, stage, provider);
        if (retrieved.getValue() == eRRT_RetrievalFailed)
            return failure(retrieved.getMessage());
        if (retrieved.getValue() == eRRT_NoMoreProvider)
            break;
        if (!provider)
            continue;
        const BoolResult done = core::runProvider(*provider, getOrigin());
        provider->clearDerived();
        if (!done.getValue())
            return done;
    }
    const StageResult after = postProcess();
    if (after.getValue() != eSRT_Done)
        return failure(after.getMessage());
    clearIntermediateData();
    endProcess();
    return success();
}

void BaseAsyncProcessor::requestCancellationdDerived() {}

RetrievalResult BaseAsync1Processor::retrieveProvider(const core::BasePriority& priority, unsigned int stage, unsigned int,
                                                      ProviderPtr& provider)
{
    return stage == 0 ? retrieveProvider(priority, provider) : noMoreProvider();
}

RetrievalResult BaseAsync2Processor::retrieveProvider(const core::BasePriority& priority, unsigned int stage, unsigned int,
                                                      ProviderPtr& provider)
{
    switch (stage) {
    case 0: return retrieveFirstProvider(priority, provider);
    case 1: return retrieveSecondProvider(priority, provider);
    default: return noMoreProvider();
    }
}

RetrievalResult BaseAsync3Processor::retrieveProvider(const core::BasePriority& priority, unsigned int stage, unsigned int,
                                                      ProviderPtr& provider)
{
    switch (stage) {
    case 0: return retrieveFirstProvider(priority, provider);
    case 1: return retrieveSecondProvider(priority, provider);
    case 2: return retrieveThirdProvider(priority, provider);
    default: return noMoreProvider();
    }
}

RetrievalResult BaseRepeatedAsync1Processor::retrieveProvider(const core::BasePriority& priority, unsigned int,
                                                              unsigned int iterationNumber, ProviderPtr& provider)
{
    return retrieveProvider(priority, iterationNumber, provider);
}

RetrievalResult BaseRepeatedAsync1Processor::invalidIteration(unsigned int lastValid)
{
    return RetrievalResult(eRRT_RetrievalFailed,
                           "Invalid iteration number (cannot be greater than " + std::to_string(lastValid) + ")");
}

}}  // namespace orvik::processor
