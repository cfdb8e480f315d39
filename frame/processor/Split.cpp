#include "frame/processor/Split.h"

#include "frame/util/FrameMessages.h"

namespace orvik { namespace processor {

BaseDataSplit::~BaseDataSplit() = default;
BaseStaticSplit::~BaseStaticSplit() = default;
BaseDynamicSplit::~BaseDynamicSplit() = default;

unsigned long BaseDataSplit::getNbElements() const
{
    return 0;
}

void BaseDataSplit::throwNullInputSharedPtr()
{
    ORVIK_THROW_PROCESSING("A split was given a null image, list or map");
}

unsigned long BaseDynamicSplit::getMargin() const
{
    return 0;
}

unsigned long BaseDynamicSplit::getElementSamples() const
{
    return 1;
}

}}  // namespace orvik::processor
