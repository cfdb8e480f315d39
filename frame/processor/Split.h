#pragma once

#include "frame/core/ActionProvider.h"
#include "frame/processor/BaseProcessor.h"
#include "frame/processor/ElementsRange.h"

#include <boost/function.hpp>

#include <cmath>

namespace orvik { namespace processor {

/// Where elements lie. In one process every element lies here; the class is kept for splits that ask.
class ORVIK_API ElementsLocationInfo
{
public:
    void insertNonLocalized(const ElementsRange& range, unsigned long location) { m_nonLocalized[range] = location; }
    void insertLocal(const ElementsRange& range, unsigned long location) { m_local[range] = location; }
    bool isLocalized() const { return !m_local.empty(); }

private:
    std::map<ElementsRange, unsigned long> m_nonLocalized, m_local;
};

enum eSplitBaseType : unsigned int
{
    eSBT_Static = 0,
    eSBT_Dynamic = 1
};

enum eSplitStaticType : unsigned int
{
    eSST_NoSplit = 0,
    eSST_Result = 1,
    eSST_Data = 3
};

enum eSplitDynamicType : unsigned int
{
    eSDT_NoSplit = 0,
    eSDT_ByCreationResult = 2,
    eSDT_ByRangeData = 3,
    eSDT_ImageStrip = 4
};

/// Gives each child of a dispatcher its part of one attribute.
class ORVIK_API BaseDataSplit
{
public:
    virtual ~BaseDataSplit();
    virtual eSplitBaseType getSplitBaseType() const = 0;
    virtual const std::string& getAttributeName() const = 0;
    virtual const std::string& getAttributeToolTip() const = 0;
    /// Whether a child is of the class that the split was made for.
    virtual bool checkProcessorType(const BaseProcessor& child) const = 0;
    /// Elements that the split has; 0 for one that fits any number.
    virtual unsigned long getNbElements() const;

    /// @throws ORVIKBaseProcessingException: an image, list or map given to a split is null.
    [[noreturn]] static void throwNullInputSharedPtr();
};

/// Elements are known when the dispatcher is made.
class ORVIK_API BaseStaticSplit : public BaseDataSplit
{
public:
    ~BaseStaticSplit() override;
    eSplitBaseType getSplitBaseType() const override { return eSBT_Static; }
    virtual eSplitStaticType getSplitStaticType() const = 0;
    virtual BoolResult processAttribute(BaseProcessor& child, unsigned int index, const core::BaseRequestOrigin& origin) = 0;
    void initBaseUnSplitted(const ElementsLocationInfo& info) { m_location = info; }

private:
    ElementsLocationInfo m_location;
};

/// Ranges of elements, such as lines, chosen when the work runs.
class ORVIK_API BaseDynamicSplit : public BaseDataSplit
{
public:
    ~BaseDynamicSplit() override;
    eSplitBaseType getSplitBaseType() const override { return eSBT_Dynamic; }
    virtual eSplitDynamicType getSplitDynamicType() const = 0;
    virtual BoolResult processAttribute(BaseProcessor& child, unsigned long start, unsigned long count,
                                        const core::BaseRequestOrigin& origin) = 0;
    /// Elements before and after a range that its child reads as well.
    virtual unsigned long getMargin() const;
    /// Samples in one element, for choosing how many make a worthwhile range.
    virtual unsigned long getElementSamples() const;
    void initUnSplitted(const ElementsLocationInfo& info) { m_location = info; }

private:
    ElementsLocationInfo m_location;
};

/// The part of a split that knows its child `P` and its attribute `A`.
template<class P, class A, class Base>
class TypedSplit : public Base
{
public:
    using Base::Base;
    const std::string& getAttributeName() const override { return A::getObjectNameStr(); }
    const std::string& getAttributeToolTip() const override { return A::getToolTipStr(); }
    bool checkProcessorType(const BaseProcessor& child) const override { return dynamic_cast<const P*>(&child) != nullptr; }

protected:
    /// Sets the child's part.
    BoolResult give(BaseProcessor& child, const typename A::StorageType& value)
    {
        static_cast<P&>(child).template set<A>(value);
        return success();
    }
};

template<class P, class A>
class StaticNoSplit : public TypedSplit<P, A, BaseStaticSplit>
{
public:
    explicit StaticNoSplit(const typename A::StorageType& value) : m_value(value) {}
    eSplitStaticType getSplitStaticType() const override { return eSST_NoSplit; }
    BoolResult processAttribute(BaseProcessor& child, unsigned int, const core::BaseRequestOrigin&) override
    {
        return this->give(child, m_value);
    }

private:
    typename A::StorageType m_value;
};

template<class P, class A>
class DynamicNoSplit : public TypedSplit<P, A, BaseDynamicSplit>
{
public:
    explicit DynamicNoSplit(const typename A::StorageType& value) : m_value(value) {}
    eSplitDynamicType getSplitDynamicType() const override { return eSDT_NoSplit; }
    BoolResult processAttribute(BaseProcessor& child, unsigned long, unsigned long, const core::BaseRequestOrigin&) override
    {
        return this->give(child, m_value);
    }

private:
    typename A::StorageType m_value;
};

/// What is no attribute, for every child: `set` is a function of class `P` that takes it.
template<class P, class T>
class DynamicSetterSplit : public BaseDynamicSplit
{
public:
    typedef void (P::*Setter)(const T&);

