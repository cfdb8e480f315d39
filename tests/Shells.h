#pragma once

// Shells of spheres and accumulators of them as they are defined, voxel by voxel, for tests of the families that find spheres.

#include "Rings.h"

namespace orvik::test {

struct DefinedShellPlace
{
    long dx, dy, dz;
    float unitX, unitY, unitZ, radius;
    unsigned long nbPts;
};

/// In raster order.
inline std::vector<DefinedShellPlace> shellPlacesOf(const RingOptions& options)
{
    const long reach = options.maxRadius;
    typedef std::array<long, 3> Offset;
    std::vector<std::map<std::pair<double, double>, Offset>> shells(static_cast<std::size_t>(std::max(reach, 0l)) + 1);
    const auto forEachOffset = [&](const auto& f) {
        for (long dz = -reach; dz <= reach; ++dz)
            for (long dy = -reach; dy <= reach; ++dy)
                for (long dx = -reach; dx <= reach; ++dx)
                    f(dx, dy, dz);
    };
    const auto isWithin = [&](long r) { return options.minRadius <= r && r <= reach; };
    forEachOffset([&](long dx, long dy, long dz) {
        const long r = static_cast<long>(std::sqrt(static_cast<double>(dx * dx + dy * dy + dz * dz)));
        const float flat = std::sqrt(static_cast<float>(dx * dx + dy * dy));
        if (isWithin(r))
            shells[static_cast<std::size_t>(r)].insert({{std::atan2(static_cast<double>(dy), static_cast<double>(dx)),
                                                         std::atan2(static_cast<double>(flat), static_cast<double>(dz))},
                                                        {dz, dy, dx}});
    });
    std::vector<Offset> mask;
    for (const auto& shell : shells)
        for (const auto& [direction, offset] : shell)
            mask.push_back(offset);
    std::sort(mask.begin(), mask.end());
    std::vector<DefinedShellPlace> places;
    forEachOffset([&](long dx, long dy, long dz) {
        const float f = std::sqrt(static_cast<float>(dx * dx + dy * dy + dz * dz));
        const long r = static_cast<long>(static_cast<double>(f) + 0.5);
        if (isWithin(r) && std::binary_search(mask.begin(), mask.end(), Offset{dz, dy, dx}))
            places.push_back({dx, dy, dz, static_cast<float>(dx) / f, static_cast<float>(dy) / f, static_cast<float>(dz) / f,
                              f, std::min<unsigned long>(shells[static_cast<std::size_t>(r)].size(), options.nbPts)});
    });
    return places;
}

/// The range as it is narrowed to a volume.
inline RingOptions narrowedToVolume(RingOptions options, const BaseImage& volume)
{
    const long half = static_cast<long>(std::min({volume.getSizeX(), volume.getSizeY(), volume.getSizeZ()}) / 2);
    options.maxRadius = options.minRadius > half ? half : std::min(options.maxRadius, half);
    options.minRadius = std::min(options.minRadius, half);
    return options;
}

/// The gradients of a volume as they count: directions and magnitudes, 0 and 1 outside.
class DefinedVolume
{
public:
    DefinedVolume(const BaseImage& gx, const BaseImage& gy, const BaseImage& gz) : m_sizes(gx.getGeometry().getSizes())
    {
        forEachSample({m_sizes.x, m_sizes.y, m_sizes.z}, [&](auto x, auto y, auto z, auto...) {
            Gradient g = {static_cast<float>(sampleAt(gx, x, y, z)), static_cast<float>(sampleAt(gy, x, y, z)),
                          static_cast<float>(sampleAt(gz, x, y, z)), 1.0f};
            const float length = std::sqrt(g.x * g.x + g.y * g.y + g.z * g.z);
            if (length >= NumericLimits<float>::s_eps)
                g = {g.x / length, g.y / length, g.z / length, length};
            m_gradients.push_back(g);
        });
    }
    /// What a place of the shells about (x, y, z) has of the gradient there.
    DefinedGradients::Share at(unsigned long x, unsigned long y, unsigned long z, const DefinedShellPlace& place,
                               eCircleIntensityType type) const
    {
        x += static_cast<unsigned long>(place.dx);  // what lies before the first one wraps to what is no coordinate
        y += static_cast<unsigned long>(place.dy);
        z += static_cast<unsigned long>(place.dz);
        const bool isInside = x < m_sizes.x && y < m_sizes.y && z < m_sizes.z;
        const Gradient g = isInside ? m_gradients[(z * m_sizes.y + y) * m_sizes.x + x] : Gradient{0, 0, 0, 1};
        const float d = g.x * place.unitX + g.y * place.unitY + g.z * place.unitZ;
        return {type == eCIT_Both ? std::fabs(d) : type == eCIT_Inward ? -d : d, g.magnitude};
    }

private:
    struct Gradient
    {
        float x, y, z, magnitude;
    };
    const ImageSizes m_sizes;
    std::vector<Gradient> m_gradients;
};

/// The scores of a volume.
inline Numbers definedSphereScores(const BaseImage& gx, const BaseImage& gy, const BaseImage& gz, const RingOptions& asked)
{
    const RingOptions options = narrowedToVolume(asked, gx);
    const std::vector<DefinedShellPlace> places = shellPlacesOf(options);
    const float c = static_cast<float>(std::cos(options.angle)),
                inv = 1.0f / static_cast<float>(1.0 - std::cos(options.angle));
    const bool isOpen = 1.0 - std::cos(options.angle) != 0.0;
    const DefinedVolume gradients(gx, gy, gz);
    const auto scores = createImage(eIBT_Real32, {gx.getSizeX(), gx.getSizeY(), gx.getSizeZ()});
    forEachSample(scores->getGeometry().getSizes(), [&](auto x, auto y, auto z, auto...) {
        float sum = 0;
        for (std::size_t k = 0; k < places.size() && isOpen; ++k) {
            if (static_cast<long>(z) + places[k].dz < 0)
                continue;
            const auto [d, magnitude] = gradients.at(x, y, z, places[k], options.type);
            const float w = 1.0f / static_cast<float>(places[k].nbPts);
            sum += (d - c) * inv > 0 ? d * magnitude * w : magnitude * 0.0f * w;
        }
        setSample(*scores, sum, x, y, z);
    });
    return withOneNan(numbersOf(scores));
}

}  // namespace orvik::test
