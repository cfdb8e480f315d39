#pragma once

#include "frame/imaproc/ImageAttributes.h"
#include "frame/processor/BaseRule.h"

namespace orvik { namespace imaproc {

// Kinds of rules on images and strips; each adds the question that tells its sub-kind apart.
enum eImageProcessingRuleType : unsigned int
{
    eIPRT_Image = 0,
    eIPRT_Strip = 1
};

class ORVIK_API BaseImageProcessingRule : public processor::BaseAttributeRule
{
public:
    processor::eAttributeRuleType getAttributeRuleType() const override { return processor::eART_ImageProcessing; }
    virtual eImageProcessingRuleType getImageProcessingRuleType() const = 0;
};

enum eImageRuleType : unsigned int
{
    eIRT_Property = 0,
    eIRT_BinaryMixed = 1
};

class ORVIK_API BaseImageRule : public BaseImageProcessingRule
{
public:
    eImageProcessingRuleType getImageProcessingRuleType() const override { return eIPRT_Image; }
    virtual eImageRuleType getImageRuleType() const = 0;
};

class ORVIK_API BaseImagePropertyRule : public BaseImageRule
{
public:
    eImageRuleType getImageRuleType() const override { return eIRT_Property; }
};

enum eImageBinaryMixedRuleType : unsigned int
{
    eIBMRT_Range = 0,
    eIBMRT_ScalarToSize = 1
};

class ORVIK_API BaseRuleMatchImageRange : public BaseImageRule
{
public:
    eImageRuleType getImageRuleType() const override { return eIRT_BinaryMixed; }
    virtual eImageBinaryMixedRuleType getImageBinaryMixedRuleType() const { return eIBMRT_Range; }
};

enum eStripRuleType : unsigned int
{
    eStRT_BinaryMixed = 0
};

class ORVIK_API BaseStripRule : public BaseImageProcessingRule
{
public:
    eImageProcessingRuleType getImageProcessingRuleType() const override { return eIPRT_Strip; }
    virtual eStripRuleType getStripRuleType() const = 0;
};

enum eStripBinaryMixedRuleType : unsigned int
{
    eSBMRT_Range = 0
};

class ORVIK_API BaseStripBinaryMixedRule : public BaseStripRule
{
public:
    eStripRuleType getStripRuleType() const override { return eStRT_BinaryMixed; }
    virtual eStripBinaryMixedRuleType getStripBinaryMixedRuleType() const = 0;
};

class ORVIK_API BaseRuleMatchStripRange : public BaseStripBinaryMixedRule
{
public:
    eStripBinaryMixedRuleType getStripBinaryMixedRuleType() const override { return eSBMRT_Range; }
};

/// Which sizes of an image a rule looks at.
enum eMatchImageSizeType : unsigned int
{
    eMIST_X = 1,
    eMIST_Y = 2,
    eMIST_Z = 3,
    eMIST_ZCT = 4,    ///< sizes Z, C and T
    eMIST_MinXY = 7,  ///< the smaller of X and Y
    eMIST_MinXYZ = 8  ///< the smallest of X, Y and Z
};

enum eMatchImageSizeScale : unsigned int
{
    eMISS_Whole = 0,
    eMISS_Half = 1  ///< half of the size, rounded down
};

enum eImagePlansMatchPolicy : unsigned int
{
    eIPMP_Volumes = 5,  ///< exactly the keys (0, c, t)
    eIPMP_Planes = 6    ///< exactly the keys (z, c, t)
};

/// A leaf of a record must not be negative where it is compared with a size of an image. A value beyond the size is no
/// failure: whoever uses it narrows it to the image.
class ORVIK_API BaseRuleMatchScalarToImageSize : public BaseImageRule
{
public:
    ~BaseRuleMatchScalarToImageSize() override;
    eImageRuleType getImageRuleType() const override { return eIRT_BinaryMixed; }

    using BaseImageRule::initBase;
    void initBase(const WeakImage& image,
                  const boost::weak_ptr<const processor::BaseDataItemAttribute>& attribute);
    void setSize(const eMatchImageSizeType& type, const eMatchImageSizeScale& scale);
    bool testRule() const override;
    std::string createRuleFormalString() const override;
    std::string createRuleEvaluatedString(unsigned int depth) const override;

