#include "frame/imaproc/ImageRules.h"

#include "frame/imaproc/ImageRuleParts.h"

namespace orvik { namespace imaproc {

namespace {

using processor::BaseAttribute;
using processor::RulePtr;

const image::BaseImageFragment& stripOf(const BaseAttribute& attribute)
{
    return *static_cast<const BaseStripAttribute&>(attribute).getImageStrip();
}

/// What a comparison needs to know: what it says of two sides, whether it holds, how one side reads.
struct Comparison
{
    eImageRuleMessage::domain message;
    bool (*holds)(const BaseAttribute&, const BaseAttribute&);
    std::string (*read)(const BaseAttribute&);
};

/// One rule for all comparisons of two attributes; `Base` tells of what kind it is.
template<class Base>
class ComparisonRule : public Base
{
public:
    explicit ComparisonRule(const Comparison& comparison) : m_comparison(comparison) {}

    bool testRule() const override
    {
        const boost::shared_ptr<const BaseAttribute> a = this->getAttribute1(), b = this->getAttribute2();
        return !a->hasValue() || !b->hasValue() || m_comparison.holds(*a, *b);
    }
    std::string createRuleFormalString() const override
    {
        return textOf(m_comparison.message, this->getAttribute1()->getObjectName(), this->getAttribute2()->getObjectName());
    }
    std::string createRuleEvaluatedString(unsigned int depth) const override
    {
        return this->createRuleEvaluatedStartString(depth)
               + textOf(m_comparison.message, evaluated(*this->getAttribute1()), evaluated(*this->getAttribute2())) + "\n";
    }

private:
    std::string evaluated(const BaseAttribute& attribute) const
    {
        return attribute.hasValue()
                   ? textOf(eImageRuleMessage::eSideWithValue, attribute.getObjectName(), m_comparison.read(attribute))
                   : textOf(eImageRuleMessage::eSideWithoutValue, attribute.getObjectName());
    }

