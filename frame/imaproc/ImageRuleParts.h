#pragma once

#include "frame/imaproc/ImageAttributes.h"
#include "frame/util/FrameMessages.h"

namespace orvik { namespace imaproc {

// What rules read of attributes that are images and have a value, and how they say it.

inline const image::BaseImage& imageOf(const processor::BaseAttribute& attribute)
{
    return *static_cast<const BaseImageAttribute&>(attribute).peekImage();
}

inline const image::ImageSizes& sizesOf(const processor::BaseAttribute& attribute)
{
    return imageOf(attribute).getGeometry().getSizes();
}

inline std::string readSizes(const processor::BaseAttribute& attribute)
{
    return toString(sizesOf(attribute));
}

template<class... Arguments>
std::string textOf(eImageRuleMessage::domain message, const Arguments&... arguments)
{
    return messageText(getORVIKImageProcessingLogMessageManager(), message, arguments...);
}

}}  // namespace orvik::imaproc
