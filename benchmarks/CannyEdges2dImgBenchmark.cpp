// Canny edges of the gradients of an enlarged photograph, against a peer of the field where it is installed.

#include "Photographs.h"
#include "Ratios.h"

#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl1.h"

#include "frame/attr/Records.h"
#include "frame/core/Scheduler.h"

#include <cstdio>

#ifdef ORVIK_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

using namespace orvik;
using bench::ImagePtr;

namespace {

const unsigned long g_size = 4096;

struct Case
{
    std::pair<ImagePtr, ImagePtr> gradients;
    boost::shared_ptr<const imaproc::attr::CannyThresholds> thresholds;
    ImagePtr out;

    void run() const
    {
        imaproc::fd::cannyEdges2dImg(gradients.first, gradients.second, thresholds, imaproc::attr::ePOP_Iterative, out);
    }
};

/// Weak above the 80th percentile of the magnitude, strong above the 92nd: a usual choice on photographs.
Case makeCase(unsigned long size, image::eImageBufferType type)
{
    Case made;
    made.gradients = bench::gradientsOfPhotograph(size, type);
    const image::BaseImage& gx = *made.gradients.first;
    const image::BaseImage& gy = *made.gradients.second;
    made.thresholds = imaproc::attr::CannyThresholds::createNode(bench::magnitudeQuantile(gx, gy, 0.8),
                                                                 bench::magnitudeQuantile(gx, gy, 0.92));
    made.out = image::createImageLike(gx, image::eIBT_Binary);
    return made;
}

void registerCase(const char* name, const Case& edges, unsigned int nbThreads, benchmark::TimeUnit unit)
{
    benchmark::RegisterBenchmark(name,
                                 [edges, nbThreads](benchmark::State& state) {
                                     core::setNbThreads(nbThreads);
                                     for (auto _ : state)
                                         edges.run();
                                     core::setNbThreads(1);
                                 })
        ->Unit(unit)
        ->UseRealTime();
}

void printMemory(const Case& edges)
{
    for (const unsigned int nbThreads : {1u, 2u}) {
        core::setNbThreads(nbThreads);
        edges.run();
        bench::MemoryMeter::restart();
        edges.run();
        const double result = static_cast<double>(g_size * g_size);
        std::printf("%8.2f  percent of the result's size, memory beyond inputs and result, %u thread%s (below %u)\n",
                    100.0 * static_cast<double>(bench::MemoryMeter::peakAboveStart()) / result, nbThreads,
                    nbThreads > 1 ? "s" : "", 5 * nbThreads);
    }
    core::setNbThreads(1);
}

}  // namespace

int main(int argc, char** argv)
{
    core::setNbThreads(1);
    const Case int16 = makeCase(g_size, image::eIBT_Int16), real = makeCase(g_size, image::eIBT_Real32);
    registerCase("canny_int16", int16, 1, benchmark::kMillisecond);
    registerCase("canny_int16_2_threads", int16, 2, benchmark::kMillisecond);
    registerCase("canny_float", real, 1, benchmark::kMillisecond);
    registerCase("canny_call_16x16", makeCase(16, image::eIBT_Int16), 1, benchmark::kMicrosecond);
#ifdef ORVIK_HAVE_OPENCV
    cv::setNumThreads(1);
    benchmark::RegisterBenchmark("opencv_canny_int16", [&](benchmark::State& state) {
        const auto view = [](const ImagePtr& image) {
            return cv::Mat(static_cast<int>(g_size), static_cast<int>(g_size), CV_16SC1, image->accessLine(0),
                           static_cast<std::size_t>(image->getStrides().y));
        };
        const cv::Mat gx = view(int16.gradients.first), gy = view(int16.gradients.second);
        cv::Mat edges;
        for (auto _ : state)
            cv::Canny(gx, gy, edges, int16.thresholds->get<imaproc::attr::CannyThresholds::LowThreshold>(),
                      int16.thresholds->get<imaproc::attr::CannyThresholds::HighThreshold>(), true);
    })->Unit(benchmark::kMillisecond);
#endif
    const int status =
        bench::runBenchmarks(argc, argv,
                             {{"OpenCV's Canny over ours, signed 16 bits, one thread", "opencv_canny_int16", "canny_int16",
                               "at least 1, aim for 2"},
                              {"float over signed 16 bits", "canny_float", "canny_int16", "at most 1.5"},
                              {"one thread over two", "canny_int16", "canny_int16_2_threads", "at least 1.7"}});
    printMemory(int16);
    return status;
}
