#pragma once

#include "OutputInitializer/HoughLines2dImgInitializerUtils.h"

namespace orvik { namespace imaproc { namespace fd {

typedef boost::weak_ptr<const attr::InOptHoughLinesExtractionParams> WeakHoughLinesExtractionParams;

/// The accumulator of a search for lines, from that of the votes alone: where the angles cover all directions it has
/// 2 * PeakDist more rows, which repeat the first ones.
template<class Votes, class Params>
class ORVIK_API BaseHoughLinesOutputInitializer : public Votes
{
public:
    ~BaseHoughLinesOutputInitializer() override;
    /// @throws ORVIKIPLFeatureDetectionException for an attribute that is null.
    void init(const WeakImage& input, const boost::weak_ptr<const Params>& params,
              const WeakHoughLinesExtractionParams& extractionParams);
    unsigned long getSizeY() const override;

private:
    WeakHoughLinesExtractionParams m_extractionParams;
};

extern template class ORVIK_API
    BaseHoughLinesOutputInitializer<CustomHoughLines2dImgOutputInitializer, attr::InOptHoughLinesImgParams>;
extern template class ORVIK_API
    BaseHoughLinesOutputInitializer<CustomHoughLinesGradient2dImgOutputInitializer, attr::InOptHoughLinesGradientImgParams>;

/// From an image. Votes are counted in floats for float images, in unsigned 32 bits otherwise.
class ORVIK_API CustomHoughLines2dOutputInitializer
    : public BaseHoughLinesOutputInitializer<CustomHoughLines2dImgOutputInitializer, attr::InOptHoughLinesImgParams>
{
public:
    ~CustomHoughLines2dOutputInitializer() override;
    image::eImageBufferType getImageBufferType() const override;
};

/// From a gradient. Votes are counted in floats.
class ORVIK_API CustomHoughLinesGradient2dOutputInitializer
    : public BaseHoughLinesOutputInitializer<CustomHoughLinesGradient2dImgOutputInitializer,
                                             attr::InOptHoughLinesGradientImgParams>
{
public:
    ~CustomHoughLinesGradient2dOutputInitializer() override;
};

/// For customOutput. @throws ORVIKIPLFeatureDetectionException for an attribute that is null.
ORVIK_API boost::shared_ptr<CustomHoughLines2dOutputInitializer> outputHoughLines2d(
    const WeakImage& input, const WeakHoughLinesImgParams& params, const WeakHoughLinesExtractionParams& extractionParams);
ORVIK_API boost::shared_ptr<CustomHoughLinesGradient2dOutputInitializer> outputHoughLinesGradient2d(
    const WeakImage& input, const WeakHoughLinesGradientImgParams& params,
    const WeakHoughLinesExtractionParams& extractionParams);

}}}  // namespace orvik::imaproc::fd
