#include "Processor/ComputeBestCirclesRadiiFromGradMagImg2d/RadiusScores.h"

#include "Processor/PlaceRecords.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

// Gradients are looked at in blocks of as many columns.
static const unsigned long g_block = 64;

RadiusScores::Row RadiusScores::row(long y)
{
    const std::size_t place = static_cast<std::size_t>((y + maxRadius) % (2 * maxRadius + 1)) * m_pitch;
    return {m_gradients.data() + place, m_codes.data() + place};
}

long* RadiusScores::blocksOf(long y)
{
    return m_rows.data() + static_cast<std::size_t>((y + maxRadius) % (2 * maxRadius + 1)) * m_nbBlocks;
}

BoolResult RadiusScores::init(const HoughCirclesKernelXY& kernel, const HoughCirclesRadiusRange& range,
                              unsigned long nbColumns)
{
    typedef HoughCirclesKernelXYElt Elt;
    const BoolResult fits = initSums(range);
    if (!fits)
        return fits;
    const auto& nodes = kernel.get<HoughCirclesKernelXY::Coll>().getNodes();
    const std::size_t nbRadii = static_cast<std::size_t>(maxRadius) + 1, nbRows = 2 * nbRadii - 1;
    m_nbBlocks = (nbColumns + nbRows) / g_block + 1;
    m_pitch = (m_nbBlocks + 1) * g_block;
    m_gradients.assign(m_pitch * nbRows, Gradient());
    m_codes.assign(m_pitch * nbRows + 2 * g_block, 0);
    m_rows.assign(m_nbBlocks * nbRows, -1 - maxRadius);
    codes.clear();
    runs.clear();
    places.clear();
    for (const auto& node : nodes) {
        const long dx = node->get<Elt::OffsetX>(), dy = node->get<Elt::OffsetY>();
        const long radius = static_cast<long>(node->get<Elt::Radius>());
        if (std::max({std::labs(dx), std::labs(dy), radius}) > maxRadius)
            return placeIsBeyond("rings", {dx, dy}, maxRadius);
        if (runs.empty() || runs.back().dy != dy
            || runs.back().dx + static_cast<long>(places.size() - runs.back().begin) != dx)
            runs.push_back({dx, dy, places.size(), places.size()});
        places.push_back({node->get<Elt::UnitX>(), node->get<Elt::UnitY>(), static_cast<unsigned int>(radius)});
        codes.push_back(codeOf(places.back().unitX, places.back().unitY));
        ++counts[static_cast<std::size_t>(radius)];
        runs.back().end = places.size();
    }
    codes.resize(places.size() + 2 * g_block);
    return success();
}

}}}  // namespace orvik::imaproc::fd
