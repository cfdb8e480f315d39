#include "frame/processor/BaseProcessingAlgorithm.h"

#include "frame/core/Scheduler.h"

#include <limits>

namespace orvik { namespace processor {

namespace {

/// Calls `end` when the scope is left, by an exception as well.
template<class F>
struct AtScopeEnd
{
    F end;
    ~AtScopeEnd() { end(); }
};
template<class F>
AtScopeEnd(F) -> AtScopeEnd<F>;

}  // namespace

BaseProcessingAlgorithm::BaseProcessingAlgorithm() = default;
BaseProcessingAlgorithm::~BaseProcessingAlgorithm() = default;

void BaseProcessingAlgorithm::getNoParseInfo(unsigned long& nbElements, unsigned long& first, unsigned long& second) const
{
    nbElements = std::numeric_limits<unsigned long>::max();
    first = second = 0;
}

BoolResult BaseProcessingAlgorithm::runDerived()
{
    return mainProcess();
}

BoolResult BaseProcessingAlgorithm::mainProcess()
{
    DataParserColl parsers;
    initDataParserColl(parsers);
    const AtScopeEnd clearParsers{[this] { clearDataParserColl(); }};  // also when something fails
    // Before preProcess, which expects a parser for every strip: there is none for a type that no kernel serves.
    AlgorithmFunction function = nullptr;
    const BoolResult selected = selectKernel(function);
    if (!selected)
        return selected;
    const StageResult before = preProcess();
    if (!before)
        return failure(before.getMessage());
    for (const boost::shared_ptr<BaseDataParser>& parser : parsers)
        parser->start(getRunGranularity());
    const BoolResult result = runKernel(function, parsers);
    if (!result)
        return result;
    clearDataParserColl();
    const StageResult after = postProcess();
    return after ? success() : failure(after.getMessage());
}

BoolResult BaseProcessingAlgorithm::selectKernel(AlgorithmFunction& function)
{
    DataTypeIdentifierColl dataTypes;
    getDataTypeIdColl(dataTypes);
    AlgorithmFunctionIdentifier selected;
    const BoolResult found = getFunctionSelector().select(dataTypes, getForcedInstructionSets(), selected);
    if (!found)
        return failure(getObjectName() + ": " + found.getMessage());
    getEntry().lastEfficiency.store(selected.getEfficiency(), std::memory_order_relaxed);
    function = selected.getFunction();
    return success();
}

BoolResult BaseProcessingAlgorithm::runKernel(AlgorithmFunction function, const DataParserColl& parsers)
{
    if (parsers.empty()) {
        ProcessingInfo info = {0, 0, 0, 0, 0};
        getNoParseInfo(info.nbAlignedData, info.nbData, info.firstColumn);
        return (this->*function)(info);
    }

    const BaseDataParser& first = *parsers.front();
    const unsigned long counts[] = {first.getNbInitData(), first.getNbMainData(), first.getNbFinalData()};
    const unsigned long nbLines = first.getNbLines(), length = counts[0] + counts[1] + counts[2];
    for (const boost::shared_ptr<BaseDataParser>& parser : parsers) {
        // Of lengths alone where they differ: the text is the same for any strips then.
        const unsigned long otherLength = parser->getNbInitData() + parser->getNbMainData() + parser->getNbFinalData();
        if (otherLength != length)
            return failure(getObjectName() + ": the lines of the strips differ in length: " + std::to_string(length)
                           + " and " + std::to_string(otherLength) + " samples");
        if (parser->getNbInitData() != counts[0] || parser->getNbMainData() != counts[1] || parser->getNbLines() != nbLines)
            return failure(getObjectName() + ": the strips differ in size: " + std::to_string(nbLines) + " and "
                           + std::to_string(parser->getNbLines()) + " lines");
    }

    for (unsigned long line = 0; line < nbLines; ++line) {
        if (getOrigin().isCancellationRequested())
            return failure(core::getCancelledText());
        for (const boost::shared_ptr<BaseDataParser>& parser : parsers)
            parser->beginLine(line);
        ProcessingInfo info = {0, 0, 0, line, 0};
        for (const unsigned long count : counts) {
            if (count == 0)
                continue;
            info.nbData = count;
            info.nbAlignedData = alignedCount(count, getRunGranularity());
            for (const boost::shared_ptr<BaseDataParser>& parser : parsers)
                parser->beginRun(info.firstColumn, count);
            const BoolResult result = (this->*function)(info);
            if (!result)
                return result;
            for (const boost::shared_ptr<BaseDataParser>& parser : parsers)
                parser->endRun(info.firstColumn, count);
            info.firstColumn += count;
            ++info.partIndex;
        }
    }
    return success();
}

}}  // namespace orvik::processor
