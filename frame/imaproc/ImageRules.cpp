#include "frame/imaproc/ImageRules.h"

#include "frame/util/FrameMessages.h"

#include <algorithm>

namespace orvik { namespace imaproc {

namespace {

using processor::BaseAttribute;
using processor::RulePtr;

const image::BaseImage& imageOf(const BaseAttribute& attribute)
{
    return *static_cast<const BaseImageAttribute&>(attribute).getImage();
}

const image::BaseImageFragment& stripOf(const BaseAttribute& attribute)
{
    return *static_cast<const BaseStripAttribute&>(attribute).getImageStrip();
}

const image::ImageSizes& sizesOf(const BaseAttribute& attribute)
{
    return imageOf(attribute).getGeometry().getSizes();
}

/// The bytes from the first sample of an image to the end of the last one, whatever lies between them.
std::pair<const char*, const char*> extentOf(const image::BaseImage& image)
{
    const image::ImageSizes& sizes = image.getGeometry().getSizes();
    const image::ImageStrides& strides = image.getStrides();
    const char* first = static_cast<const char*>(image.getLine(0));
    const char* end = first + sizes.x * image::getImageBufferBaseSize(image.getBufferType());
    const std::pair<unsigned long, long> axes[] = {
        {sizes.y, strides.y}, {sizes.z, strides.z}, {sizes.c, strides.c}, {sizes.t, strides.t}};
    for (const std::pair<unsigned long, long>& axis : axes) {
        const long span = static_cast<long>(axis.first - 1) * axis.second;
        (span < 0 ? first : end) += span;
    }
    return {first, end};
}

/// Whether two images may hold the same bytes: their extents overlap, unless one lies between the lines of the other.
bool shareMemory(const image::BaseImage& a, const image::BaseImage& b)
{
    const std::pair<const char*, const char*> extentA = extentOf(a), extentB = extentOf(b);
    if (extentA.second <= extentB.first || extentB.second <= extentA.first)
        return false;
    const long stride = a.getStrides().y;
    if (stride <= 0 || stride != b.getStrides().y || a.getGeometry().getSizes().z * a.getSizeC() * a.getSizeT() != 1
        || b.getGeometry().getSizes().z * b.getSizeC() * b.getSizeT() != 1)
        return true;
    const auto lineBytes = [](const image::BaseImage& image) {
        return static_cast<long>(image.getSizeX() * image::getImageBufferBaseSize(image.getBufferType()));
    };
    const long distance = ((extentB.first - extentA.first) % stride + stride) % stride;
    return !(distance >= lineBytes(a) && distance + lineBytes(b) <= stride);
}

/// Whether two images show the same samples.
bool isSame(const image::BaseImage& a, const image::BaseImage& b)
{
    const image::ImageSizes& sizes = a.getGeometry().getSizes();
    const image::ImageStrides &strideA = a.getStrides(), &strideB = b.getStrides();
    return a.getLine(0) == b.getLine(0) && a.getBufferType() == b.getBufferType()
           && sizes == b.getGeometry().getSizes() && (sizes.y == 1 || strideA.y == strideB.y)
           && (sizes.z == 1 || strideA.z == strideB.z) && (sizes.c == 1 || strideA.c == strideB.c)
           && (sizes.t == 1 || strideA.t == strideB.t);
}

/// What a comparison needs to know: what it compares, whether it holds, how one side reads.
struct Comparison
{
    const char* noun;
    const char* relation;
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
        return text(this->getAttribute1()->getObjectName(), this->getAttribute2()->getObjectName());
    }
    std::string createRuleEvaluatedString(unsigned int depth) const override
    {
        return this->createRuleEvaluatedStartString(depth)
               + text(evaluated(*this->getAttribute1()), evaluated(*this->getAttribute2())) + "\n";
    }

private:
    std::string text(const std::string& a, const std::string& b) const
    {
        return std::string(m_comparison.noun) + " of " + a + " " + m_comparison.relation + " that of " + b;
    }
    std::string evaluated(const BaseAttribute& attribute) const
    {
        return attribute.getObjectName() + " (" + (attribute.hasValue() ? m_comparison.read(attribute) : "no value yet")
               + ")";
    }

