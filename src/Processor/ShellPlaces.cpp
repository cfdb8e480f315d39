#include "Processor/ShellPlaces.h"

#include "Processor/PlaceRecords.h"
#include "Processor/Shells.h"

#include <algorithm>
#include <cmath>

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

namespace {

struct ShellPlace
{
    int dx, dy, dz;
    float radius;
    unsigned long nbPts;
};

/// Calls f(dx, dy, dz, square of the distance) in raster order for all places between both distances, and some beside them.
template<class F>
void forEachPlace(long least, long most, const F& f)
{
    const auto rootOf = [](long square) { return static_cast<int>(std::sqrt(static_cast<double>(std::max(square, 0l)))); };
    const int reach = static_cast<int>(most);
    const long inner = std::max(least, 0l) * std::max(least, 0l), outer = (most + 1) * (most + 1);
    for (int dz = -reach; dz <= reach; ++dz)
        for (int dy = -reach; dy <= reach; ++dy) {
            const long square = static_cast<long>(dy) * dy + static_cast<long>(dz) * dz;
            if (square >= outer)
                continue;
            const int end = std::min(reach, rootOf(outer - square)), gap = rootOf(inner - square) - 1;
            for (int dx = -end; dx <= end; dx = dx == -gap - 1 && gap > 0 ? gap + 1 : dx + 1)
                f(dx, dy, dz, square + static_cast<long>(dx) * dx);
        }
}

/// Places are dealt to shells, which are counted, by their distance cut off.
long shellOf(long square)
{
    return static_cast<long>(std::sqrt(static_cast<double>(square)));
}

}  // namespace

BoolResult checkShellMemory(const HoughCirclesRadiusRange& range)
{
    const long minRadius = range.get<HoughCirclesRadiusRange::MinRadius>();
    const long maxRadius = range.get<HoughCirclesRadiusRange::MaxRadius>();
    if (maxRadius < 0)
        return radiusIsNegative(maxRadius);
    const double outer = static_cast<double>(maxRadius) + 0.5, inner = std::max(0.0, static_cast<double>(minRadius));
    const double nbPlaces =
        minRadius > maxRadius ? 0.0 : std::max(1.0, 4.0 / 3.0 * M_PI * (outer * outer * outer - inner * inner * inner));
    const double bytesOfRadius = 64.0;  // rows and sums of radii, also where the range is empty
    const double perPlace = sizeof(HoughSpheresKernelXYZElt) + sizeof(void*) * 2 + sizeof(ShellPlace) + sizeof(ShellElement);
    return checkMemory("The shells of radii from " + std::to_string(minRadius) + " to " + std::to_string(maxRadius),
                       nbPlaces * perPlace + (outer + 1.0) * bytesOfRadius, true);
}

boost::shared_ptr<HoughSpheresKernelXYZ> makeKernelXYZ(const HoughCirclesRadiusRange& range, unsigned int nbMaxPts)
{
    const long minRadius = range.get<HoughCirclesRadiusRange::MinRadius>();
    const long maxRadius = range.get<HoughCirclesRadiusRange::MaxRadius>();
    const auto isWithin = [&](long radius) { return minRadius <= radius && radius <= maxRadius; };
    std::vector<ShellPlace> places;
    // No two places of a shell have the same direction, since the farther one would be twice as far, so none is left out.
    std::vector<unsigned long> nbOnShell(minRadius > maxRadius ? 0 : static_cast<std::size_t>(maxRadius) + 1);
    if (!nbOnShell.empty()) {
        std::size_t nbSelected = 0;
        forEachPlace(minRadius, maxRadius, [&](int, int, int, long square) {
            const long shell = shellOf(square);
            if (isWithin(shell)) {
                ++nbOnShell[static_cast<std::size_t>(shell)];
                ++nbSelected;
            }
        });
        places.reserve(nbSelected);
        forEachPlace(minRadius, maxRadius, [&](int dx, int dy, int dz, long square) {
            // Listed by the distance in single precision, rounded; selected above by that in double, cut off.
            const float radius = std::sqrt(static_cast<float>(square));
            const long rounded = static_cast<long>(static_cast<double>(radius) + 0.5);
            if (isWithin(rounded) && isWithin(shellOf(square)))
                places.push_back({dx, dy, dz, radius,
                                  std::min<unsigned long>(nbOnShell[static_cast<std::size_t>(rounded)], nbMaxPts)});
        });
    }
    return placeRecords<HoughSpheresKernelXYZ>(places, [](const ShellPlace& place, HoughSpheresKernelXYZElt& node) {
        typedef HoughSpheresKernelXYZElt E;
        node.set<E::OffsetX>(place.dx);
        node.set<E::OffsetY>(place.dy);
        node.set<E::OffsetZ>(place.dz);
        node.set<E::UnitX>(static_cast<float>(place.dx) / place.radius);
        node.set<E::UnitY>(static_cast<float>(place.dy) / place.radius);
        node.set<E::UnitZ>(static_cast<float>(place.dz) / place.radius);
        node.set<E::Radius>(place.radius);
        node.set<E::NbPts>(place.nbPts);
    });
}

}}}  // namespace orvik::imaproc::fd
