#pragma once

#include "frame/processor/AlgorithmFunctionSelector.h"
#include "frame/processor/AsyncProcessors.h"
#include "frame/processor/BaseDataParser.h"

namespace orvik { namespace processor {

typedef std::vector<boost::shared_ptr<BaseDataParser>> DataParserColl;

/// Level 3: a kernel, chosen by sample type and instruction set, on the runs of one strip.
class ORVIK_API BaseProcessingAlgorithm : public BaseSyncProcessor
{
public:
    BaseProcessingAlgorithm();
    ~BaseProcessingAlgorithm() override;

    /// Makes the parsers, finds the kernel, lets the class set the parsers' borders, calls the kernel on each run.
    virtual BoolResult mainProcess();
    virtual const AlgorithmFunctionSelector& getFunctionSelector() const = 0;
    virtual const core::InstructionSetsIdentifier& getForcedInstructionSets() const = 0;
    virtual void getDataTypeIdColl(DataTypeIdentifierColl& coll) const = 0;
    virtual void initDataParserColl(DataParserColl& coll) = 0;
    virtual void clearDataParserColl() = 0;
    /// What takes the place of the parsers' counts for an algorithm without any.
    virtual void getNoParseInfo(unsigned long& nbElements, unsigned long& first, unsigned long& second) const;
    /// Power of two of samples, at most 256, to which the class's kernels may read and write past the end of a run.
    virtual unsigned long getRunGranularity() const { return 64; }

protected:
    BoolResult runDerived() override;
    virtual AlgorithmEntry& getEntry() const = 0;

private:
    BoolResult selectKernel(AlgorithmFunction& function);
    BoolResult runKernel(AlgorithmFunction function, const DataParserColl& parsers);
};

}}  // namespace orvik::processor
