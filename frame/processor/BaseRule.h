#pragma once

#include "frame/processor/BaseAttribute.h"
#include "frame/util/Arena.h"

#include <boost/weak_ptr.hpp>

namespace orvik { namespace processor {

enum eRuleType : unsigned int
{
    eRT_Combinator = 0,
    eRT_Attribute = 1
};

enum eAttributeRuleType : unsigned int
{
    eART_Optional = 0,
    eART_DataItem = 1,
    eART_Value = 2,
    eART_ImageProcessing = 3
};

/// A condition on the attributes of a processor, or a tree of them. Rules hold attributes weakly: the processor owns
/// both.
class ORVIK_API BaseRule
{
public:
    virtual ~BaseRule();
    virtual eRuleType getRuleType() const = 0;
    /// Whether the attributes are acceptable. A comparison with a side that has no value yet holds.
    virtual bool testRule() const = 0;
    /// The condition without values.
    virtual std::string createRuleFormalString() const = 0;
    /// The condition with both values, one line per leaf, the failed ones marked. `depth` grows with each combinator.
    virtual std::string createRuleEvaluatedString(unsigned int depth) const = 0;
    /// Indentation and mark ("ok: " or "failed: ") of an evaluated line.
    std::string createRuleEvaluatedStartString(unsigned int depth) const;
};

typedef boost::shared_ptr<BaseRule> RulePtr;
typedef boost::weak_ptr<const BaseAttribute> WeakAttribute;

/// A rule on one or two attributes.
class ORVIK_API BaseAttributeRule : public BaseRule
{
public:
    ~BaseAttributeRule() override;
    eRuleType getRuleType() const override { return eRT_Attribute; }
    virtual eAttributeRuleType getAttributeRuleType() const = 0;

    /// @throws ORVIKBaseProcessingException for an attribute that was null.
    void initBase(const WeakAttribute& attribute1, const WeakAttribute& attribute2);
    void initBase(const WeakAttribute& attribute1);
    bool isInitialised() const { return m_nbAttributes > 0; }
    /// @throws ORVIKBaseProcessingException before `initBase`, and when the attribute is gone.
    boost::shared_ptr<const BaseAttribute> getAttribute1() const { return lock(m_attribute1, m_nbAttributes > 0); }
    boost::shared_ptr<const BaseAttribute> getAttribute2() const { return lock(m_attribute2, m_nbAttributes > 1); }

protected:
    static boost::shared_ptr<const BaseAttribute> lock(const WeakAttribute& attribute, bool initialised);

private:
    WeakAttribute m_attribute1, m_attribute2;
    unsigned int m_nbAttributes = 0;
};

class ORVIK_API BaseOptionalRule : public BaseAttributeRule
{
public:
    ~BaseOptionalRule() override;
    eAttributeRuleType getAttributeRuleType() const override { return eART_Optional; }
};

/// Holds when an optional attribute has a value: the condition of `If`.
class ORVIK_API RuleOptionalIsSet : public BaseOptionalRule
{
public:
    ~RuleOptionalIsSet() override;
    void init(const WeakAttribute& attribute) { initBase(attribute); }
    bool testRule() const override;
    std::string createRuleFormalString() const override;
    std::string createRuleEvaluatedString(unsigned int depth) const override;
};

// Kinds of rules on records and values; each adds the question that tells its sub-kind apart.
enum eDataItemRuleType : unsigned int
{
    eDIRT_Leaf = 0,
    eDIRT_NodeColl = 1,
    eDIRT_LeafColl = 2
};

class ORVIK_API BaseDataItemRule : public BaseAttributeRule
{
public:
    eAttributeRuleType getAttributeRuleType() const override { return eART_DataItem; }
    virtual eDataItemRuleType getDataItemRuleType() const = 0;
};

enum eLeafRuleType : unsigned int
{
    eLRT_Property = 0,
    eLRT_Leafs = 1,
    eLRT_LeafValue = 2
};

class ORVIK_API BaseLeafRule : public BaseDataItemRule
{
public:
    eDataItemRuleType getDataItemRuleType() const override { return eDIRT_Leaf; }
    virtual eLeafRuleType getLeafRuleType() const = 0;
};

class ORVIK_API BaseLeafPropertyRule : public BaseLeafRule
{
public:
    eLeafRuleType getLeafRuleType() const override { return eLRT_Property; }
};

class ORVIK_API BaseLeafsComparisonRule : public BaseLeafRule
{
public:
    eLeafRuleType getLeafRuleType() const override { return eLRT_Leafs; }
};

class ORVIK_API BaseLeafValueComparisonRule : public BaseLeafRule
{
public:
    eLeafRuleType getLeafRuleType() const override { return eLRT_LeafValue; }
};

enum eNodeCollRuleType : unsigned int
{
    eNCRT_Size = 0,
    eNCRT_Sizes = 1
};

class ORVIK_API BaseNodeCollRule : public BaseDataItemRule
{
public:
    eDataItemRuleType getDataItemRuleType() const override { return eDIRT_NodeColl; }
    virtual eNodeCollRuleType getNodeCollRuleType() const = 0;
};

class ORVIK_API BaseNodeCollSizeRule : public BaseNodeCollRule
{
public:
    eNodeCollRuleType getNodeCollRuleType() const override { return eNCRT_Size; }
};

class ORVIK_API BaseNodesCollSizeRule : public BaseNodeCollRule
{
public:
    eNodeCollRuleType getNodeCollRuleType() const override { return eNCRT_Sizes; }
};

class ORVIK_API BaseLeafCollRule : public BaseDataItemRule
{
public:
    eDataItemRuleType getDataItemRuleType() const override { return eDIRT_LeafColl; }
};

enum eValueRuleType : unsigned int
{
    eVRT_Property = 0,
    eVRT_Value = 1,
    eVRT_Attributes = 2
};

class ORVIK_API BaseValueRule : public BaseAttributeRule
{
public:
    eAttributeRuleType getAttributeRuleType() const override { return eART_Value; }
    virtual eValueRuleType getValueRuleType() const = 0;
};

class ORVIK_API BaseValuePropertyRule : public BaseValueRule
{
public:
    eValueRuleType getValueRuleType() const override { return eVRT_Property; }
};

class ORVIK_API BaseValueComparisonRule : public BaseValueRule
{
public:
    eValueRuleType getValueRuleType() const override { return eVRT_Value; }
};

class ORVIK_API BaseAttributeComparisonRule : public BaseValueRule
{
public:
    eValueRuleType getValueRuleType() const override { return eVRT_Attributes; }
};

/// Both hold.
ORVIK_API RulePtr operator&&(const RulePtr& a, const RulePtr& b);
/// The condition is false, or `thenRule` holds.
ORVIK_API RulePtr If(const RulePtr& condition, const RulePtr& thenRule);
/// `thenRule` holds when the condition does, `elseRule` otherwise.
ORVIK_API RulePtr If(const RulePtr& condition, const RulePtr& thenRule, const RulePtr& elseRule);
/// `a` does not hold.
ORVIK_API RulePtr Not(const RulePtr& a);
/// Always holds.
ORVIK_API RulePtr none();
/// RuleOptionalIsSet on that attribute.
ORVIK_API RulePtr isSet(const WeakAttribute& attribute);

}}  // namespace orvik::processor
