// Lines of the gradients of a photograph, against those of as many pixels without a direction, ours and a peer's of the field
// where it is installed.

#include "Photographs.h"
#include "Ratios.h"

#include "Processor/HoughLines2d/HoughLines2dLvl1.h"
#include "Processor/HoughLines2dImg/HoughLines2dImgLvl1.h"
#include "Processor/HoughLinesGradient2d/HoughLinesGradient2dLvl1.h"
#include "Processor/HoughLinesGradient2dImg/HoughLinesGradient2dImgLvl1.h"

#include "frame/attr/Records.h"
#include "frame/core/Scheduler.h"

#include <cmath>
#include <cstdio>

#ifdef ORVIK_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

using namespace orvik;
using namespace orvik::imaproc::attr;
using bench::ImagePtr;

namespace {

const unsigned long g_size = 2048;
const float g_tolerance = 0.1f;

/// 1 where a gradient votes.
ImagePtr votersOf(const image::BaseImage& gx, const image::BaseImage& gy, float threshold, unsigned long& nbVoters)
{
    const ImagePtr voters = image::createImage(image::eIBT_UInt8, {g_size, g_size});
    for (unsigned long y = 0; y < g_size; ++y)
        for (unsigned long x = 0; x < g_size; ++x) {
            const float vx = static_cast<const float*>(gx.getLine(y))[x], vy = static_cast<const float*>(gy.getLine(y))[x];
            const bool votes = std::sqrt(vx * vx + vy * vy) > threshold;
            static_cast<unsigned char*>(voters->accessLine(y))[x] = votes;
            nbVoters += votes;
        }
    return voters;
}

template<class F>
void registerRun(const char* name, unsigned int nbThreads, const F& f)
{
    benchmark::RegisterBenchmark(name,
                                 [=](benchmark::State& state) {
                                     core::setNbThreads(nbThreads);
                                     for (auto _ : state)
                                         f();
                                     core::setNbThreads(1);
                                 })
        ->Unit(benchmark::kMillisecond)
        ->Repetitions(3)
        ->UseRealTime();
}

}  // namespace

int main(int argc, char** argv)
{
    core::setNbThreads(1);
    const auto gradients = bench::gradientsOfPhotograph(g_size, image::eIBT_Real32);
    const ImagePtr gx = gradients.first, gy = gradients.second;
    const float threshold = static_cast<float>(bench::magnitudeQuantile(*gx, *gy, 0.88));
    unsigned long nbVoters = 0;
    const ImagePtr voters = votersOf(*gx, *gy, threshold, nbVoters);
    std::printf("%8.2f  percent of the pixels vote\n",
                100.0 * static_cast<double>(nbVoters) / static_cast<double>(g_size * g_size));
    const auto params = HoughLinesGradientImgParams::createNode(1.0, -M_PI, M_PI, 360u, threshold);
    const auto votes = [=] { imaproc::fd::houghLinesGradient2dImg(gx, gy, params, g_tolerance); };
    registerRun("votes", 1, votes);
    registerRun("votes_2_threads", 2, votes);
    registerRun("lines", 1, [=] { imaproc::fd::houghLinesGradient2d(gx, gy, params, nullptr, g_tolerance); });
    registerRun("all_angles", 1, [=] { imaproc::fd::houghLines2dImg(voters); });
    std::vector<bench::Ratio> ratios = {
        {"votes of gradients over those of as many pixels for 180 angles", "votes", "all_angles", "at most 0.3"},
        {"one thread over two", "votes", "votes_2_threads", "at least 1.6"},
        {"votes and peaks over votes", "lines", "votes", "shown"},
    };
#ifdef ORVIK_HAVE_OPENCV
    cv::setNumThreads(1);
    registerRun("opencv", 1, [=] {
        const cv::Mat in(static_cast<int>(g_size), static_cast<int>(g_size), CV_8UC1, voters->accessLine(0),
                         static_cast<std::size_t>(voters->getStrides().y));
        std::vector<cv::Vec2f> listed;
        cv::HoughLines(in, listed, 1, CV_PI / 180, 1000);
    });
    ratios.push_back({"OpenCV's lines of as many pixels over ours of gradients", "opencv", "lines", "at least 4"});
#endif
    return bench::runBenchmarks(argc, argv, ratios);
}
