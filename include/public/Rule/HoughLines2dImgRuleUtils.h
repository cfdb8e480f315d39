#pragma once

#include "OutputInitializer/HoughLines2dInitializerUtils.h"

#include "frame/imaproc/ImageRules.h"

namespace orvik { namespace imaproc { namespace fd {

// What a caller's accumulator must be like. The image attribute is always that of the image whose lines are looked for; an
// attribute that is null, and use before `init`, raise ORVIKIPLFeatureDetectionException.

/// Columns of an accumulator.
class ORVIK_API HoughLines2dImgImageSizeX : public BaseCustomCheckedImageProperty
{
public:
    ~HoughLines2dImgImageSizeX() override;
    void init(const WeakImage& input, const WeakHoughLinesImgParams& params);
    unsigned long getSizeX() const override;

private:
    boost::shared_ptr<CustomHoughLines2dImgOutputInitializer> m_made;
};

/// Rows of an accumulator.
class ORVIK_API HoughLines2dImgImageSizeY : public BaseCustomCheckedImageProperty
{
public:
    ~HoughLines2dImgImageSizeY() override;
    void init(const WeakImage& input, const WeakHoughLinesImgParams& params);
    unsigned long getSizeY() const override;

private:
    boost::shared_ptr<CustomHoughLines2dImgOutputInitializer> m_made;
};

/// Rows of the accumulator of a search for lines.
class ORVIK_API HoughLines2dImageSizeY : public BaseCustomCheckedImageProperty
{
public:
    ~HoughLines2dImageSizeY() override;
    void init(const WeakImage& input, const WeakHoughLinesImgParams& params,
              const WeakHoughLinesExtractionParams& extractionParams);
    unsigned long getSizeY() const override;

private:
    boost::shared_ptr<CustomHoughLines2dOutputInitializer> m_made;
};

/// Whole numbers of the accumulator hold the votes of whole numbers of the same sign, floats those of all types.
class ORVIK_API HoughLines2dImgOutputBufferType : public BaseCustomCheckedImageProperty
{
public:
    ~HoughLines2dImgOutputBufferType() override;
    /// `unsignedAsWell`: unsigned 32 bits for every type of whole numbers, as a search for lines makes them.
    void init(const WeakImage& input, bool unsignedAsWell = false);
    image::eImageBufferType getImageBufferType() const override;
    std::vector<image::eImageBufferType> getAllowedImageBufferTypes() const override;

private:
    bool m_unsignedAsWell = false;
};

/// The accumulator has a row for each angle, and may have more.
class ORVIK_API HoughLines2dImageSizeYGreaterOrEqual : public processor::BaseAttributeRule
{
public:
    ~HoughLines2dImageSizeYGreaterOrEqual() override;
    void init(const boost::weak_ptr<const attr::OutImg>& out, const WeakHoughLinesImgParams& params);
    processor::eAttributeRuleType getAttributeRuleType() const override { return processor::eART_ImageProcessing; }
    bool testRule() const override;
    std::string createRuleFormalString() const override;
    std::string createRuleEvaluatedString(unsigned int depth) const override;

private:
    unsigned long getSizeY() const;
    unsigned int getNbThetaBins() const;
};

ORVIK_API boost::shared_ptr<HoughLines2dImgImageSizeX> houghLines2dCheckOutImgSzXEquals(
    const WeakImage& input, const WeakHoughLinesImgParams& params);
ORVIK_API boost::shared_ptr<HoughLines2dImgImageSizeY> houghLines2dCheckOutImgSzYEquals(
    const WeakImage& input, const WeakHoughLinesImgParams& params);
ORVIK_API boost::shared_ptr<HoughLines2dImageSizeY> houghLines2dCheckOutImgSzYEquals(
    const WeakImage& input, const WeakHoughLinesImgParams& params, const WeakHoughLinesExtractionParams& extractionParams);
ORVIK_API processor::RulePtr houghLines2dCheckOutImgSzYGreaterOrEqual(const boost::weak_ptr<const attr::OutImg>& out,
                                                                      const WeakHoughLinesImgParams& params);
ORVIK_API boost::shared_ptr<HoughLines2dImgOutputBufferType> houghLines2dCheckOutImgBufferType(const WeakImage& input,
                                                                                               bool unsignedAsWell = false);

}}}  // namespace orvik::imaproc::fd
