#include "Processor/RadiusSums.h"

#include "Processor/PlaceRecords.h"

#include <algorithm>

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

BoolResult RadiusSums::initSums(const HoughCirclesRadiusRange& range)
{
    minRadius = range.get<HoughCirclesRadiusRange::MinRadius>();
    maxRadius = range.get<HoughCirclesRadiusRange::MaxRadius>();
    if (maxRadius < 0)
        return radiusIsNegative(maxRadius);
    sums.assign(static_cast<std::size_t>(maxRadius) + 1, 0.0);
    counts.assign(sums.size(), 0);
    return success();
}

double RadiusSums::best() const
{
    double radius = static_cast<double>(minRadius), highest = 0.0;
    for (long r = std::max(minRadius, 0l); r <= maxRadius; ++r) {
        const std::size_t i = static_cast<std::size_t>(r);
        const double score = counts[i] != 0 ? sums[i] / static_cast<double>(counts[i]) : sums[i];
        if (score > highest) {
            highest = score;
            radius = static_cast<double>(r);
        }
    }
    return radius;
}

}}}  // namespace orvik::imaproc::fd
