#include "Rule/AccumulatorRule.h"

#include "ORVIKIPLFeatureDetectionLogMessages.h"

#include "frame/imaproc/ImageRules.h"
#include "frame/util/NumericLimits.h"

namespace orvik { namespace imaproc { namespace fd {

namespace {

class AccumulatorRule : public BaseImagePropertyRule
{
public:
    AccumulatorRule(const WeakImage& input, const boost::shared_ptr<const BaseCustomImageInfo>& made) : m_made(made)
    {
        initBase(input);
    }
    bool testRule() const override
    {
        return !getAttribute1()->hasValue() || (isPossible(m_made->getSizeX()) && isPossible(m_made->getSizeY()));
    }
    std::string createRuleFormalString() const override
    {
        return messageText(getORVIKIPLFeatureDetectionLogMessageManager(), eLibraryRuleMessage::eAccumulatorHasBins,
                           getAttribute1()->getObjectName(), std::to_string(s_most));
    }
    std::string createRuleEvaluatedString(unsigned int depth) const override
    {
        std::string text = createRuleFormalString();
        if (getAttribute1()->hasValue())
            text = messageText(getORVIKIPLFeatureDetectionLogMessageManager(), eLibraryRuleMessage::eAccumulatorBins, text,
                               std::to_string(m_made->getSizeX()), std::to_string(m_made->getSizeY()));
        return createRuleEvaluatedStartString(depth) + text + "\n";
    }

private:
    static const unsigned long s_most = NumericLimits<int>::s_max;
    static bool isPossible(unsigned long nbBins) { return nbBins >= 1 && nbBins <= s_most; }

    boost::shared_ptr<const BaseCustomImageInfo> m_made;
};

class NumberRule : public processor::BaseValuePropertyRule
{
public:
    bool testRule() const override { return getValue() == getValue(); }
    std::string createRuleFormalString() const override
    {
        return messageText(getORVIKIPLFeatureDetectionLogMessageManager(), eLibraryRuleMessage::eIsNumber,
                           getAttribute1()->getObjectName());
    }
    std::string createRuleEvaluatedString(unsigned int depth) const override
    {
        return createRuleEvaluatedStartString(depth)
               + messageText(getORVIKIPLFeatureDetectionLogMessageManager(), eLibraryRuleMessage::eIsNumberEvaluated,
                             createRuleFormalString(), std::to_string(getValue()))
               + "\n";
    }

private:
    float getValue() const
    {
        return static_cast<const processor::BaseValueAttribute<float>&>(*getAttribute1()).getStorage();
    }
};

}  // namespace

processor::RulePtr accumulatorFits(const WeakImage& in, const WeakImage& out,
                                   const boost::shared_ptr<BaseCustomCheckedImageProperty>& columns,
                                   const boost::shared_ptr<BaseCustomCheckedImageProperty>& rows,
                                   const processor::RulePtr& bufferType)
{
    return customImageProperty(out, columns) && customImageProperty(out, rows) && bufferType && matchSize(eMIST_ZCT, in, out)
           && matchVolumeGeometryType(in, out) && matchColorGeometryType(in, out) && noInSitu(in, out);
}

processor::RulePtr accumulatorHasBins(const WeakImage& input, const boost::shared_ptr<const BaseCustomImageInfo>& made)
{
    return makeTogether<AccumulatorRule>(input, made);
}

processor::RulePtr toleranceIsNumber(const boost::weak_ptr<const processor::BaseValueAttribute<float>>& tolerance)
{
    const auto rule = makeTogether<NumberRule>();
    rule->initBase(tolerance);
    return rule;
}

}}}  // namespace orvik::imaproc::fd
