#include "frame/processor/BaseRule.h"

#include "frame/util/FrameMessages.h"

#include <boost/make_shared.hpp>

namespace orvik { namespace processor {

namespace {

template<class... Arguments>
std::string textOf(eRuleMessage::domain message, const Arguments&... arguments)
{
    return messageText(getORVIKBaseProcessingLogMessageManager(), message, arguments...);
}

class CombinedRule : public BaseRule
{
public:
    eRuleType getRuleType() const override { return eRT_Combinator; }
};

class AndRule : public CombinedRule
{
public:
    AndRule(const RulePtr& a, const RulePtr& b) : m_a(a), m_b(b) {}
    bool testRule() const override { return m_a->testRule() && m_b->testRule(); }
    std::string createRuleFormalString() const override
    {
        return textOf(eRuleMessage::eBothHold, m_a->createRuleFormalString(), m_b->createRuleFormalString());
    }
    std::string createRuleEvaluatedString(unsigned int depth) const override
    {
        return createRuleEvaluatedStartString(depth) + textOf(eRuleMessage::eAllHold) + "\n"
               + createListOf(*this, depth + 1);
    }

private:
    /// A chain of such rules reads as one list.
    static std::string createListOf(const BaseRule& rule, unsigned int depth)
    {
        const AndRule* const chain = dynamic_cast<const AndRule*>(&rule);
        return chain ? createListOf(*chain->m_a, depth) + createListOf(*chain->m_b, depth)
                     : rule.createRuleEvaluatedString(depth);
    }

    RulePtr m_a, m_b;
};

class IfRule : public CombinedRule
{
public:
    IfRule(const RulePtr& condition, const RulePtr& thenRule, const RulePtr& elseRule)
        : m_condition(condition), m_then(thenRule), m_else(elseRule)
    {
    }
    bool testRule() const override { return m_condition->testRule() ? m_then->testRule() : m_else->testRule(); }
    std::string createRuleFormalString() const override
    {
        return textOf(eRuleMessage::eIf, m_condition->createRuleFormalString(), m_then->createRuleFormalString(),
                      m_else->createRuleFormalString());
    }
    std::string createRuleEvaluatedString(unsigned int depth) const override
    {
        const bool condition = m_condition->testRule();
        return createRuleEvaluatedStartString(depth)
               + textOf(condition ? eRuleMessage::eAsConditionHolds : eRuleMessage::eAsConditionFails,
                        m_condition->createRuleFormalString())
               + "\n" + (condition ? m_then : m_else)->createRuleEvaluatedString(depth + 1);
    }

private:
    RulePtr m_condition, m_then, m_else;
};

class NotRule : public CombinedRule
{
public:
    explicit NotRule(const RulePtr& a) : m_a(a) {}
    bool testRule() const override { return !m_a->testRule(); }
    std::string createRuleFormalString() const override { return textOf(eRuleMessage::eNot, m_a->createRuleFormalString()); }
    std::string createRuleEvaluatedString(unsigned int depth) const override
    {
        return createRuleEvaluatedStartString(depth) + textOf(eRuleMessage::eDoesNotHold) + "\n"
               + m_a->createRuleEvaluatedString(depth + 1);
    }

private:
    RulePtr m_a;
};

class NoneRule : public CombinedRule
{
public:
    bool testRule() const override { return true; }
    std::string createRuleFormalString() const override { return textOf(eRuleMessage::eNone); }
    std::string createRuleEvaluatedString(unsigned int depth) const override
    {
        return createRuleEvaluatedStartString(depth) + textOf(eRuleMessage::eNoCondition) + "\n";
    }
};

void checkNotNull(const WeakAttribute& attribute)
{
    if (!attribute.lock())
        ORVIK_THROW(ORVIKBaseProcessingException, g_baseProcessingLogSource, eRuleMessage::eNullAttribute);
}

}  // namespace

BaseRule::~BaseRule() = default;

std::string BaseRule::createRuleEvaluatedStartString(unsigned int depth) const
{
    return std::string(2ul * depth, ' ') + textOf(testRule() ? eRuleMessage::eHolds : eRuleMessage::eFails);
}

BaseAttributeRule::~BaseAttributeRule() = default;

void BaseAttributeRule::initBase(const WeakAttribute& attribute1)
{
    checkNotNull(attribute1);
    m_attribute1 = attribute1;
    m_nbAttributes = 1;
}

void BaseAttributeRule::initBase(const WeakAttribute& attribute1, const WeakAttribute& attribute2)
{
    initBase(attribute1);
    checkNotNull(attribute2);
    m_attribute2 = attribute2;
    m_nbAttributes = 2;
}

boost::shared_ptr<const BaseAttribute> BaseAttributeRule::lock(const WeakAttribute& attribute, bool initialised)
{
    if (!initialised)
        ORVIK_THROW(ORVIKBaseProcessingException, g_baseProcessingLogSource, eRuleMessage::eNotInitialised);
    const boost::shared_ptr<const BaseAttribute> locked = attribute.lock();
    if (!locked)
        ORVIK_THROW(ORVIKBaseProcessingException, g_baseProcessingLogSource, eRuleMessage::eAttributeExpired);
    return locked;
}

BaseOptionalRule::~BaseOptionalRule() = default;
RuleOptionalIsSet::~RuleOptionalIsSet() = default;

bool RuleOptionalIsSet::testRule() const
{
    return getAttribute1()->hasValue();
}

std::string RuleOptionalIsSet::createRuleFormalString() const
{
    return textOf(eRuleMessage::eIsSet, getAttribute1()->getObjectName());
}

std::string RuleOptionalIsSet::createRuleEvaluatedString(unsigned int depth) const
{
    return createRuleEvaluatedStartString(depth) + createRuleFormalString() + "\n";
}

RulePtr operator&&(const RulePtr& a, const RulePtr& b)
{
    return makeTogether<AndRule>(a, b);
}

RulePtr If(const RulePtr& condition, const RulePtr& thenRule)
{
    return If(condition, thenRule, none());
}

RulePtr If(const RulePtr& condition, const RulePtr& thenRule, const RulePtr& elseRule)
{
    return makeTogether<IfRule>(condition, thenRule, elseRule);
}

RulePtr Not(const RulePtr& a)
{
    return makeTogether<NotRule>(a);
}

RulePtr none()
{
    static const RulePtr* const rule = new RulePtr(boost::make_shared<NoneRule>());
    return *rule;
}

RulePtr isSet(const WeakAttribute& attribute)
{
    const boost::shared_ptr<RuleOptionalIsSet> rule = makeTogether<RuleOptionalIsSet>();
    rule->init(attribute);
    return rule;
}

}}  // namespace orvik::processor
