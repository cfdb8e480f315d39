#pragma once

#include "frame/imaproc/CustomImageProperty.h"
#include "frame/imaproc/ImagesApartRule.h"
#include "frame/imaproc/ScalarToImageSizeRule.h"

namespace orvik { namespace imaproc {

enum eImagePlansMatchPolicy : unsigned int
{
    eIPMP_Volumes = 5,  ///< exactly the keys (0, c, t)
    eIPMP_Planes = 6    ///< exactly the keys (z, c, t)
};

typedef boost::weak_ptr<const BaseStripAttribute> WeakStrip;

// Conditions on images and strips. An attribute that has no value yet is not held against the others.

ORVIK_API processor::RulePtr matchSize(const WeakImage& a, const WeakImage& b);
ORVIK_API processor::RulePtr matchSize(const WeakImage& a, const WeakImage& b, const WeakImage& c);
ORVIK_API processor::RulePtr matchSize(const WeakStrip& a, const WeakStrip& b);
ORVIK_API processor::RulePtr matchSize(const eMatchImageSizeType& type, const WeakImage& a, const WeakImage& b);
ORVIK_API processor::RulePtr matchBufferType(const WeakImage& a, const WeakImage& b);
ORVIK_API processor::RulePtr matchBufferType(const WeakStrip& a, const WeakStrip& b);
ORVIK_API processor::RulePtr matchSizeAndType(const WeakImage& a, const WeakImage& b);
ORVIK_API processor::RulePtr matchSizeAndType(const WeakImage& a, const WeakImage& b, const WeakImage& c);
ORVIK_API processor::RulePtr matchSizeAndType(const WeakImage& a, const WeakImage& b, const WeakImage& c,
                                              const WeakImage& d);
/// All images match the first one.
template<class... Images>
processor::RulePtr matchSizeAndType(const WeakImage& a, const WeakImage& b, const WeakImage& c, const WeakImage& d,
                                    const WeakImage& e, const Images&... others)
{
    return matchSizeAndType(a, b, c, d) && matchSizeAndType(a, e, others...);
}
ORVIK_API processor::RulePtr matchSizeAndType(const WeakStrip& a, const WeakStrip& b);
/// All strips match the first one.
template<class... Strips>
processor::RulePtr matchSizeAndType(const WeakStrip& a, const WeakStrip& b, const WeakStrip& c, const Strips&... others)
{
    return matchSizeAndType(a, b) && matchSizeAndType(a, c, others...);
}
ORVIK_API processor::RulePtr matchColorGeometryType(const WeakImage& a, const WeakImage& b);
ORVIK_API processor::RulePtr matchVolumeGeometryType(const WeakImage& a, const WeakImage& b);
/// The collection has exactly the planes, or the volumes, of the image. An empty one fits: the split that uses it fills
/// it.
ORVIK_API processor::RulePtr matchImagePlans(const boost::weak_ptr<const BasePlanIndexedAttribute>& coll,
                                             const WeakImage& image, const eImagePlansMatchPolicy& policy);
}}  // namespace orvik::imaproc
