#pragma once

// Rings of circles and accumulators of them as they are defined, pixel by pixel, for tests of the families that find circles.

#include "FamilyShapes.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace orvik::test {

struct RingOptions
{
    long minRadius, maxRadius;
    eCircleIntensityType type;
    double angle;
    unsigned int nbPts;
};

struct DefinedPlace
{
    long dx, dy;
    float unitX, unitY, radius;
    unsigned long nbPts;
};

/// In raster order.
inline std::vector<DefinedPlace> placesOf(const RingOptions& options)
{
    const long reach = options.maxRadius, side = 2 * reach + 1;
    std::vector<std::map<double, std::pair<long, long>>> rings(static_cast<std::size_t>(std::max(reach, 0l)) + 1);
    const auto forEachOffset = [&](const auto& f) {
        for (long dy = -reach; dy <= reach; ++dy)
            for (long dx = -reach; dx <= reach; ++dx)
                f(dx, dy);
    };
    const auto isWithin = [&](long r) { return options.minRadius <= r && r <= reach; };
    forEachOffset([&](long dx, long dy) {
        const long r = static_cast<long>(std::sqrt(static_cast<double>(dx * dx + dy * dy)));
        if (isWithin(r))
            rings[static_cast<std::size_t>(r)].insert({std::atan2(static_cast<double>(dy), static_cast<double>(dx)),
                                                       {dx, dy}});
    });
    std::vector<bool> mask(static_cast<std::size_t>(side * side));
    const auto at = [&](long dx, long dy) { return static_cast<std::size_t>((dy + reach) * side + dx + reach); };
    for (const auto& ring : rings) {
        std::vector<std::pair<long, long>> offsets;
        for (const auto& [angle, offset] : ring)
            offsets.push_back(offset);
        const bool isThinned = offsets.size() > options.nbPts;
        const double step = static_cast<double>(offsets.size()) / options.nbPts;
        for (std::size_t i = 0; i < (isThinned ? options.nbPts : offsets.size()); ++i) {
            const auto& [dx, dy] = offsets[isThinned ? static_cast<std::size_t>(static_cast<double>(i) * step) : i];
            mask[at(dx, dy)] = true;
        }
    }
    std::vector<DefinedPlace> places;
    forEachOffset([&](long dx, long dy) {
        const float f = std::sqrt(static_cast<float>(dx * dx + dy * dy));
        const long r = static_cast<long>(f);
        if (isWithin(r) && mask[at(dx, dy)])
            places.push_back({dx, dy, static_cast<float>(dx) / f, static_cast<float>(dy) / f, f,
                              std::min<unsigned long>(rings[static_cast<std::size_t>(r)].size(), options.nbPts)});
    });
    return places;
}

/// The range as it is narrowed to a plane.
inline RingOptions narrowed(RingOptions options, const BaseImage& plane)
{
    const long half = static_cast<long>(std::min(plane.getSizeX(), plane.getSizeY()) / 2);
    options.maxRadius = options.minRadius > half ? half : std::min(options.maxRadius, half);
    options.minRadius = std::min(options.minRadius, half);
    return options;
}

/// The gradients of a plane as they count: directions and magnitudes, 0 and 1 outside.
class DefinedGradients
{
public:
    struct Share
    {
        float along, magnitude;
    };

    DefinedGradients(const BaseImage& gx, const BaseImage& gy)
        : m_sizeX(static_cast<long>(gx.getSizeX())), m_sizeY(static_cast<long>(gx.getSizeY()))
    {
        forEachSample({gx.getSizeX(), gx.getSizeY()}, [&](auto x, auto y, auto...) {
            Gradient g = {static_cast<float>(sampleAt(gx, x, y)), static_cast<float>(sampleAt(gy, x, y)), 1.0f};
            const float length = std::sqrt(g.x * g.x + g.y * g.y);
            if (length >= NumericLimits<float>::s_eps)
                g = {g.x / length, g.y / length, length};
            m_gradients.push_back(g);
        });
    }
    /// What a place of the rings about (x, y) has of the gradient there.
    Share at(long x, long y, const DefinedPlace& place, eCircleIntensityType type) const
    {
        x += place.dx;
        y += place.dy;
        const bool isInside = x >= 0 && y >= 0 && x < m_sizeX && y < m_sizeY;
        const Gradient g = isInside ? m_gradients[static_cast<std::size_t>(y * m_sizeX + x)] : Gradient{0, 0, 1};
        const float d = g.x * place.unitX + g.y * place.unitY;
        return {type == eCIT_Both ? std::fabs(d) : type == eCIT_Inward ? -d : d, g.magnitude};
    }

private:
    struct Gradient
    {
        float x, y, magnitude;
    };
    const long m_sizeX, m_sizeY;
    std::vector<Gradient> m_gradients;
};

