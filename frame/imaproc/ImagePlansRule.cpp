#include "frame/imaproc/ImageRules.h"

#include "frame/imaproc/AttributeImages.h"

namespace orvik { namespace imaproc {

namespace {

using processor::BaseAttribute;
using processor::RulePtr;

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

}  // namespace

RulePtr matchImagePlans(const boost::weak_ptr<const BasePlanIndexedAttribute>& coll, const WeakImage& image,
                        const eImagePlansMatchPolicy& policy)
{
    const boost::shared_ptr<ImagePlansRule> rule = boost::make_shared<ImagePlansRule>(policy);
    rule->initBase(coll, image);
    return rule;
}

}}  // namespace orvik::imaproc
