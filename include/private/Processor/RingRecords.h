#pragma once

// Rings between the levels of a family: as records for the attributes, as plain elements for the kernels.

#include "Processor/PlaceRecords.h"
#include "Processor/RingPlaces.h"
#include "Processor/RingVotes.h"

#include "frame/attr/Records.h"
#include "frame/util/ProcessingResult.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <cmath>
#include <string>

namespace orvik { namespace imaproc { namespace fd {

/// What each place counts for in an accumulator.
inline RingElement<1> elementOf(const attr::HoughCirclesKernelXYElt& place)
{
    typedef attr::HoughCirclesKernelXYElt E;
    return {static_cast<int>(place.get<E::OffsetX>()),
            static_cast<int>(place.get<E::OffsetY>()),
            {place.get<E::UnitX>(), place.get<E::UnitY>()},
            {1.0f / static_cast<float>(place.get<E::NbPts>())}};
}
inline RingElement<2> elementOf(const attr::HoughCirclesPhaseCodedKernelXYElt& place)
{
    typedef attr::HoughCirclesPhaseCodedKernelXYElt E;
    return {static_cast<int>(place.get<E::OffsetX>()),
            static_cast<int>(place.get<E::OffsetY>()),
            {place.get<E::UnitX>(), place.get<E::UnitY>()},
            {place.get<E::PhaseRe>(), place.get<E::PhaseIm>()}};
}

inline BoolResult checkRingMemory(const attr::HoughCirclesRadiusRange& range)
{
    typedef attr::HoughCirclesRadiusRange Range;
    return checkRingMemory(range.get<Range::MinRadius>(), range.get<Range::MaxRadius>());
}

/// The rings of a list of places, which must lie within the greatest radius.
template<unsigned int NbWeights, class Places>
BoolResult makeRings(const Places& places, const attr::HoughCirclesRadiusRange& range, const GradientCone& cone,
                     boost::shared_ptr<const Rings<NbWeights>>& rings)
{
    const long radius = range.get<attr::HoughCirclesRadiusRange::MaxRadius>();
    if (radius < 0)
        return radiusIsNegative(radius);
    const auto& nodes = places.template get<typename Places::Coll>().getNodes();
    std::vector<RingElement<NbWeights>> elements;
    elements.reserve(nodes.size());
    typedef typename Places::Coll::NodeType Place;
    for (const auto& node : nodes) {
        const long dx = node->template get<typename Place::OffsetX>(), dy = node->template get<typename Place::OffsetY>();
        if (dx < -radius || dx > radius || dy < -radius || dy > radius)
            return placeIsBeyond("rings", {dx, dy}, radius);
        elements.push_back(elementOf(*node));
    }
    rings = boost::make_shared<Rings<NbWeights>>(std::move(elements), radius, cone);
    return success();
}

/// The same for a class that has them as attributes, unless it has rings already.
template<unsigned int NbWeights, class Places>
BoolResult makeRingsOnce(const Places& places, const attr::HoughCirclesRadiusRange& range, int type, double maxAngle,
                         boost::shared_ptr<const Rings<NbWeights>>& rings)
{
    return rings ? success() : makeRings(places, range, makeCone(type, maxAngle), rings);
}

inline std::vector<RingPlace> ringPlaces(const attr::HoughCirclesRadiusRange& range, unsigned int nbMaxPts)
{
    typedef attr::HoughCirclesRadiusRange Range;
    return ringPlaces(range.get<Range::MinRadius>(), range.get<Range::MaxRadius>(), nbMaxPts);
}

/// The leaves that all kinds of places have.
template<class Node>
void setPlace(const RingPlace& place, Node& node)
{
    node.template set<typename Node::OffsetX>(place.dx);
    node.template set<typename Node::OffsetY>(place.dy);
    node.template set<typename Node::UnitX>(place.unitX);
    node.template set<typename Node::UnitY>(place.unitY);
    node.template set<typename Node::Radius>(place.radius);
}

inline boost::shared_ptr<attr::HoughCirclesKernelXY> makeKernelXY(const attr::HoughCirclesRadiusRange& range,
                                                                  unsigned int nbMaxPts)
{
    return placeRecords<attr::HoughCirclesKernelXY>(ringPlaces(range, nbMaxPts),
                                                    [](const RingPlace& place, attr::HoughCirclesKernelXYElt& node) {
                                                        setPlace(place, node);
                                                        node.set<attr::HoughCirclesKernelXYElt::NbPts>(place.nbPts);
                                                    });
}

}}}  // namespace orvik::imaproc::fd
