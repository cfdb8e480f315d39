#include "Processor/GradientCone.h"

#include "frame/attr/Enumerations.h"

#include <cmath>

namespace orvik { namespace imaproc { namespace fd {

GradientCone makeCone(int circleIntensityType, double maxAngle)
{
    const double cosine = std::cos(maxAngle);
    return {static_cast<float>(cosine), 1.0 - cosine != 0.0, circleIntensityType == attr::eCIT_Both,
            circleIntensityType == attr::eCIT_Inward};
}

}}}  // namespace orvik::imaproc::fd
