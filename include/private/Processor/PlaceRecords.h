#pragma once

// What lists of places of rings and of shells have in common.

#include "frame/attr/Records.h"
#include "frame/util/ProcessingResult.h"

#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

namespace orvik { namespace imaproc { namespace fd {

/// Places of rings or shells as records of any kind; `toNode` gives that of a place.
template<class Records, class Place, class ToNode>
boost::shared_ptr<Records> placeRecords(const std::vector<Place>& places, const ToNode& toNode)
{
    const boost::shared_ptr<Records> records = Records::createNode();
    auto& nodes = records->template access<typename Records::Coll>().accessNodes();
    nodes.reserve(places.size());
    const boost::shared_ptr<typename Records::Coll::NodeType[]> block = Records::Coll::NodeType::createNodes(places.size());
    for (std::size_t i = 0; i < places.size(); ++i) {
        nodes.emplace_back(block, &block[static_cast<std::ptrdiff_t>(i)]);
        toNode(places[i], *nodes.back());
    }
    return records;
}

/// A failure for places that lie beyond the greatest radius.
inline BoolResult placeIsBeyond(const std::string& kind, const std::vector<long>& offset, long radius)
{
    std::string text;
    for (const long each : offset)
        text += (text.empty() ? "" : ", ") + std::to_string(each);
    return failure("A place of the " + kind + ", at offset (" + text + "), lies beyond the greatest radius, "
                   + std::to_string(radius));
}
inline BoolResult radiusIsNegative(long radius)
{
    return failure("The greatest radius, " + std::to_string(radius) + ", is negative");
}

/// Whether `bytes` of lists can be held, which they cannot where their places are more than can be counted; `what` they are of
/// stands in the text of a failure.
BoolResult checkMemory(const std::string& what, double bytes, bool isCountable);

}}}  // namespace orvik::imaproc::fd