    DynamicSetterSplit(Setter set, const T& value) : m_set(set), m_value(value) {}
    const std::string& getAttributeName() const override { return P::getObjectNameStr(); }
    const std::string& getAttributeToolTip() const override { return P::getToolTipStr(); }
    bool checkProcessorType(const BaseProcessor& child) const override { return dynamic_cast<const P*>(&child) != nullptr; }
    eSplitDynamicType getSplitDynamicType() const override { return eSDT_NoSplit; }
    BoolResult processAttribute(BaseProcessor& child, unsigned long, unsigned long, const core::BaseRequestOrigin&) override
    {
        (static_cast<P&>(child).*m_set)(m_value);
        return success();
    }

private:
    Setter m_set;
    T m_value;
};

/// The location of a result that is made once per element.
inline ElementsLocationInfo unsplitLocation()
{
    ElementsLocationInfo info;
    info.insertNonLocalized(ElementsRange(0, 1), 0);
    return info;
}

/// A copy of a prototype per element, kept in the parent's map under the element's index.
template<class P, class A>
class StaticResultSplit : public TypedSplit<P, A, BaseStaticSplit>
{
public:
    typedef typename A::Entry Result;
    typedef std::map<unsigned int, boost::shared_ptr<Result>> ResultMap;

    /// Empties the map.
    void init(const boost::shared_ptr<ResultMap>& results, const boost::shared_ptr<Result>& prototype)
    {
        if (!results || !prototype)
            BaseDataSplit::throwNullInputSharedPtr();
        this->initBaseUnSplitted(unsplitLocation());
        m_results = results;
        m_results->clear();
        m_prototype = prototype;
    }
    eSplitStaticType getSplitStaticType() const override { return eSST_Result; }
    BoolResult processAttribute(BaseProcessor& child, unsigned int index, const core::BaseRequestOrigin&) override
    {
        const boost::shared_ptr<Result> result = boost::make_shared<Result>(*m_prototype);
        (*m_results)[index] = result;
        return this->give(child, result);
    }

private:
    boost::shared_ptr<ResultMap> m_results;
    boost::shared_ptr<Result> m_prototype;
};

template<class Result>
boost::shared_ptr<Result> defaultDynamicByCreationResultSplitCreationFun(unsigned long, unsigned long)
{
    return boost::make_shared<Result>();
}

/// A new result per range, kept in the parent's map under the range.
template<class P, class A>
class DynamicByCreationResultSplit : public TypedSplit<P, A, BaseDynamicSplit>
{
public:
    typedef typename A::Entry Result;
    typedef std::map<ElementsRange, boost::shared_ptr<Result>> ResultMap;
    typedef boost::function<boost::shared_ptr<Result>(unsigned long, unsigned long)> CreationFunction;

    /// Empties the map.
    void init(const boost::shared_ptr<ResultMap>& results,
              const CreationFunction& creationFunction = &defaultDynamicByCreationResultSplitCreationFun<Result>)
    {
        if (!results)
            BaseDataSplit::throwNullInputSharedPtr();
        this->initUnSplitted(unsplitLocation());
        m_results = results;
        m_results->clear();
        m_creationFunction = creationFunction;
    }
    eSplitDynamicType getSplitDynamicType() const override { return eSDT_ByCreationResult; }
    BoolResult processAttribute(BaseProcessor& child, unsigned long start, unsigned long count,
                                const core::BaseRequestOrigin&) override
    {
        const boost::shared_ptr<Result> result = m_creationFunction(start, count);
        (*m_results)[ElementsRange(start, count)] = result;
        return this->give(child, result);
    }

private:
    boost::shared_ptr<ResultMap> m_results;
    CreationFunction m_creationFunction;
};

/// Those records of a list whose key lies in the range, rounded to the nearest whole number, so that each record goes to
/// exactly one range. The lists are kept in the parent's map, and beside it the places that their records had in the
/// whole list.
template<class P, class A, class Coll, class Key>
class DynamicByRangeDataSplit : public TypedSplit<P, A, BaseDynamicSplit>
{
public:
    typedef typename A::Entry List;
    typedef std::map<ElementsRange, boost::shared_ptr<List>> ListMap;
    typedef std::map<ElementsRange, std::vector<unsigned long>> IndexMap;

    /// Empties both maps.
    void init(const boost::shared_ptr<const List>& source, const boost::shared_ptr<ListMap>& lists,
              const boost::shared_ptr<IndexMap>& indices)
    {
        if (!source || !lists || !indices)
            BaseDataSplit::throwNullInputSharedPtr();
        m_source = source;
        m_lists = lists;
        m_lists->clear();
        m_indices = indices;
        m_indices->clear();
    }
    eSplitDynamicType getSplitDynamicType() const override { return eSDT_ByRangeData; }
    BoolResult processAttribute(BaseProcessor& child, unsigned long start, unsigned long count,
                                const core::BaseRequestOrigin&) override
    {
        const boost::shared_ptr<List> list = List::createNode();
        std::vector<unsigned long> indices;
        const auto& nodes = m_source->template get<Coll>().getNodes();
        for (unsigned long i = 0; i < nodes.size(); ++i) {
            // Truncation of key + 0.5: the row that owns the feature. A key that is none lies in no range.
            const double row = std::trunc(nodes[i]->template get<Key>() + 0.5);
            if (static_cast<double>(start) <= row && row < static_cast<double>(start + count)) {
                list->template access<Coll>().push_back(nodes[i]);
                indices.push_back(i);
            }
        }
        (*m_lists)[ElementsRange(start, count)] = list;
        (*m_indices)[ElementsRange(start, count)] = indices;
        return this->give(child, list);
    }

private:
    boost::shared_ptr<const List> m_source;
    boost::shared_ptr<ListMap> m_lists;
    boost::shared_ptr<IndexMap> m_indices;
};

}}  // namespace orvik::processor
