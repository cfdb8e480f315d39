#include "Processor/HoughSpheres3dLabelImg/SphereSlice.h"

#include <cmath>
#include <limits>

namespace orvik { namespace imaproc { namespace fd {

float squareWithin(float radius)
{
    const float infinity = std::numeric_limits<float>::infinity();
    float square = radius * radius;  // a few roundings off, or overflowed
    while (std::sqrt(square) > radius)
        square = std::nextafter(square, 0.0f);
    for (float next = std::nextafter(square, infinity); next > square && std::sqrt(next) <= radius;
         next = std::nextafter(square, infinity))
        square = next;
    return square;
}

}}}  // namespace orvik::imaproc::fd
