#pragma once

#include "frame/serialization/DataItem.h"
#include "frame/serialization/PlanIndexedColl.h"
#include "frame/util/KeptText.h"

#include <string>
#include <type_traits>

namespace orvik { namespace processor {

/// One argument or result of a processor: a value in a role that has a name.
class ORVIK_API BaseAttribute
{
public:
    BaseAttribute();
    virtual ~BaseAttribute();
    BaseAttribute(const BaseAttribute&) = delete;
    BaseAttribute& operator=(const BaseAttribute&) = delete;

    virtual const std::string& getObjectName() const = 0;
    virtual const std::string& getToolTip() const = 0;
    virtual bool isOutput() const = 0;
    virtual bool isOptional() const = 0;
    /// Whether a run can't do without a value. A number or enumerator that is a result is written where it stands.
    virtual bool isMandatory() const { return !isOptional(); }

    /// Whether the attribute was given a value. A null pointer is none; nor is the default of an optional attribute.
    bool hasValue() const { return m_hasValue; }
    /// Takes the value away; an optional attribute then reads as its default.
    virtual void clear();

    /// An output that an initialiser made belongs to one run: the next one makes its own.
    bool isMadeByInitializer() const { return m_madeByInitializer; }
    void setMadeByInitializer(bool made) { m_madeByInitializer = made; }

    /// Whether the value is a parameter that archives keep; images, strips and results are not.
    virtual bool isStored() const;
    virtual BoolResult write(BaseOArchive& archive) const;
    virtual BoolResult read(BaseIArchive& archive);

    /// Shows a parameter to whoever may change it, and takes the result as its value: the leaves of a record, or a number
    /// or enumerator under the name "value". An attribute without value shows its default, or a new record. False for
    /// images, strips and results.
    virtual bool setByVisitor(BaseLeafVisitor& visitor);

protected:
    void setHasValue(bool hasValue);

private:
    bool m_hasValue;
    bool m_madeByInitializer;
};

/// A value held by the attribute itself: a number or an enumerator.
template<class T>
class BaseValueAttribute : public BaseAttribute
{
public:
    typedef T StorageType;

    void initBase(const T& value)
    {
        m_value = value;
        setHasValue(true);
    }
    void assign(const T& value) { initBase(value); }
    T& accessValue() { return m_value; }
    const T& getStorage() const { return m_value; }
    void setDefault(const T& value) { m_value = m_default = value; }
    void clear() override
    {
        BaseAttribute::clear();
        m_value = m_default;
    }
    bool isMandatory() const override { return !isOptional() && !isOutput(); }
    bool isStored() const override { return !isOutput(); }
    BoolResult write(BaseOArchive& archive) const override;
    BoolResult read(BaseIArchive& archive) override;
    bool setByVisitor(BaseLeafVisitor& visitor) override
    {
        if (isOutput())
            return false;
        T value = m_value;
        visitLeaf(visitor, "value", value);
        initBase(value);
        return true;
    }

private:
    T m_value = T();
    T m_default = T();
};

/// A record held by the attribute.
class ORVIK_API BaseDataItemAttribute : public BaseAttribute
{
public:
    ~BaseDataItemAttribute() override;
    /// The record, or the default of an optional attribute; null when there is neither.
    virtual boost::shared_ptr<const BaseDataItemNode> accessDataItemNodePtr() const = 0;
    /// A new empty record of the attribute's type becomes its value.
    virtual void initEmpty() = 0;
};

class ORVIK_API BaseInputMandatoryDataItemAttribute : public BaseDataItemAttribute
{
public:
    ~BaseInputMandatoryDataItemAttribute() override;
};

class ORVIK_API BaseInputOptionalDataItemAttribute : public BaseDataItemAttribute
{
public:
    ~BaseInputOptionalDataItemAttribute() override;
};

class ORVIK_API BaseOutputMandatoryDataItemAttribute : public BaseDataItemAttribute
{
public:
    ~BaseOutputMandatoryDataItemAttribute() override;
};

/// `Record` may be const: inputs hold records that they only read.
template<class Record, class Base>
class DataItemStorage : public Base
{
public:
    typedef boost::shared_ptr<Record> StorageType;
    typedef typename std::remove_const<Record>::type Entry;

