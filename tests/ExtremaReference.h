#pragma once

// Local extrema from their definition, of planes and volumes.

#include "FamilyShapes.h"

#include "frame/attr/StripAttributes.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace orvik::test {

inline constexpr unsigned long kAll = NumericLimits<unsigned long>::s_max;
inline constexpr eLocalExtremumType kKinds[] = {eLET_Maxima, eLET_Minima, eLET_StrictMaxima, eLET_StrictMinima};

inline bool areMinima(eLocalExtremumType kind)
{
    return kind == eLET_Minima || kind == eLET_StrictMinima;
}

/// Passed by all values.
inline double noThreshold(eLocalExtremumType kind)
{
    return areMinima(kind) ? 1e300 : -1e300;
}

inline boost::shared_ptr<const LocalExtremaConfig> configOf(eLocalExtremumType kind, double threshold,
                                                            unsigned long maxNb = kAll)
{
    return LocalExtremaConfig::createNode(kind, threshold, maxNb);
}

typedef std::vector<std::array<double, 4>> Pixels;  // x, y, z, value

/// Reads samples of an image, and around it the type's limit.
inline auto borderedReader(const BaseImage& image, bool minima)
{
    return [&image, border = oddValues(image.getBufferType())[minima ? 1 : 0]](auto... at) {
        const unsigned long place[] = {static_cast<unsigned long>(at)...};  // below 0 is far outside
        const bool inside = place[0] < image.getSizeX() && place[1] < image.getSizeY() && place[2] < image.getSizeZ();
        return inside ? sampleAt(image, place[0], place[1], place[2]) : border;
    };
}

/// The pixels in scan order, from the definition. Of those beyond `whole` columns only the next ones in the line count.
inline Pixels pixelsOf(const BaseImage& image, long distX, long distY, eLocalExtremumType kind, double threshold,
                       long whole = 1l << 40, long distZ = 0)
{
    const bool minima = areMinima(kind), strict = kind == eLET_StrictMaxima || kind == eLET_StrictMinima;
    const long sizeX = static_cast<long>(image.getSizeX()), sizeY = static_cast<long>(image.getSizeY()),
               sizeZ = static_cast<long>(image.getSizeZ());
    const auto at = borderedReader(image, minima);
    const auto beats = [&](double a, double b) { return minima ? a < b : a > b; };
    Pixels pixels;
    forEachSample({image.getSizeX(), image.getSizeY(), image.getSizeZ()}, [&](long x, long y, long z, auto...) {
        const double v = at(x, y, z), left = at(x - 1, y, z), right = at(x + 1, y, z);
        bool kept = beats(v, at(-1, 0, 0));
        for (long nz = std::max(-1l, z - distZ); kept && nz <= std::min(sizeZ, z + distZ); ++nz)
            for (long ny = std::max(-1l, y - distY); kept && ny <= std::min(sizeY, y + distY); ++ny)
                for (long nx = std::max(-1l, x - distX); kept && nx <= std::min(sizeX, x + distX); ++nx) {
                    const double other = at(nx, ny, nz);
                    const bool before = std::tie(nz, ny, nx) < std::tie(z, y, x), isNumber = other == other;
                    if (ny == y && nz == z ? nx != x && x < whole : isNumber)
                        kept = beats(v, other) || (!before && !strict && v == other);
                }
        if (x >= whole)
            kept = kept && !((left == v || beats(left, v)) && (beats(right, v) || (strict && right == v)));
        const float narrow = static_cast<float>(v), limit = static_cast<float>(threshold);
        if (kept && (minima ? narrow <= limit : narrow >= limit))
            pixels.push_back({static_cast<double>(x), static_cast<double>(y), static_cast<double>(z), v});
    });
    return pixels;
}

/// As many of them as are listed, in the order of the list.
inline Pixels mostExtreme(Pixels pixels, eLocalExtremumType kind, unsigned long maxNb)
{
    const std::size_t count = std::min<std::size_t>(pixels.size(), maxNb);
    std::partial_sort(pixels.begin(), pixels.begin() + static_cast<long>(count), pixels.end(),
                      [&](const auto& a, const auto& b) { return areMinima(kind) ? a[3] < b[3] : a[3] > b[3]; });
    pixels.resize(count);
    return pixels;
}

}  // namespace orvik::test
