#pragma once

#include "frame/imaproc/BaseImageRules.h"

#include <boost/smart_ptr/make_shared_object.hpp>

namespace orvik { namespace imaproc {

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

/// A leaf of a record must not be negative where it is compared with a size of an image. A value beyond the size is no
/// failure: whoever uses it narrows it to the image.
class ORVIK_API BaseRuleMatchScalarToImageSize : public BaseImageBinaryMixedRule
{
public:
    ~BaseRuleMatchScalarToImageSize() override;
    eImageBinaryMixedRuleType getImageBinaryMixedRuleType() const override { return eIBMRT_ScalarToSize; }

    using BaseImageBinaryMixedRule::initBase;
    void initBase(const WeakImage& image, const boost::weak_ptr<const processor::BaseDataItemAttribute>& attribute);
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

template<class Leaf, class A>
processor::RulePtr matchSize(const eMatchImageSizeType& type, const eMatchImageSizeScale& scale, const WeakImage& image,
                             const boost::shared_ptr<A>& record)
{
    const boost::shared_ptr<RuleMatchLeafToImageSize<A, Leaf>> rule = makeTogether<RuleMatchLeafToImageSize<A, Leaf>>();
    rule->initBase(image, record);
    rule->setSize(type, scale);
    return rule;
}

}}  // namespace orvik::imaproc
