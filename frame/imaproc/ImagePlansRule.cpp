#include "frame/imaproc/ImageRules.h"

#include "frame/imaproc/ImageRuleParts.h"

namespace orvik { namespace imaproc {

namespace {

using processor::BaseAttribute;
using processor::RulePtr;

/// The keys that a collection must have.
std::vector<PlanIndex> plansOf(const image::ImageSizes& sizes, eImagePlansMatchPolicy policy)
{
    std::vector<PlanIndex> plans;
    forEachPlan(policy == eIPMP_Planes ? sizes.z : 1, sizes.c, sizes.t,
                [&](const PlanIndex& plan) { plans.push_back(plan); });
    return plans;
}

class ImagePlansRule : public BaseRuleMatchImageRange
{
public:
    explicit ImagePlansRule(eImagePlansMatchPolicy policy) : m_policy(policy) {}
    bool testRule() const override
    {
        const boost::shared_ptr<const BaseAttribute> coll = getAttribute1(), image = getAttribute2();
        if (!coll->hasValue() || !image->hasValue())
            return true;
        if (coll->isOutput() && planIndexed(*coll)->getNbPlans() == 0)  // gets an entry for each
            return true;
        return planIndexed(*coll)->getPlans() == plansOf(sizesOf(*image), m_policy);
    }
    std::string createRuleFormalString() const override
    {
        return textOf(m_policy == eIPMP_Planes ? eImageRuleMessage::ePlanesMatch : eImageRuleMessage::eVolumesMatch,
                      getAttribute1()->getObjectName(), getAttribute2()->getObjectName());
    }
    std::string createRuleEvaluatedString(unsigned int depth) const override
    {
        const boost::shared_ptr<const BaseAttribute> coll = getAttribute1(), image = getAttribute2();
        std::string text = createRuleFormalString();
        if (coll->hasValue() && image->hasValue())
            text = textOf(m_policy == eIPMP_Planes ? eImageRuleMessage::ePlanesFound : eImageRuleMessage::eVolumesFound,
                          text, std::to_string(planIndexed(*coll)->getNbPlans()),
                          std::to_string(plansOf(sizesOf(*image), m_policy).size()), readSizes(*image));
        return createRuleEvaluatedStartString(depth) + text + "\n";
    }

private:
    static boost::shared_ptr<BasePlanIndexedColl> planIndexed(const BaseAttribute& attribute)
    {
        return static_cast<const BasePlanIndexedAttribute&>(attribute).accessStorage();
    }

    eImagePlansMatchPolicy m_policy;
};

}  // namespace

RulePtr matchImagePlans(const boost::weak_ptr<const BasePlanIndexedAttribute>& coll, const WeakImage& image,
                        const eImagePlansMatchPolicy& policy)
{
    const boost::shared_ptr<ImagePlansRule> rule = makeTogether<ImagePlansRule>(policy);
    rule->initBase(coll, image);
    return rule;
}

}}  // namespace orvik::imaproc
