#pragma once

// Names without their contents, for headers that only mention them: images, strips, records, attributes, and how pointers to
// them are spelled.

#include <boost/shared_ptr.hpp>

namespace orvik {

template<class T>
using Ptr = boost::shared_ptr<T>;
template<class T>
using ConstPtr = boost::shared_ptr<const T>;

namespace image {
class BaseImage;
class OutputImageYStrip2d;
class OutputImageZStrip3d;
}  // namespace image

namespace imaproc {

typedef Ptr<image::BaseImage> ImagePtr;
typedef ConstPtr<image::BaseImage> ConstImagePtr;

namespace attr {

#define ORVIK_RECORD_NAME(Kind, Name) class Name;
#include "frame/attr/Records.inc"
#undef ORVIK_RECORD_NAME

#define ORVIK_ROLE(Role, Name, ...) struct Name
#include "frame/attr/ImageAttributes.inc"
#include "frame/attr/StripAttributes.inc"
#include "frame/attr/ValueAttributes.inc"
#undef ORVIK_ROLE

}  // namespace attr
}  // namespace imaproc

}  // namespace orvik
