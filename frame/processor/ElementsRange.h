#pragma once

#include <boost/shared_ptr.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>

#include <map>
#include <vector>

namespace orvik { namespace processor {

/// A range of elements of a split, ordered by its start, then by its length.
class ElementsRange
{
public:
    ElementsRange(unsigned long start, unsigned long count) : m_start(start), m_count(count) {}
    unsigned long getStart() const { return m_start; }
    unsigned long getCount() const { return m_count; }

private:
    unsigned long m_start, m_count;
};

inline bool operator<(const ElementsRange& a, const ElementsRange& b)
{
    return a.getStart() != b.getStart() ? a.getStart() < b.getStart() : a.getCount() < b.getCount();
}

/// What the children of a stage gave, each a result of its own: filled by a result split, joined in `postProcess`, emptied
/// by `clearIntermediateData`. The map is shared with the split.
template<class Key, class Result>
struct PartialResults : boost::shared_ptr<std::map<Key, boost::shared_ptr<Result>>>
{
    typedef std::map<Key, boost::shared_ptr<Result>> Map;
    PartialResults() : boost::shared_ptr<Map>(boost::make_shared<Map>()) {}
};
/// By index, as planes and volumes are numbered.
template<class Result>
using ResultsOfPlanes = PartialResults<unsigned int, Result>;
/// By range, from the first line or slice on.
template<class Result>
using ResultsOfStrips = PartialResults<ElementsRange, Result>;

/// Which records of a list lie in which strip: filled by DynamicByRangeDataSplit, emptied by `clearIntermediateData`.
template<class List>
struct RecordsOfStrips
{
    typedef std::map<ElementsRange, std::vector<unsigned long>> Indices;
    /// The records of each strip, and the places that they have in the whole list.
    boost::shared_ptr<std::map<ElementsRange, boost::shared_ptr<List>>> lists =
        boost::make_shared<std::map<ElementsRange, boost::shared_ptr<List>>>();
    boost::shared_ptr<Indices> indices = boost::make_shared<Indices>();

    void clear()
    {
        lists->clear();
        indices->clear();
    }
    /// Makes `out` the list of what each of `nbRecords` records became, in their order; `results` has that of each strip.
    /// Records that lie in no strip leave empty places.
    template<class Result>
    void join(const ResultsOfStrips<Result>& results, unsigned long nbRecords, Result& out) const
    {
        auto& joined = out.template access<typename Result::Coll>().accessNodes();
        joined.assign(nbRecords, nullptr);
        auto strip = indices->begin();
        for (const auto& result : *results) {
            const auto& nodes = result.second->template get<typename Result::Coll>().getNodes();
            for (unsigned long i = 0; i < nodes.size(); ++i)
                joined[strip->second[i]] = nodes[i];
            ++strip;
        }
    }
};

}}  // namespace orvik::processor
