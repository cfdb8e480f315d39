#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ImageInitializers.h"

namespace orvik { namespace imaproc { namespace fd {

typedef boost::weak_ptr<const attr::InOptHoughLinesImgParams> WeakHoughLinesImgParams;
typedef boost::weak_ptr<const attr::InOptHoughLinesGradientImgParams> WeakHoughLinesGradientImgParams;

/// The bins of an accumulator of lines, by the attribute of its parameters. With halves of the image's sizes rounded up, hx
/// and hy, it has 2 * trunc(1 + sqrt(hx^2 + hy^2) / RhoStep) columns and NbThetaBins rows for each plane of the image.
/// @throws ORVIKIPLFeatureDetectionException  when the parameters are gone; processor::ORVIKBaseProcessingException when the
/// image is, or has no value.
template<class Params>
class ORVIK_API BaseHoughLinesImgOutputInitializer : public BaseFromImageCustomImageInfo
{
public:
    ~BaseHoughLinesImgOutputInitializer() override;
    /// @throws ORVIKIPLFeatureDetectionException for an attribute that is null.
    void init(const WeakImage& input, const boost::weak_ptr<const Params>& params);
    unsigned long getSizeX() const override;
    unsigned long getSizeY() const override;

protected:
    boost::shared_ptr<const Params> getParams() const;

private:
    boost::weak_ptr<const Params> m_params;
};

extern template class ORVIK_API BaseHoughLinesImgOutputInitializer<attr::InOptHoughLinesImgParams>;
extern template class ORVIK_API BaseHoughLinesImgOutputInitializer<attr::InOptHoughLinesGradientImgParams>;

/// The accumulator of the lines of an image. Votes of signed integers are counted in signed 32 bits, those of unsigned,
/// binary and label images in unsigned 32 bits, all others in floats; 8-bit labels are among the others, deliberately.
class ORVIK_API CustomHoughLines2dImgOutputInitializer
    : public BaseHoughLinesImgOutputInitializer<attr::InOptHoughLinesImgParams>
{
public:
    ~CustomHoughLines2dImgOutputInitializer() override;
    image::eImageBufferType getImageBufferType() const override;
};

/// The accumulator of the lines of a gradient: votes are counted in floats.
class ORVIK_API CustomHoughLinesGradient2dImgOutputInitializer
    : public BaseHoughLinesImgOutputInitializer<attr::InOptHoughLinesGradientImgParams>
{
public:
    ~CustomHoughLinesGradient2dImgOutputInitializer() override;
    image::eImageBufferType getImageBufferType() const override;
};

/// For customOutput. @throws ORVIKIPLFeatureDetectionException for an attribute that is null.
ORVIK_API boost::shared_ptr<CustomHoughLines2dImgOutputInitializer> outputHoughLines2dImg(
    const WeakImage& input, const WeakHoughLinesImgParams& params);
ORVIK_API boost::shared_ptr<CustomHoughLinesGradient2dImgOutputInitializer> outputHoughLinesGradient2dImg(
    const WeakImage& input, const WeakHoughLinesGradientImgParams& params);

}}}  // namespace orvik::imaproc::fd
