#pragma once

#include "frame/serialization/BaseSerializationObject.h"

#include <boost/shared_ptr.hpp>

#include <map>
#include <tuple>
#include <vector>

namespace orvik {

/// Address of a plane of an image: slice, channel, time. For a list per volume, z is 0.
struct PlanIndex
{
    PlanIndex(unsigned long zIndex = 0, unsigned long cIndex = 0, unsigned long tIndex = 0) : z(zIndex), c(cIndex), t(tIndex)
    {
    }

    unsigned long z;
    unsigned long c;
    unsigned long t;
};

/// The order in which the planes of an image run: z fastest, then c, then t.
inline bool operator<(const PlanIndex& a, const PlanIndex& b)
{
    return std::tie(a.t, a.c, a.z) < std::tie(b.t, b.c, b.z);
}

inline bool operator==(const PlanIndex& a, const PlanIndex& b)
{
    return a.z == b.z && a.c == b.c && a.t == b.t;
}

/// The plane that comes at place `index` in that order.
inline PlanIndex planAt(unsigned long index, unsigned long sizeZ, unsigned long sizeC)
{
    return PlanIndex(index % sizeZ, index / sizeZ % sizeC, index / (sizeZ * sizeC));
}

/// Calls f with each plane in that order.
template<class F>
void forEachPlan(unsigned long sizeZ, unsigned long sizeC, unsigned long sizeT, const F& f)
{
    for (unsigned long i = 0; i < sizeZ * sizeC * sizeT; ++i)
        f(planAt(i, sizeZ, sizeC));
}

/// One result per plane or volume of an image.
class ORVIK_API BasePlanIndexedColl : public BaseSerializationObject
{
public:
    BasePlanIndexedColl();
    ~BasePlanIndexedColl() override;

    std::size_t getNbPlans() const { return m_entries.size(); }
    /// The entry of a plane; null when there is none.
    boost::shared_ptr<const BaseSerializationObject> getStorage(const PlanIndex& index) const;
    boost::shared_ptr<BaseSerializationObject> getStorage(const PlanIndex& index);
    /// Adds an entry, or replaces the one of that plane. @throws ORVIKUtilException for an entry of another type.
    void insert(const PlanIndex& index, const boost::shared_ptr<BaseSerializationObject>& entry);
    void clear() { m_entries.clear(); }
    /// The planes that have an entry, z fastest, then c, then t.
    std::vector<PlanIndex> getPlans() const;

    /// A new empty entry of the type that this collection holds.
    virtual boost::shared_ptr<BaseSerializationObject> createEntry() const = 0;

protected:
    virtual bool accepts(const BaseSerializationObject& entry) const = 0;

private:
    std::map<PlanIndex, boost::shared_ptr<BaseSerializationObject>> m_entries;
};

/// Declares a plan-indexed collection of records `Entry`; its body is compiled with ORVIK_PLAN_INDEXED_DEFINE, so that
/// the object outlives the library that asked for it.
#define ORVIK_PLAN_INDEXED(Name, EntryType) \
    class ORVIK_API Name : public ::orvik::BasePlanIndexedColl \
    { \
    public: \
        typedef EntryType Entry; \
        Name(); \
        ~Name() override; \
        static boost::shared_ptr<Name> createColl(); \
        /** One empty entry, of the first plane: for the result of an image of a single plane. */ \
        static boost::shared_ptr<Name> createOfOnePlane(); \
        /** The entry of a plane, with its own type; null when there is none. */ \
        boost::shared_ptr<EntryType> getEntry(const ::orvik::PlanIndex& index) const; \
        boost::shared_ptr<::orvik::BaseSerializationObject> createEntry() const override; \
\
    protected: \
        bool accepts(const ::orvik::BaseSerializationObject& entry) const override; \
    }

#define ORVIK_PLAN_INDEXED_DEFINE(Name) \
    Name::Name() = default; \
    Name::~Name() = default; \
    boost::shared_ptr<Name> Name::createColl() \
    { \
        return boost::make_shared<Name>(); \
    } \
    boost::shared_ptr<Name> Name::createOfOnePlane() \
    { \
        const boost::shared_ptr<Name> coll = createColl(); \
        coll->insert(::orvik::PlanIndex(), coll->createEntry()); \
        return coll; \
    } \
    boost::shared_ptr<Name::Entry> Name::getEntry(const ::orvik::PlanIndex& index) const \
    { \
        return boost::const_pointer_cast<Name::Entry>(boost::static_pointer_cast<const Name::Entry>(getStorage(index))); \
    } \
    boost::shared_ptr<::orvik::BaseSerializationObject> Name::createEntry() const \
    { \
        return Name::Entry::createNode(); \
    } \
    bool Name::accepts(const ::orvik::BaseSerializationObject& entry) const \
    { \
        return dynamic_cast<const Name::Entry*>(&entry) != nullptr; \
    }

}  // namespace orvik
