#include "siblings/Utility/Library.h"

namespace orvik { namespace imaproc { namespace util {

std::string Library::toolTip(unsigned int row)
{
    static const char* const texts[] = {
        "Level 1 algorithm: marks the samples whose value lies between two thresholds",
        "Level 2 algorithm: marks the samples whose value lies between two thresholds",
        "Level 3 algorithm: marks the samples whose value lies between two thresholds",
        "Level 2 algorithm: sets every sample of an image to 0",
    };
    return texts[row];
}

}}}  // namespace orvik::imaproc::util
