#pragma once

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ImageInitializers.h"

namespace orvik { namespace imaproc { namespace fd {

typedef boost::weak_ptr<const attr::InOptHoughLinesImgParams> WeakHoughLinesImgParams;

/// The accumulator of the lines of an image. With halves of the image's sizes rounded up, hx and hy, it has
/// 2 * trunc(1 + sqrt(hx^2 + hy^2) / RhoStep) columns and NbThetaBins rows for each of its planes. Votes of signed
/// integers are counted in signed 32 bits, those of unsigned, binary and label images in unsigned 32 bits, all others in
/// floats; 8-bit labels are among the others, deliberately.
/// @throws ORVIKIPLFeatureDetectionException  when the parameters are gone; processor::ORVIKBaseProcessingException when the
/// image is, or has no value.
class ORVIK_API CustomHoughLines2dImgOutputInitializer : public BaseFromImageCustomImageInfo
{
public:
    ~CustomHoughLines2dImgOutputInitializer() override;
    /// @throws ORVIKIPLFeatureDetectionException for an attribute that is null.
    void init(const WeakImage& input, const WeakHoughLinesImgParams& params);
    unsigned long getSizeX() const override;
    unsigned long getSizeY() const override;
    image::eImageBufferType getImageBufferType() const override;

protected:
    boost::shared_ptr<const attr::InOptHoughLinesImgParams> getParams() const;

private:
    WeakHoughLinesImgParams m_params;
};

/// For customOutput. @throws ORVIKIPLFeatureDetectionException for an attribute that is null.
ORVIK_API boost::shared_ptr<CustomHoughLines2dImgOutputInitializer> outputHoughLines2dImg(
    const WeakImage& input, const WeakHoughLinesImgParams& params);

}}}  // namespace orvik::imaproc::fd
