#include "siblings/Filtering/GaussianRules.h"

#include "siblings/Filtering/FilteringMessages.h"
#include "siblings/Filtering/GaussianWeights.h"

#include "frame/attr/Records.h"

#include <boost/make_shared.hpp>

#include <cmath>
#include <sstream>

namespace orvik { namespace imaproc { namespace filter {

namespace {

using processor::BaseAttribute;

double stdDevOf(const BaseAttribute& attribute)
{
    return static_cast<const processor::BaseValueAttribute<float>&>(attribute).getStorage();
}

double coverageOf(const BaseAttribute& attribute)
{
    const auto record = static_cast<const processor::BaseDataItemAttribute&>(attribute).accessDataItemNodePtr();
    return static_cast<const attr::GaussianCoverage&>(*record).get<attr::GaussianCoverage::NbStdDev>();
}

/// Nine digits tell every float apart.
std::string toText(double value)
{
    std::ostringstream text;
    text.precision(9);
    text << value;
    return text.str();
}

template<class... Arguments>
std::string textOf(eFilteringRuleMessage::domain message, const Arguments&... arguments)
{
    return messageText(getORVIKIPLFilteringLogMessageManager(), message, arguments...);
}

class FiniteAboveZero : public processor::BaseValuePropertyRule
{
public:
    explicit FiniteAboveZero(double (*read)(const BaseAttribute&)) : m_read(read) {}
    processor::eValueRuleType getValueRuleType() const override { return processor::eVRT_Property; }
    bool testRule() const override
    {
        const double value = m_read(*getAttribute1());
        return value > 0.0 && std::isfinite(value);
    }
    std::string createRuleFormalString() const override
    {
        return textOf(eFilteringRuleMessage::eFiniteAboveZero, getAttribute1()->getObjectName());
    }
    std::string createRuleEvaluatedString(unsigned int depth) const override
    {
        return createRuleEvaluatedStartString(depth)
               + textOf(eFilteringRuleMessage::eNotFiniteAboveZero, getAttribute1()->getObjectName(),
                        toText(m_read(*getAttribute1())))
               + "\n";
    }

private:
    double (*m_read)(const BaseAttribute&);
};

class KernelFits : public processor::BaseAttributeComparisonRule
{
public:
    processor::eValueRuleType getValueRuleType() const override { return processor::eVRT_Attributes; }
    /// Holds for values that are no numbers: the other rules refuse them.
    bool testRule() const override { return !(halfSize() > g_maxGaussianHalfSize); }
    std::string createRuleFormalString() const override
    {
        return textOf(eFilteringRuleMessage::eKernelFits, getAttribute1()->getObjectName(), getAttribute2()->getObjectName(),
                      toText(g_maxGaussianHalfSize));
    }
    std::string createRuleEvaluatedString(unsigned int depth) const override
    {
        return createRuleEvaluatedStartString(depth)
               + textOf(eFilteringRuleMessage::eKernelSize, getAttribute1()->getObjectName(),
                        toText(stdDevOf(*getAttribute1())), getAttribute2()->getObjectName(),
                        toText(coverageOf(*getAttribute2())), toText(halfSize()), toText(g_maxGaussianHalfSize))
               + "\n";
    }

private:
    double halfSize() const { return getGaussianHalfSize(stdDevOf(*getAttribute1()), coverageOf(*getAttribute2())); }
};

processor::RulePtr finiteAboveZero(const processor::WeakAttribute& attribute, double (*read)(const BaseAttribute&))
{
    const boost::shared_ptr<FiniteAboveZero> rule = makeTogether<FiniteAboveZero>(read);
    rule->initBase(attribute);
    return rule;
}

}  // namespace

processor::RulePtr makesGaussian(const processor::WeakAttribute& stdDev, const processor::WeakAttribute& coverage)
{
    const boost::shared_ptr<KernelFits> fits = makeTogether<KernelFits>();
    fits->initBase(stdDev, coverage);
    return finiteAboveZero(stdDev, &stdDevOf) && finiteAboveZero(coverage, &coverageOf) && fits;
}

}}}  // namespace orvik::imaproc::filter