    virtual double retrieveValue() const = 0;
    virtual std::string retrieveValueAttributeName() const = 0;

private:
    eMatchImageSizeType m_type = eMIST_X;
    eMatchImageSizeScale m_scale = eMISS_Whole;
};

template<class A, class Leaf>
class RuleMatchLeafToImageSize : public BaseRuleMatchScalarToImageSize
{
public:
    double retrieveValue() const override
    {
        const boost::shared_ptr<const processor::BaseAttribute> attribute = getAttribute2();
        return static_cast<double>(static_cast<const A&>(*attribute).getDataItemNode()->template get<Leaf>());
    }
    std::string retrieveValueAttributeName() const override { return A::getObjectNameStr() + "::" + Leaf::getName(); }
};

typedef boost::weak_ptr<const BaseStripAttribute> WeakStrip;

// Conditions on images and strips. An attribute that has no value yet is not held against the others.

ORVIK_API processor::RulePtr matchSize(const WeakImage& a, const WeakImage& b);
ORVIK_API processor::RulePtr matchSize(const WeakImage& a, const WeakImage& b, const WeakImage& c);
ORVIK_API processor::RulePtr matchSize(const WeakStrip& a, const WeakStrip& b);
ORVIK_API processor::RulePtr matchSize(const eMatchImageSizeType& type, const WeakImage& a, const WeakImage& b);
ORVIK_API processor::RulePtr matchBufferType(const WeakImage& a, const WeakImage& b);
ORVIK_API processor::RulePtr matchBufferType(const WeakStrip& a, const WeakStrip& b);
ORVIK_API processor::RulePtr matchSizeAndType(const WeakImage& a, const WeakImage& b);
ORVIK_API processor::RulePtr matchSizeAndType(const WeakImage& a, const WeakImage& b, const WeakImage& c);
ORVIK_API processor::RulePtr matchSizeAndType(const WeakImage& a, const WeakImage& b, const WeakImage& c,
                                              const WeakImage& d);
ORVIK_API processor::RulePtr matchSizeAndType(const WeakStrip& a, const WeakStrip& b);
ORVIK_API processor::RulePtr matchColorGeometryType(const WeakImage& a, const WeakImage& b);
ORVIK_API processor::RulePtr matchVolumeGeometryType(const WeakImage& a, const WeakImage& b);
/// The collection has exactly the planes, or the volumes, of the image. An empty one fits: the split that uses it fills
/// it.
ORVIK_API processor::RulePtr matchImagePlans(const boost::weak_ptr<const BasePlanIndexedAttribute>& coll,
                                             const WeakImage& image, const eImagePlansMatchPolicy& policy);
/// The attributes do not hold images that share samples.
ORVIK_API processor::RulePtr noInSitu(const WeakImage& a, const WeakImage& b);
/// The attributes hold the same samples of the same type, or share none.
ORVIK_API processor::RulePtr inSituOrApart(const WeakImage& a, const WeakImage& b);

template<class Leaf, class A>
processor::RulePtr matchSize(const eMatchImageSizeType& type, const eMatchImageSizeScale& scale, const WeakImage& image,
                             const boost::shared_ptr<A>& record)
{
    const boost::shared_ptr<RuleMatchLeafToImageSize<A, Leaf> > rule =
        boost::make_shared<RuleMatchLeafToImageSize<A, Leaf> >();
    rule->initBase(image, record);
    rule->setSize(type, scale);
    return rule;
}

/// What a property of an image can be checked for.
enum eCheckableImageProperty : unsigned int
{
    eCIP_SizeX = 1,
    eCIP_SizeY = 2,
    eCIP_BufferType = 4
};

/// Properties that an output image must have, told from an input image and whatever the family adds.
class ORVIK_API BaseCustomCheckedImageProperty
{
public:
    virtual ~BaseCustomCheckedImageProperty();
    void initBase(const WeakImage& input);
    void enableCheck(const eCheckableImageProperty& property) { m_checks |= property; }
    bool isChecked(const eCheckableImageProperty& property) const { return (m_checks & property) != 0; }
    /// @throws ORVIKBaseProcessingException when the attribute is gone.
    boost::shared_ptr<const image::BaseImage> getInputImage() const;

    virtual unsigned long getSizeX() const;
    virtual unsigned long getSizeY() const;
    virtual image::eImageBufferType getImageBufferType() const;
    /// The types that an image may have, of which the one above is one; that alone unless the family says otherwise.
    virtual std::vector<image::eImageBufferType> getAllowedImageBufferTypes() const;

private:
    WeakImage m_input;
    unsigned int m_checks = 0;
};

/// The checks that are enabled on the property hold for the image.
ORVIK_API processor::RulePtr customImageProperty(const WeakImage& a,
                                                 const boost::shared_ptr<BaseCustomCheckedImageProperty>& property);

}}  // namespace orvik::imaproc
