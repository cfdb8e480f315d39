#include "EdgeThresholds.h"

#include "frame/image/BaseImage.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace orvik::examples {

namespace {

/// Magnitudes of a gradient. Of large pictures and volumes a grid of about a million pixels is taken: enough for a
/// percentile.
std::vector<float> sampleMagnitudes(const std::vector<imaproc::ConstImagePtr>& gradient)
{
    const image::BaseImage& first = *gradient.front();
    const double nbPixels = static_cast<double>(first.getSizeX()) * static_cast<double>(first.getSizeY())
                            * static_cast<double>(first.getSizeZ());
    const double root = first.getSizeZ() > 1 ? std::cbrt(nbPixels / 1e6) : std::sqrt(nbPixels / 1e6);
    const unsigned long step = static_cast<unsigned long>(std::ceil(root));
    std::vector<float> magnitudes;
    for (unsigned long z = 0; z < first.getSizeZ(); z += step) {
        for (unsigned long y = 0; y < first.getSizeY(); y += step) {
            for (unsigned long x = 0; x < first.getSizeX(); x += step) {
                float squares = 0;
                for (const imaproc::ConstImagePtr& part : gradient) {
                    const float value = static_cast<const float*>(part->getLine(y, z))[x];
                    squares += value * value;
                }
                // Pictures of reals may hold NaN and infinities.
                if (std::isfinite(squares))
                    magnitudes.push_back(std::sqrt(squares));
            }
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
                                const std::vector<imaproc::ConstImagePtr>& gradient)
{
    if (low && high)
        return {*low, *high, "as given"};
    if (high)
        return {rounded(0.4 * *high), *high, "low is 0.4 high"};
    const double derived = deriveHigh(sampleMagnitudes(gradient));
    const std::string source = gradient.front()->getSizeZ() > 1 ? "from the volume" : "from the picture";
    if (low)
        return {*low, std::max(*low, derived), "high " + source};
    return {rounded(0.4 * derived), derived, source};
}

}  // namespace orvik::examples
