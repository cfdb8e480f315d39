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

/// The first `count` records in order `isBefore`. Equal values stand as the selection leaves them, which depends on nothing
/// but the values in scan order.
template<class Number, class Place, class Record, class Nodes, class IsBefore>
Nodes selectExtrema(Nodes& nodes, unsigned long count, const IsBefore& isBefore)
{
    typedef RankedExtremum<Number, Place> Entry;
    std::vector<Entry> order;
    order.reserve(nodes.size());
    for (const boost::shared_ptr<Record>& node : nodes)
        order.push_back({static_cast<Number>(node->template get<typename Record::Value>()),
                         static_cast<Place>(order.size())});
    const auto end = order.begin() + static_cast<long>(count);
    std::partial_sort(order.begin(), end, order.end(), isBefore);
    Nodes selected;
    selected.reserve(count);
    for (auto entry = order.begin(); entry != end; ++entry)
        selected.push_back(std::move(nodes[entry->place]));
    return selected;
}

/// Joins the lists that the strips gave, in the order of their ranges, and keeps those that `config` asks for. `List` is a
/// list of records with a leaf Value; `type` is that of the samples. Maxima stand in the order `isGreater`, minima in
/// `isLower`, of RankedExtremum.
template<class List, class Results, class Config, class IsGreater, class IsLower>
typename List::Coll::Nodes joinExtrema(const Results& results, const Config& config, eDataType type,
                                       const IsGreater& isGreater, const IsLower& isLower)
{
    typedef typename List::Coll::NodeType Record;
    typename List::Coll::Nodes all;
    for (const auto& strip : results) {
        auto& nodes = strip.second->template access<typename List::Coll>().accessNodes();
        std::move(nodes.begin(), nodes.end(), std::back_inserter(all));
    }
    const unsigned long count = std::min<unsigned long>(all.size(), config.template get<typename Config::MaxNbExtrema>());
    // Floats hold all values but those of 32-bit integers; half as much memory is sorted faster.
    const bool small = type != eDT_Int32 && type != eDT_UInt32 && all.size() <= NumericLimits<unsigned int>::s_max;
    const auto select = [&](const auto& isBefore) {
        return small ? selectExtrema<float, unsigned int, Record>(all, count, isBefore)
                     : selectExtrema<double, unsigned long, Record>(all, count, isBefore);
    };
    return attr::isMinima(config.template get<typename Config::LocalExtremumType>()) ? select(isLower) : select(isGreater);
}

}}}  // namespace orvik::imaproc::fd
