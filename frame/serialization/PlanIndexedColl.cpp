#include "frame/serialization/PlanIndexedColl.h"

#include "frame/util/FrameMessages.h"

namespace orvik {

BasePlanIndexedColl::BasePlanIndexedColl() = default;
BasePlanIndexedColl::~BasePlanIndexedColl() = default;

boost::shared_ptr<const BaseSerializationObject> BasePlanIndexedColl::getStorage(const PlanIndex& index) const
{
    const auto found = m_entries.find(index);
    return found == m_entries.end() ? boost::shared_ptr<const BaseSerializationObject>() : found->second;
}

boost::shared_ptr<BaseSerializationObject> BasePlanIndexedColl::getStorage(const PlanIndex& index)
{
    const auto found = m_entries.find(index);
    return found == m_entries.end() ? boost::shared_ptr<BaseSerializationObject>() : found->second;
}

void BasePlanIndexedColl::insert(const PlanIndex& index, const boost::shared_ptr<BaseSerializationObject>& entry)
{
    if (!entry || !accepts(*entry)) {
        ORVIK_THROW_TEXT(ORVIKUtilException, g_utilLogSource,
                         "A plan-indexed collection was given an entry that is null or of another type than its own");
    }
    m_entries[index] = entry;
}

std::vector<PlanIndex> BasePlanIndexedColl::getPlans() const
{
    std::vector<PlanIndex> plans;
    for (const auto& entry : m_entries)
        plans.push_back(entry.first);
    return plans;
}

}  // namespace orvik