    const Comparison& m_comparison;
};

template<class Base>
RulePtr compare(const Comparison& comparison, const processor::WeakAttribute& a, const processor::WeakAttribute& b)
{
    const boost::shared_ptr<ComparisonRule<Base> > rule = boost::make_shared<ComparisonRule<Base> >(comparison);
    rule->initBase(a, b);
    return rule;
}

std::string readSizes(const BaseAttribute& attribute)
{
    return toString(sizesOf(attribute));
}

const Comparison g_size = {"size X x Y x Z x C x T", "equals",
                           [](const BaseAttribute& a, const BaseAttribute& b) { return sizesOf(a) == sizesOf(b); },
                           &readSizes};
const Comparison g_sizeX = {"size X", "equals",
                            [](const BaseAttribute& a, const BaseAttribute& b) { return sizesOf(a).x == sizesOf(b).x; },
                            &readSizes};
const Comparison g_sizeY = {"size Y", "equals",
                            [](const BaseAttribute& a, const BaseAttribute& b) { return sizesOf(a).y == sizesOf(b).y; },
                            &readSizes};
const Comparison g_sizeZ = {"size Z", "equals",
                            [](const BaseAttribute& a, const BaseAttribute& b) { return sizesOf(a).z == sizesOf(b).z; },
                            &readSizes};
const Comparison g_sizeZct = {"number of planes Z x C x T", "equals",
                              [](const BaseAttribute& a, const BaseAttribute& b) {
                                  return sizesOf(a).z == sizesOf(b).z && sizesOf(a).c == sizesOf(b).c
                                         && sizesOf(a).t == sizesOf(b).t;
                              },
                              &readSizes};
const Comparison g_bufferType = {"buffer type", "equals",
                                 [](const BaseAttribute& a, const BaseAttribute& b) {
                                     return imageOf(a).getBufferType() == imageOf(b).getBufferType();
                                 },
                                 [](const BaseAttribute& a) { return toString(imageOf(a).getBufferType()); }};
const Comparison g_colorGeometry = {"colour geometry", "equals",
                                    [](const BaseAttribute& a, const BaseAttribute& b) {
                                        return imageOf(a).getGeometry().getColorGeometryType()
                                               == imageOf(b).getGeometry().getColorGeometryType();
                                    },
                                    [](const BaseAttribute& a) { return std::to_string(sizesOf(a).c) + " channels"; }};
const Comparison g_volumeGeometry = {"volume geometry", "equals",
                                     [](const BaseAttribute& a, const BaseAttribute& b) {
                                         return imageOf(a).getGeometry().getVolumeGeometryType()
                                                == imageOf(b).getGeometry().getVolumeGeometryType();
                                     },
                                     [](const BaseAttribute& a) { return std::to_string(sizesOf(a).z) + " slices"; }};
const Comparison g_notInSitu = {"memory", "differs from",
                                [](const BaseAttribute& a, const BaseAttribute& b) {
                                    return !shareMemory(imageOf(a), imageOf(b));
                                },
                                [](const BaseAttribute& a) {
                                    return "at " + std::to_string(reinterpret_cast<std::size_t>(imageOf(a).getLine(0)));
                                }};
const Comparison g_inSituOrApart = {"memory", "is, or lies apart from,",
                                    [](const BaseAttribute& a, const BaseAttribute& b) {
                                        return isSame(imageOf(a), imageOf(b)) || !shareMemory(imageOf(a), imageOf(b));
                                    },
                                    g_notInSitu.read};
const Comparison g_stripSize = {"size of the strip, X x lines,", "equals",
                                [](const BaseAttribute& a, const BaseAttribute& b) {
                                    return stripOf(a).getSizeX() == stripOf(b).getSizeX()
                                           && stripOf(a).getNbLines() == stripOf(b).getNbLines();
                                },
                                [](const BaseAttribute& a) {
                                    return std::to_string(stripOf(a).getSizeX()) + " x "
                                           + std::to_string(stripOf(a).getNbLines());
                                }};
const Comparison g_stripBufferType = {"buffer type of the strip", "equals",
                                      [](const BaseAttribute& a, const BaseAttribute& b) {
                                          return stripOf(a).getBufferType() == stripOf(b).getBufferType();
                                      },
                                      [](const BaseAttribute& a) { return toString(stripOf(a).getBufferType()); }};

/// The keys that a collection must have.
std::vector<PlanIndex> plansOf(const image::ImageSizes& sizes, eImagePlansMatchPolicy policy)
{
    std::vector<PlanIndex> plans;
    for (unsigned long t = 0; t < sizes.t; ++t)
        for (unsigned long c = 0; c < sizes.c; ++c)
            for (unsigned long z = 0; z < (policy == eIPMP_Planes ? sizes.z : 1); ++z)
                plans.push_back(PlanIndex(z, c, t));
    return plans;
}

class ImagePlansRule : public BaseRuleMatchImageRange
{
public:
    explicit ImagePlansRule(eImagePlansMatchPolicy policy) : m_policy(policy) {}
    bool testRule() const override
    {
        const boost::shared_ptr<const BaseAttribute> coll = getAttribute1(), image = getAttribute2();
        if (!coll->hasValue() || !image->hasValue() || planIndexed(*coll)->getNbPlans() == 0)
            return true;
        return planIndexed(*coll)->getPlans() == plansOf(sizesOf(*image), m_policy);
    }
    std::string createRuleFormalString() const override
    {
        return "entries of " + getAttribute1()->getObjectName() + " are the " + elements() + " of "
               + getAttribute2()->getObjectName();
    }
    std::string createRuleEvaluatedString(unsigned int depth) const override
    {
        const boost::shared_ptr<const BaseAttribute> coll = getAttribute1(), image = getAttribute2();
        std::string text = createRuleEvaluatedStartString(depth) + createRuleFormalString();
        if (coll->hasValue() && image->hasValue())
            text += ": " + std::to_string(planIndexed(*coll)->getNbPlans()) + " entries, "
                    + std::to_string(plansOf(sizesOf(*image), m_policy).size()) + " " + elements() + " in "
                    + readSizes(*image);
        return text + "\n";
    }

private:
    static boost::shared_ptr<BasePlanIndexedColl> planIndexed(const BaseAttribute& attribute)
    {
        return static_cast<const BasePlanIndexedAttribute&>(attribute).accessStorage();
    }
    std::string elements() const { return m_policy == eIPMP_Planes ? "planes (z, c, t)" : "volumes (0, c, t)"; }

