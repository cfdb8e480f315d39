#include "Processor/HoughSpheres3dLabelImg/SphereSlice.h"

#include <cmath>

namespace orvik { namespace imaproc { namespace fd {

Reach::Reach(double centre, double reach, unsigned long size)
{
    const double from = std::floor(centre - reach), to = std::ceil(centre + reach) + 1, limit = static_cast<double>(size);
    if (to <= 0 || from >= limit)
        return;
    first = from > 0 ? static_cast<unsigned long>(from) : 0;
    end = to < limit ? static_cast<unsigned long>(to) : size;
}

double reachOf(const DrawnSphere& sphere)
{
    return static_cast<double>(sphere.radius) * (1 + 1e-6) + 1e-30;
}

}}}  // namespace orvik::imaproc::fd
