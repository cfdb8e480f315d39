#include "Processor/Shells.h"

#include "Processor/PlaceRecords.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

Shells::Shells(std::vector<ShellElement> elements, long maxRadius, const GradientCone& cone)
    : m_elements(std::move(elements)), m_maxRadius(maxRadius), m_cone(cone), m_isFinite(true)
{
    for (std::size_t i = 0; i < m_elements.size(); ++i) {
        const ShellElement& e = m_elements[i];
        if (m_rows.empty() || m_rows.back().dy != e.dy || m_rows.back().dz != e.dz)
            m_rows.push_back({e.dy, e.dz, i, i});
        m_rows.back().end = i + 1;
        m_isFinite = m_isFinite && std::isfinite(e.weights[0]);
    }
}

BoolResult makeShellsOnce(const HoughSpheresKernelXYZ& places, const HoughCirclesRadiusRange& range, int type,
                          double maxAngle, boost::shared_ptr<const Shells>& shells)
{
    typedef HoughSpheresKernelXYZElt E;
    if (shells)
        return success();
    const long radius = range.get<HoughCirclesRadiusRange::MaxRadius>();
    if (radius < 0)
        return radiusIsNegative(radius);
    const auto& nodes = places.get<HoughSpheresKernelXYZ::Coll>().getNodes();
    std::vector<ShellElement> elements;
    elements.reserve(nodes.size());
    for (const auto& node : nodes) {
        const long dx = node->get<E::OffsetX>(), dy = node->get<E::OffsetY>(), dz = node->get<E::OffsetZ>();
        if (std::max({dx, dy, dz}) > radius || std::min({dx, dy, dz}) < -radius)
            return placeIsBeyond("shells", {dx, dy, dz}, radius);
        elements.push_back({static_cast<int>(dx),
                            static_cast<int>(dy),
                            static_cast<int>(dz),
                            {node->get<E::UnitX>(), node->get<E::UnitY>(), node->get<E::UnitZ>()},
                            {1.0f / static_cast<float>(node->get<E::NbPts>())}});
    }
    shells = boost::make_shared<Shells>(std::move(elements), radius, makeCone(type, maxAngle));
    return success();
}

}}}  // namespace orvik::imaproc::fd
