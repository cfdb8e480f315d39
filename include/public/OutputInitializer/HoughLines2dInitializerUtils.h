#pragma once

#include "OutputInitializer/HoughLines2dImgInitializerUtils.h"

namespace orvik { namespace imaproc { namespace fd {

typedef boost::weak_ptr<const attr::InOptHoughLinesExtractionParams> WeakHoughLinesExtractionParams;

/// The accumulator of a search for lines: where the angles cover all directions it has 2 * PeakDist more rows, which repeat
/// the first ones. Votes are counted in floats for float images, in unsigned 32 bits otherwise.
class ORVIK_API CustomHoughLines2dOutputInitializer : public CustomHoughLines2dImgOutputInitializer
{
public:
    ~CustomHoughLines2dOutputInitializer() override;
    /// @throws ORVIKIPLFeatureDetectionException for an attribute that is null.
    void init(const WeakImage& input, const WeakHoughLinesImgParams& params,
              const WeakHoughLinesExtractionParams& extractionParams);
    unsigned long getSizeY() const override;
    image::eImageBufferType getImageBufferType() const override;

private:
    WeakHoughLinesExtractionParams m_extractionParams;
};

/// For customOutput. @throws ORVIKIPLFeatureDetectionException for an attribute that is null.
ORVIK_API boost::shared_ptr<CustomHoughLines2dOutputInitializer> outputHoughLines2d(
    const WeakImage& input, const WeakHoughLinesImgParams& params, const WeakHoughLinesExtractionParams& extractionParams);

}}}  // namespace orvik::imaproc::fd