    void init(const StorageType& value)
    {
        m_value = value ? value : m_default;
        this->setHasValue(value != nullptr);
    }
    void initEmpty() override { init(Entry::createNode()); }
    void assign(const StorageType& value) { init(value); }
    const StorageType& getDataItemNode() const { return m_value; }
    const StorageType& getStorage() const { return m_value; }
    boost::shared_ptr<const BaseDataItemNode> accessDataItemNodePtr() const override { return m_value; }
    void setDefault(const StorageType& value) { m_value = m_default = value; }
    void clear() override
    {
        Base::clear();
        m_value = m_default;
    }
    bool isStored() const override { return std::is_const<Record>::value; }
    BoolResult write(BaseOArchive& archive) const override { return m_value ? m_value->write(archive) : success(); }
    BoolResult read(BaseIArchive& archive) override
    {
        const boost::shared_ptr<Entry> value = Entry::createNode();
        const BoolResult result = value->read(archive);
        if (result)
            init(value);
        return result;
    }
    bool setByVisitor(BaseLeafVisitor& visitor) override
    {
        if (!isStored())
            return false;
        const boost::shared_ptr<Entry> value = Entry::createNode();
        if (m_value)
            *value = *m_value;
        value->visitLeaves(visitor);
        init(value);
        return true;
    }

private:
    StorageType m_value;
    StorageType m_default;
};

template<class Record>
using InputDataItem = DataItemStorage<const Record, BaseInputMandatoryDataItemAttribute>;
template<class Record>
using InputOptionalDataItem = DataItemStorage<const Record, BaseInputOptionalDataItemAttribute>;
template<class Record>
using OutputDataItem = DataItemStorage<Record, BaseOutputMandatoryDataItemAttribute>;

/// The place of a concrete attribute among the others: its name, its direction, whether it may stay unset.
template<class D, class Storage, bool Output, bool Optional>
class AttributeRole : public Storage
{
public:
    static constexpr bool g_bOutput = Output;
    static constexpr bool g_bOptional = Optional;

    static const std::string& getObjectNameStr()
    {
        static const std::string& name = keptText(D::s_name);
        return name;
    }
    static const std::string& getToolTipStr()
    {
        static const std::string& tip = keptText(D::s_toolTip);
        return tip;
    }
    const std::string& getObjectName() const override { return getObjectNameStr(); }
    const std::string& getToolTip() const override { return getToolTipStr(); }
    bool isOutput() const override { return Output; }
    bool isOptional() const override { return Optional; }
};

// One line per attribute. Mandatory inputs are checked before a run; outputs are made where the caller gave none.
#define ORVIK_ATTRIBUTE_ROLE(Name, Storage, Output, Optional, ToolTip) \
    struct Name : ::orvik::processor::AttributeRole<Name, Storage, Output, Optional> \
    { \
        static constexpr const char* s_name = #Name; \
        static constexpr const char* s_toolTip = ToolTip; \
    }
#define ORVIK_INPUT(Name, Storage, ToolTip) ORVIK_ATTRIBUTE_ROLE(Name, ORVIK_STORAGE Storage, false, false, ToolTip)
#define ORVIK_OUTPUT(Name, Storage, ToolTip) ORVIK_ATTRIBUTE_ROLE(Name, ORVIK_STORAGE Storage, true, false, ToolTip)
#define ORVIK_OPTIONAL_OUTPUT(Name, Storage, ToolTip) ORVIK_ATTRIBUTE_ROLE(Name, ORVIK_STORAGE Storage, true, true, ToolTip)
/// An optional input that reads as `Default` while it is unset.
#define ORVIK_OPTIONAL_INPUT(Name, Storage, Default, ToolTip) \
    struct Name : ::orvik::processor::AttributeRole<Name, ORVIK_STORAGE Storage, false, true> \
    { \
        static constexpr const char* s_name = #Name; \
        static constexpr const char* s_toolTip = ToolTip; \
        Name() { this->setDefault(Default); } \
    }
/// An optional image that is only read: none while it is unset.
#define ORVIK_OPTIONAL_IMAGE(Name, Storage, ToolTip) ORVIK_ATTRIBUTE_ROLE(Name, ORVIK_STORAGE Storage, false, true, ToolTip)
// The storage stands in parentheses, so that commas of template arguments pass through the macros.
#define ORVIK_STORAGE(...) __VA_ARGS__

}}  // namespace orvik::processor
