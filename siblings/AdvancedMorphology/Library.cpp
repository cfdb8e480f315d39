#include "siblings/AdvancedMorphology/Library.h"

namespace orvik { namespace imaproc { namespace advmorpho {

std::string Library::toolTip(unsigned int row)
{
    static const char* const texts[] = {
        "Level 1 algorithm: labels the connected components of an image",
        "Level 2 algorithm: finds the connected components of a plane",
        "Level 2 algorithm: spreads extrema over what hangs together with them, in place",
        "Level 3 algorithm: spreads extrema over what hangs together with them, in place",
        "Level 2 algorithm: masks the pixels that are not 0",
        "Level 2 algorithm: gives each labelled pixel the extremum of its label",
        "Level 1 algorithm: labels the connected components of an image of volumes",
        "Level 2 algorithm: finds the connected components of a volume",
        "Level 2 algorithm: spreads extrema over what hangs together with them in a volume, in place",
        "Level 3 algorithm: spreads extrema over what hangs together with them in a volume, in place",
        "Level 2 algorithm: masks the voxels that are not 0",
        "Level 2 algorithm: gives each labelled voxel the extremum of its label",
    };
    return texts[row];
}

}}}  // namespace orvik::imaproc::advmorpho
