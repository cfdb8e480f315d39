#pragma once

#include "ORVIKIPLFeatureDetectionLogMessages.h"

#include "frame/util/Arena.h"

#include <boost/weak_ptr.hpp>

namespace orvik { namespace imaproc { namespace fd {

/// Refuses an attribute that was given as null.
template<class Messages, class Attribute>
void checkNotNull(const boost::weak_ptr<Attribute>& attribute)
{
    if (!attribute.lock())
        ORVIK_THROW(ORVIKIPLFeatureDetectionException, g_featureDetectionLogSource, Messages::eNullAttribute);
}

/// The attribute, which the processor owns.
/// @throws ORVIKIPLFeatureDetectionException when it is gone.
template<class Attribute>
boost::shared_ptr<Attribute> lockAttribute(const boost::weak_ptr<Attribute>& attribute)
{
    const boost::shared_ptr<Attribute> locked = attribute.lock();
    if (!locked)
        ORVIK_THROW(ORVIKIPLFeatureDetectionException, g_featureDetectionLogSource, eRuleMessage::eAttributeExpired);
    return locked;
}

/// What is given its attributes by `init`.
template<class Made, class... Attributes>
boost::shared_ptr<Made> makeInitialised(const Attributes&... attributes)
{
    const boost::shared_ptr<Made> made = makeTogether<Made>();
    made->init(attributes...);
    return made;
}

}}}  // namespace orvik::imaproc::fd
