#include "Processor/RingPlaces.h"

#include "Processor/PlaceRecords.h"

#include "frame/attr/Records.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace orvik { namespace imaproc { namespace fd {

namespace {

struct PlaceOnRing
{
    double angle;
    std::uint32_t index;  // in the raster of the disc
};

/// The disc of a radius, pixel by pixel in raster order.
class Disc
{
public:
    explicit Disc(long radius) : m_radius(static_cast<int>(radius)), m_side(static_cast<std::size_t>(2 * radius + 1)) {}

    /// Calls f(dx, dy, index) for the square about it.
    template<class F>
    void forEach(const F& f) const
    {
        std::uint32_t index = 0;
        for (int dy = -m_radius; dy <= m_radius; ++dy)
            for (int dx = -m_radius; dx <= m_radius; ++dx)
                f(dx, dy, index++);
    }
    std::size_t getNbPixels() const { return m_side * m_side; }

private:
    const int m_radius;
    const std::size_t m_side;
};

/// Pixels are dealt to rings by the root in double precision, but listed by that in single precision, which is the radius
/// that they are told to have; the two part from radii of some thousands on.
long ringOf(int dx, int dy)
{
    return static_cast<long>(std::sqrt(static_cast<double>(static_cast<long>(dx) * dx + static_cast<long>(dy) * dy)));
}

}  // namespace

BoolResult checkRingMemory(long minRadius, long maxRadius)
{
    if (maxRadius < 0)
        return radiusIsNegative(maxRadius);
    const double side = 2.0 * static_cast<double>(maxRadius) + 1.0, inner = std::max(0.0, static_cast<double>(minRadius));
    const double outer = static_cast<double>(maxRadius) + 1.0;
    const double nbPlaces = std::max(0.0, M_PI * (outer * outer - inner * inner));
    const double perPlace = sizeof(attr::HoughCirclesKernelXYElt) + sizeof(void*) * 2 + sizeof(RingPlace);
    const double bytes = side * side + nbPlaces * perPlace;
    const std::string what = "The rings of radii from " + std::to_string(minRadius) + " to " + std::to_string(maxRadius);
    const double mostPixels = 4294967296.0;  // that an index of 32 bits counts
    return checkMemory(what, bytes, side * side < mostPixels);
}

std::vector<RingPlace> ringPlaces(long minRadius, long maxRadius, unsigned int nbMaxPts)
{
    std::vector<RingPlace> places;
    if (maxRadius < 0)
        return places;
    const auto isWithin = [&](long radius) { return minRadius <= radius && radius <= maxRadius; };
    const Disc disc(maxRadius);
    std::vector<unsigned long> nbOnRing(static_cast<std::size_t>(maxRadius) + 1);
    disc.forEach([&](int dx, int dy, std::uint32_t) {
        const long radius = ringOf(dx, dy);
        if (isWithin(radius))
            ++nbOnRing[static_cast<std::size_t>(radius)];
    });

    // No two places of a ring have the same direction: the farther one would be twice as far.
    std::vector<std::vector<PlaceOnRing>> thinned(nbOnRing.size());
    std::vector<unsigned char> isSelected(disc.getNbPixels());
    disc.forEach([&](int dx, int dy, std::uint32_t index) {
        const long radius = ringOf(dx, dy);
        if (!isWithin(radius))
            return;
        if (nbOnRing[static_cast<std::size_t>(radius)] <= nbMaxPts)
            isSelected[index] = 1;
        else if (nbMaxPts > 0)
            thinned[static_cast<std::size_t>(radius)].push_back(
                {std::atan2(static_cast<double>(dy), static_cast<double>(dx)), index});
    });
    for (std::vector<PlaceOnRing>& ring : thinned) {
        if (ring.empty())
            continue;
        std::sort(ring.begin(), ring.end(), [](const auto& a, const auto& b) { return a.angle < b.angle; });
        const double step = static_cast<double>(ring.size()) / static_cast<double>(nbMaxPts);
        for (unsigned int i = 0; i < nbMaxPts; ++i)
            isSelected[ring[static_cast<std::size_t>(static_cast<double>(i) * step)].index] = 1;
    }

    places.reserve(static_cast<std::size_t>(std::count(isSelected.begin(), isSelected.end(), 1)));
    disc.forEach([&](int dx, int dy, std::uint32_t index) {
        if (!isSelected[index])
            return;
        const float radius = std::sqrt(static_cast<float>(static_cast<long>(dx) * dx + static_cast<long>(dy) * dy));
        const long whole = static_cast<long>(radius);
        if (isWithin(whole))
            places.push_back({dx, dy, static_cast<float>(dx) / radius, static_cast<float>(dy) / radius, radius,
                              std::min<unsigned long>(nbOnRing[static_cast<std::size_t>(whole)], nbMaxPts)});
    });
    return places;
}

}}}  // namespace orvik::imaproc::fd
