// The gradient of a volume against reading it and writing three once.

#include "Ratios.h"

#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgLvl1.h"

#include "frame/core/Scheduler.h"
#include "frame/image/BaseImage.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <random>

using namespace orvik;
using imaproc::ImagePtr;

namespace {

const unsigned long g_size = 256;

ImagePtr volume()
{
    return image::createImage(image::eIBT_Real32, {g_size, g_size, g_size});
}

}  // namespace

int main(int argc, char** argv)
{
    core::setNbThreads(1);
    const ImagePtr in = volume(), x = volume(), y = volume(), z = volume();
    std::mt19937 random(1);
    for (unsigned long i = 0; i < g_size * g_size; ++i)
        for (unsigned long column = 0; column < g_size; ++column)
            static_cast<float*>(in->accessLine(i % g_size, i / g_size))[column] = static_cast<float>(random() >> 8);
    const auto gradient = [=] { imaproc::filter::gaussianGradient3dImg(in, 1, 1, 1, 4, x, y, z); };
    bench::registerRun("gradient", 1, gradient);
    bench::registerRun("gradient_2_threads", 2, gradient);
    bench::registerRun("copies", 1, [=] {
        for (unsigned long i = 0; i < g_size * g_size; ++i) {
            const float* const from = static_cast<const float*>(in->getLine(i % g_size, i / g_size));
            for (const ImagePtr& to : {x, y, z})
                std::copy_n(from, g_size, static_cast<float*>(to->accessLine(i % g_size, i / g_size)));
        }
    });
    const int status =
        bench::runBenchmarks(argc, argv,
                             {{"gradient over reading its volume and writing three", "gradient", "copies", "at most 3"},
                              {"one thread over two", "gradient", "gradient_2_threads", "shown"}});
    bench::MemoryMeter::restart();
    gradient();
    std::printf("%8.2f  percent of the volume's size, memory (below 3)\n",
                100.0 * static_cast<double>(bench::MemoryMeter::peakAboveStart())
                    / static_cast<double>(4 * g_size * g_size * g_size));
    return status;
}
