#include "siblings/GlobalMeasure/Library.h"

namespace orvik { namespace imaproc { namespace glbmsr {

std::string Library::toolTip(unsigned int row)
{
    static const char* const texts[] = {
        "Level 2 algorithm: measures mean, deviation and extremes of a plane",
        "Level 2 algorithm: counts how often the values of a plane occur",
    };
    return texts[row];
}

}}}  // namespace orvik::imaproc::glbmsr
