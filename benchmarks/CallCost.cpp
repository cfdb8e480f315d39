// What calls on a small image cost, for PythonCalls.py to compare with: medians in microseconds, on the samples that it
// names, 64 x 64 floats of a caller's.

#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl1.h"
#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl1.h"
#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl1.h"
#include "frame/attr/Records.h"
#include "frame/image/BaseImage.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace {

template<class Call>
void measure(const char* name, const Call& call)
{
    std::vector<double> microseconds;
    for (int i = 0; i < 2000; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        call();
        const std::chrono::duration<double, std::micro> taken = std::chrono::steady_clock::now() - begin;
        microseconds.push_back(taken.count());
    }
    std::sort(microseconds.begin(), microseconds.end());
    std::printf("%s %.2f\n", name, microseconds[microseconds.size() / 2]);
}

}  // namespace

int main()
{
    using namespace orvik;
    using namespace orvik::imaproc;
    static float samples[64][64];
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            samples[y][x] = static_cast<float>(x * y % 17);
    const auto wrap = [] { return image::wrapBuffer(static_cast<const void*>(samples), image::eIBT_Real32, {64, 64}); };
    measure("cannyEdges2dImg", [&] { fd::cannyEdges2dImg(wrap(), wrap(), attr::CannyThresholds::createNode(3.0, 7.0)); });
    measure("extractLocalExtrema2d",
            [&] { fd::extractLocalExtrema2d(wrap(), 3, 3, attr::createLocalExtremaConfig(10ul)); });
    measure("harrisCorner2dImg", [&] { fd::harrisCorner2dImg(wrap()); });
}
