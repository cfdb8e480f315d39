#pragma once

#include "OutputInitializer/HoughLines2dInitializerUtils.h"

#include "frame/imaproc/ImageRules.h"

namespace orvik { namespace imaproc { namespace fd {

// What a caller's accumulator must be like. The image attribute is always that of the image whose lines are looked for; an
// attribute that is null, and use before `init`, raise ORVIKIPLFeatureDetectionException.

/// Raises when what needs `init` had none.
ORVIK_API void checkInitialised(bool isInitialised);

/// A size of an accumulator, as the initializer that would make it tells it.
template<class Initializer, eCheckableImageProperty Checked>
class BaseHoughLinesImageSize : public BaseCustomCheckedImageProperty
{
public:
    template<class... Params>
    void init(const WeakImage& input, const Params&... params)
    {
        const boost::shared_ptr<Initializer> made = boost::make_shared<Initializer>();
        made->init(input, params...);
        m_made = made;
        initBase(input);
        enableCheck(Checked);
    }
    unsigned long getSizeX() const override { return made().getSizeX(); }
    unsigned long getSizeY() const override { return made().getSizeY(); }

private:
    const Initializer& made() const
    {
        checkInitialised(m_made != nullptr);
        return *m_made;
    }

    boost::shared_ptr<const Initializer> m_made;
};

/// Columns of an accumulator.
class ORVIK_API HoughLines2dImgImageSizeX
    : public BaseHoughLinesImageSize<CustomHoughLines2dImgOutputInitializer, eCIP_SizeX>
{
public:
    ~HoughLines2dImgImageSizeX() override;
};
class ORVIK_API HoughLinesGradient2dImgImageSizeX
    : public BaseHoughLinesImageSize<CustomHoughLinesGradient2dImgOutputInitializer, eCIP_SizeX>
{
public:
    ~HoughLinesGradient2dImgImageSizeX() override;
};

/// Rows of an accumulator.
class ORVIK_API HoughLines2dImgImageSizeY
    : public BaseHoughLinesImageSize<CustomHoughLines2dImgOutputInitializer, eCIP_SizeY>
{
public:
    ~HoughLines2dImgImageSizeY() override;
};
class ORVIK_API HoughLinesGradient2dImgImageSizeY
    : public BaseHoughLinesImageSize<CustomHoughLinesGradient2dImgOutputInitializer, eCIP_SizeY>
{
public:
    ~HoughLinesGradient2dImgImageSizeY() override;
};

/// Rows of the accumulator of a search for lines.
class ORVIK_API HoughLines2dImageSizeY : public BaseHoughLinesImageSize<CustomHoughLines2dOutputInitializer, eCIP_SizeY>
{
public:
    ~HoughLines2dImageSizeY() override;
};
class ORVIK_API HoughLinesGradient2dImageSizeY
    : public BaseHoughLinesImageSize<CustomHoughLinesGradient2dOutputInitializer, eCIP_SizeY>
{
public:
    ~HoughLinesGradient2dImageSizeY() override;
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

/// The accumulator, in attribute `Out`, has a row for each angle, and may have more.
template<class Out, class Params>
class ORVIK_API BaseHoughLinesImageSizeYGreaterOrEqual : public processor::BaseAttributeRule
{
public:
    ~BaseHoughLinesImageSizeYGreaterOrEqual() override;
    void init(const boost::weak_ptr<const Out>& out, const boost::weak_ptr<const Params>& params);
    processor::eAttributeRuleType getAttributeRuleType() const override { return processor::eART_ImageProcessing; }
    bool testRule() const override;
    std::string createRuleFormalString() const override;
    std::string createRuleEvaluatedString(unsigned int depth) const override;

private:
    unsigned long getSizeY() const;
    unsigned int getNbThetaBins() const;
};

extern template class ORVIK_API BaseHoughLinesImageSizeYGreaterOrEqual<attr::OutImg, attr::InOptHoughLinesImgParams>;
extern template class ORVIK_API
    BaseHoughLinesImageSizeYGreaterOrEqual<attr::OutRealImg, attr::InOptHoughLinesGradientImgParams>;

class ORVIK_API HoughLines2dImageSizeYGreaterOrEqual
    : public BaseHoughLinesImageSizeYGreaterOrEqual<attr::OutImg, attr::InOptHoughLinesImgParams>
{
public:
    ~HoughLines2dImageSizeYGreaterOrEqual() override;
};
class ORVIK_API HoughLinesGradient2dImageSizeYGreaterOrEqual
    : public BaseHoughLinesImageSizeYGreaterOrEqual<attr::OutRealImg, attr::InOptHoughLinesGradientImgParams>
{
public:
    ~HoughLinesGradient2dImageSizeYGreaterOrEqual() override;
};

ORVIK_API boost::shared_ptr<HoughLines2dImgImageSizeX> houghLines2dCheckOutImgSzXEquals(
    const WeakImage& input, const WeakHoughLinesImgParams& params);
ORVIK_API boost::shared_ptr<HoughLinesGradient2dImgImageSizeX> houghLines2dCheckOutImgSzXEquals(
    const WeakImage& input, const WeakHoughLinesGradientImgParams& params);
ORVIK_API boost::shared_ptr<HoughLines2dImgImageSizeY> houghLines2dCheckOutImgSzYEquals(
    const WeakImage& input, const WeakHoughLinesImgParams& params);
ORVIK_API boost::shared_ptr<HoughLinesGradient2dImgImageSizeY> houghLines2dCheckOutImgSzYEquals(
    const WeakImage& input, const WeakHoughLinesGradientImgParams& params);
ORVIK_API boost::shared_ptr<HoughLines2dImageSizeY> houghLines2dCheckOutImgSzYEquals(
    const WeakImage& input, const WeakHoughLinesImgParams& params, const WeakHoughLinesExtractionParams& extractionParams);
ORVIK_API boost::shared_ptr<HoughLinesGradient2dImageSizeY> houghLines2dCheckOutImgSzYEquals(
    const WeakImage& input, const WeakHoughLinesGradientImgParams& params,
    const WeakHoughLinesExtractionParams& extractionParams);
ORVIK_API processor::RulePtr houghLines2dCheckOutImgSzYGreaterOrEqual(const boost::weak_ptr<const attr::OutImg>& out,
                                                                      const WeakHoughLinesImgParams& params);
ORVIK_API processor::RulePtr houghLines2dCheckOutImgSzYGreaterOrEqual(const boost::weak_ptr<const attr::OutRealImg>& out,
                                                                      const WeakHoughLinesGradientImgParams& params);
ORVIK_API boost::shared_ptr<HoughLines2dImgOutputBufferType> houghLines2dCheckOutImgBufferType(const WeakImage& input,
                                                                                               bool unsignedAsWell = false);

}}}  // namespace orvik::imaproc::fd
