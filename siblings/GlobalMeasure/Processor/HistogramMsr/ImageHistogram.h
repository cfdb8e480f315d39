#pragma once

#include "frame/attr/Declarations.h"

namespace orvik { namespace imaproc { namespace glbmsr {

/// Counts of all samples of an image of any sizes but those that are NaN. Cost: two reads per sample, one thread.
void measureHistogram(const image::BaseImage& image, attr::HistogramResult& histogram);

}}}  // namespace orvik::imaproc::glbmsr
