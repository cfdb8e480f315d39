// Calls on a small image for PythonCalls.py, which makes the same ones and takes turns with these in one process.

#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl1.h"
#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl1.h"
#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl1.h"
#include "frame/attr/Records.h"
#include "frame/image/BaseImage.h"

#include <chrono>

using namespace orvik;
using namespace orvik::imaproc;

namespace {

void callOnce(int which, const float* samples)
{
    const auto wrap = [&] { return image::wrapBuffer(static_cast<const void*>(samples), image::eIBT_Real32, {64, 64}); };
    switch (which) {
    case 0: fd::cannyEdges2dImg(wrap(), wrap(), attr::CannyThresholds::createNode(3.0, 7.0)); break;
    case 1: fd::extractLocalExtrema2d(wrap(), 3, 3, attr::createLocalExtremaConfig(10ul)); break;
    default: fd::harrisCorner2dImg(wrap());
    }
}

}  // namespace

/// Makes that call on 64 x 64 samples so many times and writes what each took, in microseconds.
extern "C" ORVIK_API void measureCalls(int which, const float* samples, int nbCalls, double* microseconds)
{
    for (int i = 0; i < nbCalls; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        callOnce(which, samples);
        const std::chrono::duration<double, std::micro> taken = std::chrono::steady_clock::now() - begin;
        microseconds[i] = taken.count();
    }
}
