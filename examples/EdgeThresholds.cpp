#include "EdgeThresholds.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace orvik::examples {

namespace {

/// Magnitudes of a gradient in float images of one plane. Of large pictures a grid of up to a million pixels is taken:
/// enough for a percentile.
std::vector<float> sampleMagnitudes(const image::BaseImage& gradientX, const image::BaseImage& gradientY)
{
    const double nbPixels = static_cast<double>(gradientX.getSizeX()) * static_cast<double>(gradientX.getSizeY());
    const unsigned long step = static_cast<unsigned long>(std::ceil(std::sqrt(nbPixels / 1e6)));
    std::vector<float> magnitudes;
    for (unsigned long y = 0; y < gradientX.getSizeY(); y += step) {
        const float* const gx = static_cast<const float*>(gradientX.getLine(y));
        const float* const gy = static_cast<const float*>(gradientY.getLine(y));
        for (unsigned long x = 0; x < gradientX.getSizeX(); x += step) {
            const float magnitude = std::sqrt(gx[x] * gx[x] + gy[x] * gy[x]);
            // Pictures of reals may hold NaN and infinities.
            if (std::isfinite(magnitude))
                magnitudes.push_back(magnitude);
        }
    }
    return magnitudes;
}

/// Three significant digits: what is printed can be given again for the same result.
double rounded(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.3g", value);
    return std::strtod(text, nullptr);
}

double deriveHigh(std::vector<float> magnitudes)
{
    if (magnitudes.empty())
        return 0.0;
    const auto percentile = magnitudes.begin()
                            + static_cast<std::ptrdiff_t>(0.9 * static_cast<double>(magnitudes.size() - 1));
    std::nth_element(magnitudes.begin(), percentile, magnitudes.end());
    const double largest = *std::max_element(percentile, magnitudes.end());
    // Drawings have few levels: where most is flat the percentile is 0, where much is outline it is that of all lines.
    return rounded(std::clamp<double>(*percentile, 0.1 * largest, 0.5 * largest));
}

}  // namespace

EdgeThresholds chooseThresholds(const std::optional<double>& low, const std::optional<double>& high,
                                const image::BaseImage& gradientX, const image::BaseImage& gradientY)
{
    if (low && high)
        return {*low, *high, "as given"};
    if (high)
        return {rounded(0.4 * *high), *high, "low is 0.4 high"};
    const double derived = deriveHigh(sampleMagnitudes(gradientX, gradientY));
    if (low)
        return {*low, std::max(*low, derived), "high from the picture"};
    return {rounded(0.4 * derived), derived, "from the picture"};
}

}  // namespace orvik::examples
