#include "ORVIKIPLFeatureDetectionLogMessages.h"

// The tool tip of each class, in the order of the class names and of their levels. Some rows have no class: they keep
// the numbers of the others. The texts are a catalogue that others refer to, misspellings and doubled blanks included.

namespace orvik { namespace details {

namespace {

const char* const g_toolTips[] = {
    /*  0 */ "Level 1 algorithm: detects edges in images using Canny's detector",
    /*  1 */ "Level 2 algorithm: detects edges in images using Canny's detector",
    /*  2 */ "Level 3 algorithm: detects edges in images using Canny's detector",
    /*  3 */ "Level 1 algorithm: detects surfaces in 3d images using Canny's detector",
    /*  4 */ "Level 2 algorithm: detects surfaces in 3d images using Canny's detector",
    /*  5 */ "Level 3 algorithm: detects surfaces in 3d images using Canny's detector",
    /*  6 */ "Level 1 algorithm: computes  circles radii, given circles centers and an image of gradient magnitude",
    /*  7 */ "Level 2 algorithm: computes  circles radii, given circles centers and an image of gradient magnitude",
    /*  8 */ "Level 3 algorithm: computes  circles radii, given circles centers and an image of gradient magnitude",
    /*  9 */ "Level 2 algorithm: computes spheres radii, given sphere centers and an image of gradient magnitude  on Gpu",
    /* 10 */ "Level 1 algorithm: computes spheres radii, given sphere centers and an image of gradient magnitude",
    /* 11 */ "Level 2 algorithm: computes spheres radii, given sphere centers and an image of gradient magnitude",
    /* 12 */ "Level 3 algorithm: computes spheres radii, given sphere centers and an image of gradient magnitude",
    /* 13 */ "Level 1 algorithm: finds the local maxima in Hough image",
    /* 14 */ "Level 2 algorithm: finds the local maxima in Hough image",
    /* 15 */ "Level 3 algorithm: finds the local maxima in Hough image",
    /* 16 */ "Level 1 algorithm: extract values at specific coordinates from a 2d image",
    /* 17 */ "Level 2 algorithm: extract values at specific coordinates from a 2d image",
    /* 18 */ "Level 3 algorithm: extract values at specific coordinates from a 2d image",
    /* 19 */ "Level 1 algorithm: extract values at specific coordinates from a 3d image",
    /* 20 */ "Level 2 algorithm: extract values at specific coordinates from a 3d image",
    /* 21 */ "Level 3 algorithm: extract values at specific coordinates from a 3d image",
    /* 22 */ "Level 1 algorithm: finds the local extrema in an image",
    /* 23 */ "Level 2 algorithm: finds the local extrema in an image",
    /* 24 */ "Level 3 algorithm: finds the local extrema in an image",
    /* 25 */ "Level 1 algorithm: finds the local maxima in a 3d image",
    /* 26 */ "Level 2 algorithm: finds the local maxima in a 3d image",
    /* 27 */ "Level 3 algorithm: finds the local maxima in a 3d image",
    /* 28 */ "Level 1 algorithm: extract circles radius information from Hough image",
    /* 29 */ "Level 2 algorithm: extract circles radius information from Hough image",
    /* 30 */ "Level 3 algorithm: extract circles radius information from Hough image",
    /* 31 */ "Level 1 algorithm: Computes the Harris corner detection response",
    /* 32 */ "Level 2 algorithm: Computes the Harris corner detection response",
    /* 33 */ "Level 3 algorithm: Computes the Harris corner detection response",
    /* 34 */ "Level 1 algorithm: Extracts the corners in an image",
    /* 35 */ "Level 2 algorithm: Extracts the corners in an image",
    /* 36 */ "Level 3 algorithm: Extracts the corners in an image",
    /* 37 */ "Level 1 algorithm: Computes the Harris corner detection response on a 3d image",
    /* 38 */ "Level 2 algorithm: Computes the Harris corner detection response on a 3d image",
    /* 39 */ "Level 3 algorithm: Computes the Harris corner detection response on a 3d image",
    /* 40 */ "Level 1 algorithm: Extracts the corners in a 3d image",
    /* 41 */ "Level 2 algorithm: Extracts the corners in a 3d image",
    /* 42 */ "Level 3 algorithm: Extracts the corners in a 3d image",
    /* 43 */ "Level 1 algorithm: detects circles in images of gradient using Hough algorithm",
    /* 44 */ "Level 2 algorithm: detects circles in images of gradient using Hough algorithm",
    /* 45 */ "Level 3 algorithm: detects circles in images of gradient using Hough algorithm",
    /* 46 */ "Level 1 algorithm: detects circles in image using Hough algorithm",
    /* 47 */ "Level 2 algorithm: detects circles in image using Hough algorithm",
    /* 48 */ "Level 1 algorithm: detects circles in images of gradient using Hough algorithm",
    /* 49 */ "Level 2 algorithm: detects circles in images of gradient using Hough algorithm",
    /* 50 */ "Level 3 algorithm: detects circles in images of gradient using Hough algorithm",
    /* 51 */ "Level 1 algorithm: detects circles in image using Hough algorithm",
    /* 52 */ "Level 1 algorithm: detection of 2D lines in image using Hough algorithm",
    /* 53 */ "Level 2 algorithm: detection of 2D lines in image using Hough algorithm",
    /* 54 */ "Level 3 algorithm: detection of 2D lines in image using Hough algorithm",
    /* 55 */ "Level 1 algorithm: detection of 2D lines in image using Hough algorithm",
    /* 56 */ "Level 2 algorithm: detection of 2D lines in image using Hough algorithm",
    /* 57 */ "Level 3 algorithm: detection of 2D lines in image using Hough algorithm",
    /* 58 */ "Level 1 algorithm: detection of 2D lines in images of gradient using Hough algorithm",
    /* 59 */ "Level 2 algorithm: detection of 2D lines in images of gradient using Hough algorithm",
    /* 60 */ "Level 3 algorithm: detection of 2D lines in images of gradient using Hough algorithm",
    /* 61 */ "Level 1 algorithm: detection of 2D lines in images of gradient using Hough algorithm",
    /* 62 */ "Level 2 algorithm: detection of 2D lines in images of gradient using Hough algorithm",
    /* 63 */ "Level 3 algorithm: detection of 2D lines in images of gradient using Hough algorithm",
    /* 64 */ "Level 2 algorithm: detects spheres in a 3d image using Hough algorithm  on Gpu",
    /* 65 */ "Level 2 algorithm: detects circles in images of gradient using Hough algorithm  on Gpu",
    /* 66 */ "Level 1 algorithm: detects circles in images of gradient using Hough algorithm",
    /* 67 */ "Level 2 algorithm: detects circles in images of gradient using Hough algorithm",
    /* 68 */ "Level 3 algorithm: detects circles in images of gradient using Hough algorithm",
    /* 69 */ "Level 1 algorithm: detects spheres in a 3d image using Hough algorithm",
    /* 70 */ "Level 2 algorithm: detects spheres in a 3d image using Hough algorithm",
    /* 71 */ "Level 3 algorithm: detects spheres in a 3d image using Hough algorithm",
    /* 72 */ "Level 1 algorithm: Creates a mask image from 3D spheres detected with te 3D Hough detection algorithm",
    /* 73 */ "Level 2 algorithm: Creates a mask image from 3D spheres detected with te 3D Hough detection algorithm",
    /* 74 */ "Level 3 algorithm: Creates a mask image from 3D spheres detected with te 3D Hough detection algorithm",
    /* 75 */ "Level 1 algorithm: Computation of global maximum of L2 (euclidian) norm of two images",
    /* 76 */ "Level 2 algorithm: Computation of global maximum of L2 (euclidian) norm of two images",
    /* 77 */ "Level 3 algorithm: Computation of global maximum of L2 (euclidian) norm of two images",
};

}  // namespace

template<>
void MsgMapRegistratorDerived<imaproc::fd::eProcessorMessage, void>::addRows(LogMessageManager& manager)
{
    int row = 0;
    for (const char* const text : g_toolTips)
        manager.addMessage(typeid(imaproc::fd::eProcessorMessage::domain).name(), row++, text);
}

}}  // namespace orvik::details