    const Comparison& m_comparison;
};

template<class Base>
RulePtr compare(const Comparison& comparison, const processor::WeakAttribute& a, const processor::WeakAttribute& b)
{
    const boost::shared_ptr<ComparisonRule<Base>> rule = makeTogether<ComparisonRule<Base>>(comparison);
    rule->initBase(a, b);
    return rule;
}

const Comparison g_size = {eImageRuleMessage::eEqualSizes,
                           [](const BaseAttribute& a, const BaseAttribute& b) { return sizesOf(a) == sizesOf(b); },
                           &readSizes};
const Comparison g_sizeX = {eImageRuleMessage::eEqualSizeX,
                            [](const BaseAttribute& a, const BaseAttribute& b) { return sizesOf(a).x == sizesOf(b).x; },
                            &readSizes};
const Comparison g_sizeY = {eImageRuleMessage::eEqualSizeY,
                            [](const BaseAttribute& a, const BaseAttribute& b) { return sizesOf(a).y == sizesOf(b).y; },
                            &readSizes};
const Comparison g_sizeZ = {eImageRuleMessage::eEqualSizeZ,
                            [](const BaseAttribute& a, const BaseAttribute& b) { return sizesOf(a).z == sizesOf(b).z; },
                            &readSizes};
const Comparison g_sizeZct = {eImageRuleMessage::eEqualNbPlanes,
                              [](const BaseAttribute& a, const BaseAttribute& b) {
                                  return sizesOf(a).z == sizesOf(b).z && sizesOf(a).c == sizesOf(b).c
                                         && sizesOf(a).t == sizesOf(b).t;
                              },
                              &readSizes};
const Comparison g_bufferType = {eImageRuleMessage::eEqualBufferTypes,
                                 [](const BaseAttribute& a, const BaseAttribute& b) {
                                     return imageOf(a).getBufferType() == imageOf(b).getBufferType();
                                 },
                                 [](const BaseAttribute& a) { return toString(imageOf(a).getBufferType()); }};
const Comparison g_colorGeometry = {
    eImageRuleMessage::eEqualColorGeometries,
    [](const BaseAttribute& a, const BaseAttribute& b) {
        return imageOf(a).getGeometry().getColorGeometryType() == imageOf(b).getGeometry().getColorGeometryType();
    },
    [](const BaseAttribute& a) { return textOf(eImageRuleMessage::eNbChannels, std::to_string(sizesOf(a).c)); }};
const Comparison g_volumeGeometry = {
    eImageRuleMessage::eEqualVolumeGeometries,
    [](const BaseAttribute& a, const BaseAttribute& b) {
        return imageOf(a).getGeometry().getVolumeGeometryType() == imageOf(b).getGeometry().getVolumeGeometryType();
    },
    [](const BaseAttribute& a) { return textOf(eImageRuleMessage::eNbSlices, std::to_string(sizesOf(a).z)); }};
const Comparison g_stripSize = {eImageRuleMessage::eEqualStripSizes,
                                [](const BaseAttribute& a, const BaseAttribute& b) {
                                    return stripOf(a).getSizeX() == stripOf(b).getSizeX()
                                           && stripOf(a).getNbLines() == stripOf(b).getNbLines();
                                },
                                [](const BaseAttribute& a) {
                                    return textOf(eImageRuleMessage::eStripSize, std::to_string(stripOf(a).getSizeX()),
                                                  std::to_string(stripOf(a).getNbLines()));
                                }};
const Comparison g_stripBufferType = {eImageRuleMessage::eEqualStripBufferTypes,
                                      [](const BaseAttribute& a, const BaseAttribute& b) {
                                          return stripOf(a).getBufferType() == stripOf(b).getBufferType();
                                      },
                                      [](const BaseAttribute& a) { return toString(stripOf(a).getBufferType()); }};

}  // namespace

RulePtr matchSize(const WeakImage& a, const WeakImage& b)
{
    return compare<BaseRuleMatchImageRange>(g_size, a, b);
}

RulePtr matchSize(const WeakImage& a, const WeakImage& b, const WeakImage& c)
{
    return matchSize(a, b) && matchSize(a, c);
}

RulePtr matchSize(const WeakStrip& a, const WeakStrip& b)
{
    return compare<BaseRuleMatchStripRange>(g_stripSize, a, b);
}

RulePtr matchSize(const eMatchImageSizeType& type, const WeakImage& a, const WeakImage& b)
{
    switch (type) {
    case eMIST_X: return compare<BaseRuleMatchImageRange>(g_sizeX, a, b);
    case eMIST_Y: return compare<BaseRuleMatchImageRange>(g_sizeY, a, b);
    case eMIST_Z: return compare<BaseRuleMatchImageRange>(g_sizeZ, a, b);
    case eMIST_ZCT: return compare<BaseRuleMatchImageRange>(g_sizeZct, a, b);
    case eMIST_MinXY:
    case eMIST_MinXYZ: break;
    }
    return matchSize(a, b);
}

RulePtr matchBufferType(const WeakImage& a, const WeakImage& b)
{
    return compare<BaseRuleMatchImageRange>(g_bufferType, a, b);
}

RulePtr matchBufferType(const WeakStrip& a, const WeakStrip& b)
{
    return compare<BaseRuleMatchStripRange>(g_stripBufferType, a, b);
}

RulePtr matchSizeAndType(const WeakImage& a, const WeakImage& b)
{
    return matchSize(a, b) && matchBufferType(a, b);
}

RulePtr matchSizeAndType(const WeakImage& a, const WeakImage& b, const WeakImage& c)
{
    return matchSizeAndType(a, b) && matchSizeAndType(a, c);
}

RulePtr matchSizeAndType(const WeakImage& a, const WeakImage& b, const WeakImage& c, const WeakImage& d)
{
    return matchSizeAndType(a, b, c) && matchSizeAndType(a, d);
}

RulePtr matchSizeAndType(const WeakStrip& a, const WeakStrip& b)
{
    return matchSize(a, b) && matchBufferType(a, b);
}

RulePtr matchColorGeometryType(const WeakImage& a, const WeakImage& b)
{
    return compare<BaseRuleMatchImageRange>(g_colorGeometry, a, b);
}

RulePtr matchVolumeGeometryType(const WeakImage& a, const WeakImage& b)
{
    return compare<BaseRuleMatchImageRange>(g_volumeGeometry, a, b);
}

}}  // namespace orvik::imaproc