/// Removal as it is defined, on a list of features of `nbLeaves` numbers, the last two of them radius and value.
inline Numbers withoutTooClose(const Numbers& list, std::size_t nbLeaves, double factor)
{
    std::vector<Numbers> kept;
    for (auto leaves = list.begin() + 1; leaves != list.end(); leaves += static_cast<std::ptrdiff_t>(nbLeaves)) {
        const Numbers feature(leaves, leaves + static_cast<std::ptrdiff_t>(nbLeaves));
        const double radius = feature[nbLeaves - 2];
        const bool isClose = std::any_of(kept.begin(), kept.end(), [&](const Numbers& other) {
            const double limit = std::min(radius, other[nbLeaves - 2]) * (factor - 1.0)
                                 + std::max(radius, other[nbLeaves - 2]);
            double squares = 0;
            for (std::size_t axis = 0; axis + 2 < nbLeaves; ++axis)
                squares += (feature[axis] - other[axis]) * (feature[axis] - other[axis]);
            return limit * limit > squares;
        });
        if (!isClose)
            kept.push_back(feature);
    }
    Numbers all = {static_cast<double>(kept.size())};
    for (const Numbers& feature : kept)
        append(all, feature);
    return all;
}

/// Numbers with one NaN for all.
inline Numbers withOneNan(Numbers numbers)
{
    for (double& number : numbers)
        number = std::isnan(number) ? kNan : number;
    return numbers;
}

/// The scores of a plane, real or complex, as numbers of one image after the other.
inline Numbers definedScores(const BaseImage& gx, const BaseImage& gy, const RingOptions& asked, bool isComplex)
{
    const RingOptions options = narrowed(asked, gx);
    const std::vector<DefinedPlace> places = placesOf(options);
    const float c = static_cast<float>(std::cos(options.angle)),
                inv = 1.0f / static_cast<float>(1.0 - std::cos(options.angle));
    const bool isOpen = 1.0 - std::cos(options.angle) != 0.0;
    const DefinedGradients gradients(gx, gy);
    std::vector<std::pair<float, float>> weights;
    for (const DefinedPlace& place : places) {
        const double phase = static_cast<double>(place.radius - static_cast<float>(options.minRadius)) * 6.283185307179586
                             / static_cast<double>(options.maxRadius - options.minRadius);
        const double n = static_cast<double>(place.nbPts);
        weights.emplace_back(isComplex ? static_cast<float>(std::cos(phase) / n) : 1.0f / static_cast<float>(place.nbPts),
                             static_cast<float>(std::sin(phase) / n));
    }
    const auto real = createImage(eIBT_Real32, {gx.getSizeX(), gx.getSizeY()}),
               imaginary = createImageLike(*real, eIBT_Real32);
    forEachSample(real->getGeometry().getSizes(), [&](auto x, auto y, auto...) {
        float re = 0, im = 0;
        for (std::size_t k = 0; k < places.size() && isOpen; ++k) {
            if (static_cast<long>(y) + places[k].dy < 0)
                continue;
            const auto [d, magnitude] = gradients.at(static_cast<long>(x), static_cast<long>(y), places[k], options.type);
            if (isComplex) {
                const float v = magnitude * ((d - c) * inv <= 0 ? 0.0f : d);
                re += v * weights[k].first;
                im += v * weights[k].second;
            } else {
                re += (d - c) * inv > 0 ? d * magnitude * weights[k].first : magnitude * 0.0f * weights[k].first;
            }
        }
        setSample(*real, re, x, y);
        setSample(*imaginary, im, x, y);
    });
    Numbers scores = numbersOf(real);
    return withOneNan(isComplex ? append(scores, numbersOf(imaginary)) : scores);
}

}  // namespace orvik::test
