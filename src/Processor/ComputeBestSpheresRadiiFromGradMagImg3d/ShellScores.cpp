#include "Processor/ComputeBestSpheresRadiiFromGradMagImg3d/ShellScores.h"

#include "Processor/CircleCenters.h"
#include "Processor/PlaceRecords.h"

#include <algorithm>
#include <tuple>

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

BoolResult ShellScores::init(const HoughSpheresKernelXYZ& kernel, const HoughCirclesRadiusRange& range, const Voxels3d& all,
                             eDataType type)
{
    typedef HoughSpheresKernelXYZElt E;
    const BoolResult fits = initSums(range);
    if (!fits)
        return fits;
    rows.clear();
    places.clear();
    centers.clear();
    nbDone = 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
        Center center = {0, 0, 0, i};
        if (pixelOf(all[i].get<Voxel3d::Z>(), false, center.z) && pixelOf(all[i].get<Voxel3d::Y>(), false, center.y)
            && pixelOf(all[i].get<Voxel3d::X>(), false, center.x))
            centers.push_back(center);
    }
    std::sort(centers.begin(), centers.end(),
              [](const Center& a, const Center& b) { return std::tie(a.z, a.y, a.index) < std::tie(b.z, b.y, b.index); });
    if (centers.empty())
        return success();

    const auto& nodes = kernel.get<HoughSpheresKernelXYZ::Coll>().getNodes();
    places.reserve(nodes.size());
    for (const auto& node : nodes) {
        const long dx = node->get<E::OffsetX>(), dy = node->get<E::OffsetY>(), dz = node->get<E::OffsetZ>();
        const double rounded = static_cast<double>(node->get<E::Radius>()) + 0.5;
        if (std::max({dx, dy, dz}) > maxRadius || std::min({dx, dy, dz}) < -maxRadius
            || !(rounded >= 0 && rounded < static_cast<double>(maxRadius) + 1))
            return placeIsBeyond("shells", {dx, dy, dz}, maxRadius);
        if (rows.empty() || rows.back().dy != dy || rows.back().dz != dz)
            rows.push_back({dy, dz, places.size(), places.size()});
        const unsigned int radius = static_cast<unsigned int>(rounded);
        places.push_back({static_cast<int>(dx + maxRadius),
                          {node->get<E::UnitX>(), node->get<E::UnitY>(), node->get<E::UnitZ>()},
                          radius});
        ++counts[radius];
        rows.back().end = places.size();
    }
    const unsigned long block = 64;
    rowSize = 2 * static_cast<unsigned long>(maxRadius) + 1;
    samples.init(type, rowSize + block, 3);
    gradients.init(eDT_Real32, rowSize + block, 4);
    return success();
}

}}}  // namespace orvik::imaproc::fd