    eImagePlansMatchPolicy m_policy;
};

class CustomImagePropertyRule : public BaseImagePropertyRule
{
public:
    explicit CustomImagePropertyRule(const boost::shared_ptr<BaseCustomCheckedImageProperty>& property)
        : m_property(property)
    {
    }
    bool testRule() const override
    {
        if (!canTest())
            return true;
        const boost::shared_ptr<const BaseAttribute> attribute = getAttribute1();
        const image::BaseImage& image = imageOf(*attribute);
        return (!m_property->isChecked(eCIP_SizeX) || image.getSizeX() == m_property->getSizeX())
               && (!m_property->isChecked(eCIP_SizeY) || image.getSizeY() == m_property->getSizeY())
               && (!m_property->isChecked(eCIP_BufferType) || isAllowed(image.getBufferType()));
    }
    std::string createRuleFormalString() const override
    {
        std::string text;
        if (m_property->isChecked(eCIP_SizeX))
            text += "size X, ";
        if (m_property->isChecked(eCIP_SizeY))
            text += "size Y, ";
        if (m_property->isChecked(eCIP_BufferType))
            text += "buffer type, ";
        return text + "of " + getAttribute1()->getObjectName() + " as computed from the inputs";
    }
    std::string createRuleEvaluatedString(unsigned int depth) const override
    {
        std::string text = createRuleEvaluatedStartString(depth) + createRuleFormalString();
        if (canTest()) {
            const boost::shared_ptr<const BaseAttribute> attribute = getAttribute1();
            const image::BaseImage& image = imageOf(*attribute);
            if (m_property->isChecked(eCIP_SizeX))
                text += ": X " + pair(image.getSizeX(), m_property->getSizeX());
            if (m_property->isChecked(eCIP_SizeY))
                text += ": Y " + pair(image.getSizeY(), m_property->getSizeY());
            if (m_property->isChecked(eCIP_BufferType))
                text += ": " + toString(image.getBufferType()) + " against " + allowedTypes();
        }
        return text + "\n";
    }

private:
    bool canTest() const { return getAttribute1()->hasValue() && m_property->getInputImage(); }
    bool isAllowed(image::eImageBufferType type) const
    {
        const std::vector<image::eImageBufferType> allowed = m_property->getAllowedImageBufferTypes();
        return std::find(allowed.begin(), allowed.end(), type) != allowed.end();
    }
    std::string allowedTypes() const
    {
        std::string text;
        for (const image::eImageBufferType type : m_property->getAllowedImageBufferTypes())
            text += (text.empty() ? "" : " or ") + toString(type);
        return text;
    }
    static std::string pair(unsigned long found, unsigned long computed)
    {
        return std::to_string(found) + " against " + std::to_string(computed);
    }

