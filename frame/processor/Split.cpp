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
    const std::string text = "A split was given a null image, list or map";
    logError(g_baseProcessingLogSource, text, __FILE__, __LINE__);
    throw ORVIKBaseProcessingException(text, __PRETTY_FUNCTION__, __FILE__, __LINE__);
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
