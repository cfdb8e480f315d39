#pragma once

namespace orvik {

namespace image {
class BaseImage;
}

namespace imaproc {

namespace attr {
class HistogramResult;
}

namespace glbmsr {

/// Counts of all samples of an image of any sizes but those that are NaN. Cost: two reads per sample, one thread.
void measureHistogram(const image::BaseImage& image, attr::HistogramResult& histogram);

}  // namespace glbmsr
}
}  // namespace orvik::imaproc
