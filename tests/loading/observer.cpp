// Links the frame alone: sees what is registered, and keeps results beyond the library that made them.

#include "Observer.h"

#include "frame/processor/AlgorithmFunctionSelector.h"
#include "frame/processor/ProcessorFactory.h"

using namespace orvik;

namespace {

template<class Names>
unsigned int nbOfLibrary(const Names& names)
{
    unsigned int nb = 0;
    for (const std::string& name : names)
        nb += name.compare(0, 20, "orvik::imaproc::fd::") == 0;
    return nb;
}

}  // namespace

Leftovers& accessLeftovers()
{
    static Leftovers leftovers;
    return leftovers;
}

extern "C" ORVIK_API unsigned int nbFeatureDetectionClasses()
{
    return nbOfLibrary(processor::ProcessorFactory::getInstance().getTypeNames());
}

extern "C" ORVIK_API unsigned int nbFeatureDetectionKernels()
{
    return nbOfLibrary(processor::getAlgorithmNames());
}

extern "C" ORVIK_API int checkResultsThatOutliveTheLibrary()
{
    Leftovers& leftovers = accessLeftovers();
    const bool good = leftovers.image && static_cast<const unsigned char*>(leftovers.image->getLine(20))[100] == 1
                      && leftovers.record && leftovers.record->get<imaproc::attr::CannyThresholds::HighThreshold>() == 20;
    leftovers = Leftovers();
    return good;
}
