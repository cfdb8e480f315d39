#include "Processor/Shells.h"

#include "Processor/PlaceRecords.h"
#include "Processor/ShellVotes.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <tuple>

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

// Votes for angles whose cosine is above this one: beyond, a gradient that is flat might count, and gathering is as fast.
static const float g_leastCosine = 0.25f;

// Costs in nanoseconds, as measured; only their ratios count.
static const double g_gatherCost = 1.3;  // a vector of one place; of 512 bits twice that
static const double g_voteCost = 2.2;    // a group of places
static const double g_listCost = 300;    // a list, for each slice that shells reach

Shells::Shells(std::vector<ShellElement> elements, long maxRadius, const GradientCone& cone)
    : m_elements(std::move(elements)), m_maxRadius(maxRadius), m_cone(cone), m_isFinite(true), m_canVote(false)
{
    for (std::size_t i = 0; i < m_elements.size(); ++i) {
        const ShellElement& e = m_elements[i];
        if (m_rows.empty() || m_rows.back().dy != e.dy || m_rows.back().dz != e.dz)
            m_rows.push_back({e.dy, e.dz, i, i});
        m_rows.back().end = i + 1;
        m_isFinite = m_isFinite && std::isfinite(e.weights[0]);
    }
    m_canVote = m_isFinite && !m_elements.empty() && cone.isOpen && cone.cosine >= g_leastCosine && areAlikeInOctants();
}

Shells::~Shells() = default;

bool Shells::areAlikeInOctants()
{
    const auto before = [](const ShellElement& a, const ShellElement& b) {
        return std::tie(a.dz, a.dy, a.dx) < std::tie(b.dz, b.dy, b.dx);
    };
    for (std::size_t i = 0; i < m_elements.size(); ++i) {
        const ShellElement& e = m_elements[i];
        if (i > 0 && !before(m_elements[i - 1], e))
            return false;
        const float radius = radiusOf(e.dx, e.dy, e.dz);
        if (!(e.units[0] == static_cast<float>(e.dx) / radius && e.units[1] == static_cast<float>(e.dy) / radius
              && e.units[2] == static_cast<float>(e.dz) / radius))
            return false;
    }
    const std::size_t side = static_cast<std::size_t>(2 * m_maxRadius + 1);
    m_rowPlaces.assign(side * side, -1);
    for (std::size_t i = 0; i < m_rows.size(); ++i)
        m_rowPlaces[static_cast<std::size_t>(m_rows[i].dz + m_maxRadius) * side
                    + static_cast<std::size_t>(m_rows[i].dy + m_maxRadius)] = static_cast<int>(i);
    const auto isSame = [](const ShellElement& a, const ShellElement& b, int sign) {
        return a.dx == sign * b.dx && a.weights[0] == b.weights[0];
    };
    for (const Row& row : m_rows) {
        const std::size_t n = row.end - row.begin;
        for (const int sign : {-1, 1}) {
            const Row* const other = rowAt(std::abs(row.dy), sign * row.dz);
            if (!other || other->end - other->begin != n)
                return false;
            for (std::size_t k = 0; k < n; ++k)
                if (!isSame(m_elements[row.begin + k], m_elements[other->begin + k], 1)
                    || !isSame(m_elements[row.begin + k], m_elements[row.end - 1 - k], -1))
                    return false;
        }
    }
    return true;
}

const Shells::Row* Shells::rowAt(int dy, int dz) const
{
    const long side = 2 * m_maxRadius + 1;
    const int place = m_rowPlaces[static_cast<std::size_t>((dz + m_maxRadius) * side + dy + m_maxRadius)];
    return place < 0 ? nullptr : &m_rows[static_cast<std::size_t>(place)];
}

const ShellVoteLists* Shells::votes(unsigned long lanes, unsigned long linePitch, unsigned long slicePitch, double nbVoxels,
                                    eRingForm form) const
{
    const double mostOffset = 2147483647.0, reach = static_cast<double>(m_maxRadius + 1);
    if (!m_canVote || form == eRF_Gather || reach * static_cast<double>(slicePitch + linePitch) > mostOffset)
        return nullptr;
    const double perVector = lanes == 16 ? 2 * g_gatherCost : g_gatherCost;
    const double perVoxel = static_cast<double>(m_elements.size()) / static_cast<double>(lanes) * perVector;
    const double making = g_listCost * reach * 768;
    if (form == eRF_ByCost && nbVoxels * perVoxel < 2 * making)
        return nullptr;
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::unique_ptr<ShellVoteLists>& lists = m_lists[{linePitch, slicePitch}];
    if (!lists)
        lists = std::make_unique<ShellVoteLists>(makeShellVoteLists(*this, linePitch, slicePitch));
    const double perSource = lists->meanLength * (m_cone.isBoth ? 1.5 : 1.0) * g_voteCost;
    return perSource < perVoxel || form == eRF_Votes ? lists.get() : nullptr;
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
