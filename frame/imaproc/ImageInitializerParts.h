#pragma once

#include "frame/imaproc/ImageAttributes.h"
#include "frame/util/FrameMessages.h"

namespace orvik { namespace imaproc {

// What initialisers ask of the input image, and how they say it.

template<class... Arguments>
std::string textOf(eImageInitializerMessage::domain message, const Arguments&... arguments)
{
    return messageText(getORVIKImageProcessingLogMessageManager(), message, arguments...);
}

inline boost::shared_ptr<const BaseImageAttribute> lockInput(const WeakImage& input)
{
    const boost::shared_ptr<const BaseImageAttribute> locked = input.lock();
    if (!locked)
        ORVIK_THROW(processor::ORVIKBaseProcessingException, processor::g_baseProcessingLogSource,
                    processor::eOutputInitializerMessage::eAttributeExpired);
    return locked;
}

inline void checkInput(const WeakImage& input)
{
    if (!input.lock())
        ORVIK_THROW(processor::ORVIKBaseProcessingException, processor::g_baseProcessingLogSource,
                    processor::eOutputInitializerMessage::eNullAttribute);
}

/// The image of an attribute; false with its name when there is none.
inline BoolResult imageOf(const WeakImage& input, boost::shared_ptr<const image::BaseImage>& image)
{
    const boost::shared_ptr<const BaseImageAttribute> attribute = lockInput(input);
    image = attribute->getImage();
    return image ? success() : failure(textOf(eImageInitializerMessage::eInputUnset, attribute->getObjectName()));
}

}}  // namespace orvik::imaproc
