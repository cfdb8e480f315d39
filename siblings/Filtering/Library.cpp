#include "siblings/Filtering/Library.h"

namespace orvik { namespace imaproc { namespace filter {

namespace {

const char* const g_toolTips[] = {
    /* 0 */ "Level 1: gradient of all planes by derivatives of a Gaussian",
    /* 1 */ "Level 2: gradient of one plane by derivatives of a Gaussian",
    /* 2 */ "Level 3: gradient of one strip by derivatives of a Gaussian",
    /* 3 */ "Level 2: smoothed products of the gradients of one plane",
    /* 4 */ "Level 3: smoothed products of the gradients of one strip",
    /* 5 */ "Level 1: gradient of all volumes by derivatives of a Gaussian",
    /* 6 */ "Level 2: gradient of one volume by derivatives of a Gaussian",
    /* 7 */ "Level 3: gradient of one strip of slices by derivatives of a Gaussian",
    /* 8 */ "Level 2: smoothed products of the gradients of one volume",
    /* 9 */ "Level 3: products of the gradients of one strip of slices, smoothed within each",
    /* 10 */ "Level 3: samples of one strip of a volume, smoothed across slices",
};

}  // namespace

std::string Library::toolTip(unsigned int row)
{
    return g_toolTips[row];
}

}}}  // namespace orvik::imaproc::filter
