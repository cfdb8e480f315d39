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

}  // namespace

processor::RulePtr accumulatorFits(const WeakImage& in, const WeakImage& out,
                                   const boost::shared_ptr<BaseCustomCheckedImageProperty>& columns,
                                   const boost::shared_ptr<BaseCustomCheckedImageProperty>& rows,
                                   const boost::shared_ptr<BaseCustomCheckedImageProperty>& bufferType)
{
    return customImageProperty(out, columns) && customImageProperty(out, rows) && customImageProperty(out, bufferType)
           && matchSize(eMIST_ZCT, in, out) && matchVolumeGeometryType(in, out) && matchColorGeometryType(in, out)
           && noInSitu(in, out);
}

processor::RulePtr accumulatorHasBins(const WeakImage& input, const boost::shared_ptr<const BaseCustomImageInfo>& made)
{
    return makeTogether<AccumulatorRule>(input, made);
}

}}}  // namespace orvik::imaproc::fd
