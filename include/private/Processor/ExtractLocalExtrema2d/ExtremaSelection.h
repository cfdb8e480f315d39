#pragma once

// The most extreme ones of the extrema of all strips of a plane or volume, in their order.

#include "frame/attr/Enumerations.h"
#include "frame/image/BufferType.h"
#include "frame/util/NumericLimits.h"

#include <boost/shared_ptr.hpp>

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace orvik { namespace imaproc { namespace fd {

/// An extremum's value and its place among all: sorted instead of the records, which lie scattered in memory.
template<class Number, class Place>
struct RankedExtremum
{
    Number value;
    Place place;
};

// The orders of lists: of maxima, and of minima. Nothing but the value counts.
template<class Extremum>
bool isGreater2d(const Extremum& a, const Extremum& b)
{
    return a.value > b.value;
}
template<class Extremum>
bool isLower2d(const Extremum& a, const Extremum& b)
{
    return a.value < b.value;
}

/// The first `count` records in order. Equal values stand as the selection leaves them, which depends on nothing but the
/// values in scan order.
template<class Number, class Place, class Record, class Nodes>
Nodes selectExtrema(Nodes& nodes, unsigned long count, bool lowest)
{
    typedef RankedExtremum<Number, Place> Entry;
    std::vector<Entry> order;
    order.reserve(nodes.size());
    for (const boost::shared_ptr<Record>& node : nodes)
        order.push_back({static_cast<Number>(node->template get<typename Record::Value>()),
                         static_cast<Place>(order.size())});
    const auto end = order.begin() + static_cast<long>(count);
    if (lowest)
        std::partial_sort(order.begin(), end, order.end(), [](const Entry& a, const Entry& b) { return isLower2d(a, b); });
    else
        std::partial_sort(order.begin(), end, order.end(), [](const Entry& a, const Entry& b) { return isGreater2d(a, b); });
    Nodes selected;
    selected.reserve(count);
    for (auto entry = order.begin(); entry != end; ++entry)
        selected.push_back(std::move(nodes[entry->place]));
    return selected;
}

/// Joins the lists that the strips gave, in the order of their ranges, and keeps those that `config` asks for. `List` is a
/// list of records with a leaf Value; `type` is that of the samples.
template<class List, class Results, class Config>
typename List::Coll::Nodes joinExtrema(const Results& results, const Config& config, eDataType type)
{
    typedef typename List::Coll::NodeType Record;
    typename List::Coll::Nodes all;
    for (const auto& strip : results) {
        auto& nodes = strip.second->template access<typename List::Coll>().accessNodes();
        std::move(nodes.begin(), nodes.end(), std::back_inserter(all));
    }
    const unsigned long count = std::min<unsigned long>(all.size(), config.template get<typename Config::MaxNbExtrema>());
    const bool lowest = attr::isMinima(config.template get<typename Config::LocalExtremumType>());
    // Floats hold all values but those of 32-bit integers; half as much memory is sorted faster.
    const bool small = type != eDT_Int32 && type != eDT_UInt32 && all.size() <= NumericLimits<unsigned int>::s_max;
    return small ? selectExtrema<float, unsigned int, Record>(all, count, lowest)
                 : selectExtrema<double, unsigned long, Record>(all, count, lowest);
}

}}}  // namespace orvik::imaproc::fd
