#pragma once

#include "OutputInitializer/HoughSpheres3dLabelImgInitializerUtils.h"

#include "frame/imaproc/CustomImageProperty.h"

#include <vector>

namespace orvik { namespace imaproc { namespace fd {

/// The types of labels that can name the spheres of the longest list, the narrowest one first.
std::vector<image::eImageBufferType> typesOfSphereLabels(const attr::InPIHoughSpheres3dPpties& spheres);

/// `out` can hold the number of each sphere.
processor::RulePtr canNameSpheres(const WeakImage& in, const WeakImage& out, const WeakPIHoughSpheres3dPpties& spheres);

}}}  // namespace orvik::imaproc::fd