    boost::shared_ptr<BaseCustomCheckedImageProperty> m_property;
};

}  // namespace

BaseRuleMatchScalarToImageSize::~BaseRuleMatchScalarToImageSize() = default;

void BaseRuleMatchScalarToImageSize::initBase(const WeakImage& image,
                                              const boost::weak_ptr<const processor::BaseDataItemAttribute>& attribute)
{
    BaseImageRule::initBase(processor::WeakAttribute(image), processor::WeakAttribute(attribute));
}

void BaseRuleMatchScalarToImageSize::setSize(const eMatchImageSizeType& type, const eMatchImageSizeScale& scale)
{
    m_type = type;
    m_scale = scale;
}

bool BaseRuleMatchScalarToImageSize::testRule() const
{
    return !getAttribute2()->hasValue() || !(retrieveValue() < 0);
}

std::string BaseRuleMatchScalarToImageSize::createRuleFormalString() const
{
    return retrieveValueAttributeName() + " is not negative, and beyond " + (m_scale == eMISS_Half ? "half of " : "")
           + (m_type == eMIST_MinXYZ ? "the smallest of X, Y and Z" : "the smaller of X and Y") + " of "
           + getAttribute1()->getObjectName() + " narrowed to it";
}

std::string BaseRuleMatchScalarToImageSize::createRuleEvaluatedString(unsigned int depth) const
{
    std::string text = createRuleEvaluatedStartString(depth) + createRuleFormalString();
    if (getAttribute2()->hasValue())
        text += ": " + std::to_string(retrieveValue());
    const boost::shared_ptr<const BaseAttribute> image = getAttribute1();
    if (image->hasValue())
        text += ", image " + readSizes(*image);
    return text + "\n";
}

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

RulePtr matchImagePlans(const boost::weak_ptr<const BasePlanIndexedAttribute>& coll, const WeakImage& image,
                        const eImagePlansMatchPolicy& policy)
{
    const boost::shared_ptr<ImagePlansRule> rule = boost::make_shared<ImagePlansRule>(policy);
    rule->initBase(coll, image);
    return rule;
}

RulePtr noInSitu(const WeakImage& a, const WeakImage& b)
{
    return compare<BaseRuleMatchImageRange>(g_notInSitu, a, b);
}

RulePtr inSituOrApart(const WeakImage& a, const WeakImage& b)
{
    return compare<BaseRuleMatchImageRange>(g_inSituOrApart, a, b);
}

BaseCustomCheckedImageProperty::~BaseCustomCheckedImageProperty() = default;

void BaseCustomCheckedImageProperty::initBase(const WeakImage& input)
{
    m_input = input;
}

boost::shared_ptr<const image::BaseImage> BaseCustomCheckedImageProperty::getInputImage() const
{
    const boost::shared_ptr<const BaseImageAttribute> input = m_input.lock();
    if (!input) {
        ORVIK_THROW_PROCESSING("Attribute weak pointer has expired, can't get it");
    }
    return input->getImage();
}

unsigned long BaseCustomCheckedImageProperty::getSizeX() const
{
    return getInputImage()->getSizeX();
}

unsigned long BaseCustomCheckedImageProperty::getSizeY() const
{
    return getInputImage()->getSizeY();
}

image::eImageBufferType BaseCustomCheckedImageProperty::getImageBufferType() const
{
    return getInputImage()->getBufferType();
}

std::vector<image::eImageBufferType> BaseCustomCheckedImageProperty::getAllowedImageBufferTypes() const
{
    return {getImageBufferType()};
}

RulePtr customImageProperty(const WeakImage& a, const boost::shared_ptr<BaseCustomCheckedImageProperty>& property)
{
    const boost::shared_ptr<CustomImagePropertyRule> rule = boost::make_shared<CustomImagePropertyRule>(property);
    rule->initBase(a);
    return rule;
}

}}  // namespace orvik::imaproc
