#pragma once

#include "frame/imaproc/ImageInitializers.h"

namespace orvik { namespace imaproc {

namespace attr {
struct InOptHoughLinesImgParams;
struct InOptHoughLinesExtractionParams;
}  // namespace attr

namespace fd {

typedef boost::weak_ptr<const attr::InOptHoughLinesImgParams> WeakHoughLinesImgParams;
typedef boost::weak_ptr<const attr::InOptHoughLinesExtractionParams> WeakHoughLinesExtractionParams;

/// The accumulator of the lines of an image. With halves of the image's sizes rounded up, hx and hy, it has
/// 2 * trunc(1 + sqrt(hx^2 + hy^2) / RhoStep) columns and NbThetaBins rows for each of its planes. Votes of signed
/// integers are counted in signed 32 bits, those of unsigned, binary and label images in unsigned 32 bits, all others in
/// floats; 8-bit labels are among the others, deliberately.
/// @throws processor::ORVIKBaseProcessingException  when an attribute is gone, or the image has no value.
class ORVIK_API CustomHoughLines2dImgOutputInitializer : public BaseFromImageCustomImageInfo
{
public:
    ~CustomHoughLines2dImgOutputInitializer() override;
    /// @throws processor::ORVIKBaseProcessingException for an attribute that is null.
    void init(const WeakImage& input, const WeakHoughLinesImgParams& params);
    unsigned long getSizeX() const override;
    unsigned long getSizeY() const override;
    image::eImageBufferType getImageBufferType() const override;

protected:
    boost::shared_ptr<const attr::InOptHoughLinesImgParams> getParams() const;

private:
    WeakHoughLinesImgParams m_params;
};

/// The accumulator of a search for lines: where the angles cover all directions it has 2 * PeakDist more rows, which repeat
/// the first ones. Votes are counted in floats for float images, in unsigned 32 bits otherwise.
class ORVIK_API CustomHoughLines2dOutputInitializer : public CustomHoughLines2dImgOutputInitializer
{
public:
    ~CustomHoughLines2dOutputInitializer() override;
    void init(const WeakImage& input, const WeakHoughLinesImgParams& params,
              const WeakHoughLinesExtractionParams& extractionParams);
    unsigned long getSizeY() const override;
    image::eImageBufferType getImageBufferType() const override;

private:
    WeakHoughLinesExtractionParams m_extractionParams;
};

/// For customOutput. @throws processor::ORVIKBaseProcessingException for an attribute that is null.
ORVIK_API boost::shared_ptr<CustomHoughLines2dImgOutputInitializer> outputHoughLines2dImg(
    const WeakImage& input, const WeakHoughLinesImgParams& params);
ORVIK_API boost::shared_ptr<CustomHoughLines2dOutputInitializer> outputHoughLines2d(
    const WeakImage& input, const WeakHoughLinesImgParams& params,
    const WeakHoughLinesExtractionParams& extractionParams);

}  // namespace fd
}}  // namespace orvik::imaproc
