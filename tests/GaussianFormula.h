#pragma once

// Gaussian filters as they are defined, in double, for the families that are made of them.

#include "TestImages.h"

#include <algorithm>
#include <array>

namespace orvik::test {

/// Samples of a plane, which are repeated outside it.
struct Plane
{
    long sizeX, sizeY;
    std::vector<double> samples;
    double at(long x, long y) const
    {
        return samples[static_cast<std::size_t>(std::clamp(y, 0l, sizeY - 1) * sizeX + std::clamp(x, 0l, sizeX - 1))];
    }
};

inline Plane planeOf(const image::BaseImage& image)
{
    Plane plane = {static_cast<long>(image.getSizeX()), static_cast<long>(image.getSizeY()), {}};
    forEachSample({image.getSizeX(), image.getSizeY()},
                  [&](auto x, auto y, auto...) { plane.samples.push_back(sampleAt(image, x, y)); });
    return plane;
}

/// The kernel along one axis. A derivative is 1 on a ramp of one unit per sample.
inline Plane filtered(const Plane& plane, bool alongX, bool derivative, double stdDev, double coverage)
{
    const long halfSize = std::max(1l, static_cast<long>(std::floor(coverage * stdDev + 0.5)));
    Plane result = {plane.sizeX, plane.sizeY, {}};
    for (long y = 0; y < plane.sizeY; ++y)
        for (long x = 0; x < plane.sizeX; ++x) {
            double sum = 0, norm = 0;
            for (long k = -halfSize; k <= halfSize; ++k) {
                const double distance = static_cast<double>(k), g = std::exp(-0.5 * distance * distance / (stdDev * stdDev));
                sum += (derivative ? distance * g : g) * (alongX ? plane.at(x + k, y) : plane.at(x, y + k));
                norm += derivative ? distance * distance * g : g;
            }
            result.samples.push_back(sum / norm);
        }
    return result;
}

/// Rows first, then columns: the processors go the other way round.
inline Plane gradient(const Plane& plane, bool alongX, double stdDevX, double stdDevY, double coverage)
{
    return filtered(filtered(plane, true, alongX, stdDevX, coverage), false, !alongX, stdDevY, coverage);
}

inline Plane smoothedProduct(const Plane& a, const Plane& b, double stdDev, double coverage)
{
    Plane product = a;
    std::transform(a.samples.begin(), a.samples.end(), b.samples.begin(), product.samples.begin(),
                   std::multiplies<double>());
    return filtered(filtered(product, true, false, stdDev, coverage), false, false, stdDev, coverage);
}

/// Off by at most `tolerance`, and by what the type rounds and saturates.
inline void expectPlane(const Plane& expected, const image::BaseImage& found, double tolerance)
{
    image::withSampleType(image::toDataType(found.getBufferType()), [&](auto zero) {
        typedef decltype(zero) T;
        const double low = static_cast<double>(NumericLimits<T>::s_min), high = static_cast<double>(NumericLimits<T>::s_max);
        forEachSample(found.getGeometry().getSizes(), [&](auto x, auto y, auto...) {
            const double e = std::clamp(expected.at(static_cast<long>(x), static_cast<long>(y)), low, high);
            const double rounding = std::is_integral<T>::value ? 0.5 : std::ldexp(std::fabs(e), -24);
            ASSERT_NEAR(e, sampleAt(found, x, y), rounding + tolerance)
                << toString(found.getBufferType()) << ", size " << toString(found.getGeometry().getSizes()) << ", at " << x
                << ", " << y;
        });
    });
}

/// Samples of a volume, x fastest, then y and z.
inline std::vector<double> samplesOf(const image::BaseImage& volume)
{
    std::vector<double> samples;
    forEachSample(volume.getGeometry().getSizes(),
                  [&](auto x, auto y, auto z, auto...) { samples.push_back(sampleAt(volume, x, y, z)); });
    return samples;
}

/// Samples of a volume with one kernel along one axis, by planes of x and that axis, or of y and z.
inline std::vector<double> filteredAlong(const std::vector<double>& samples, const image::ImageSizes& sizes, int axis,
                                         bool derivative, double stdDev, double coverage)
{
    const std::array<unsigned long, 3> size = {sizes.x, sizes.y, sizes.z}, step = {1, sizes.x, sizes.x * sizes.y};
    const std::size_t along = static_cast<std::size_t>(axis);
    std::vector<double> result(samples.size());
    for (std::size_t first = 0; first < samples.size(); ++first) {
        if (first / step[along] % size[along] != 0)
            continue;
        Plane line = {static_cast<long>(size[along]), 1, {}};
        for (unsigned long i = 0; i < size[along]; ++i)
            line.samples.push_back(samples[first + i * step[along]]);
        const Plane found = filtered(line, true, derivative, stdDev, coverage);
        for (unsigned long i = 0; i < size[along]; ++i)
            result[first + i * step[along]] = found.samples[i];
    }
    return result;
}

/// As expectPlane, slice by slice.
inline void expectVolume(const std::vector<double>& expected, const image::BaseImage& found, double tolerance)
{
    const unsigned long sizeX = found.getSizeX(), sizeY = found.getSizeY();
    for (unsigned long z = 0; z < found.getSizeZ(); ++z) {
        const auto begin = expected.begin() + static_cast<long>(z * sizeX * sizeY);
        const Plane slice = {static_cast<long>(sizeX), static_cast<long>(sizeY),
                             std::vector<double>(begin, begin + static_cast<long>(sizeX * sizeY))};
        expectPlane(slice, *found.getView(PlanIndex(z, 0, 0), 1), tolerance);
    }
}

}  // namespace orvik::test
