#pragma once

#include <boost/shared_ptr.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>

#include <map>

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

}}  // namespace orvik::processor
