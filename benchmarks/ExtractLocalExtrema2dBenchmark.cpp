// Local extrema of an enlarged photograph at several distances, against a dilation and a comparison of a peer where it is
// installed: that gives a mask, no list, and all pixels of a plateau.

#include "Photographs.h"
#include "Ratios.h"

#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl1.h"

#include "frame/attr/Records.h"
#include "frame/core/Scheduler.h"

#include <cstdio>
#include <random>

#ifdef ORVIK_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

using namespace orvik;
using bench::ImagePtr;

namespace {

const unsigned long g_size = 4096;
const double g_brightest = 250;  // few pixels of the photograph are as bright
const unsigned int g_distances[] = {1, 3, 10, 50};

/// Noise has a local maximum about every ninth pixel at distance 1: more than a million.
ImagePtr noise()
{
    const ImagePtr image = image::createImage(image::eIBT_Real32, {g_size, g_size});
    std::mt19937 random(1);
    for (unsigned long y = 0; y < g_size; ++y)
        for (unsigned long x = 0; x < g_size; ++x)
            static_cast<float*>(image->accessLine(y))[x] = static_cast<float>(random() >> 8);
    return image;
}

void registerCase(const std::string& name, const ImagePtr& image, unsigned int dist, double threshold,
                  unsigned long maxNb = 1000000, unsigned int nbThreads = 1)
{
    const auto config = imaproc::attr::createLocalExtremaConfig(threshold, maxNb);
    benchmark::RegisterBenchmark(name.c_str(),
                                 [=](benchmark::State& state) {
                                     core::setNbThreads(nbThreads);
                                     std::size_t nbListed = 0;
                                     for (auto _ : state)
                                         nbListed = imaproc::fd::extractLocalExtrema2d(image, dist, dist, config)->size();
                                     state.counters["listed"] = static_cast<double>(nbListed);
                                     core::setNbThreads(1);
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

#ifdef ORVIK_HAVE_OPENCV
void registerPeer(const std::string& name, const ImagePtr& image, int type, unsigned int dist)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [=](benchmark::State& state) {
                                     const int side = 2 * static_cast<int>(dist) + 1;
                                     const cv::Mat in(static_cast<int>(g_size), static_cast<int>(g_size), type,
                                                      image->accessLine(0), static_cast<std::size_t>(image->getStrides().y));
                                     const cv::Mat kernel = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(side, side));
                                     cv::Mat dilated, mask;
                                     for (auto _ : state) {
                                         cv::dilate(in, dilated, kernel);
                                         cv::compare(in, dilated, mask, cv::CMP_EQ);
                                     }
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}
#endif

void printMemory(const ImagePtr& image)
{
    const auto none = imaproc::attr::createLocalExtremaConfig(1e9, 1000000);
    for (const unsigned int dist : g_distances) {
        imaproc::fd::extractLocalExtrema2d(image, dist, dist, none);
        bench::MemoryMeter::restart();
        imaproc::fd::extractLocalExtrema2d(image, dist, dist, none);
        std::printf("%8.2f  percent of the image's size, memory at distance %u, nothing listed\n",
                    100.0 * static_cast<double>(bench::MemoryMeter::peakAboveStart())
                        / static_cast<double>(4 * g_size * g_size),
                    dist);
    }
}

}  // namespace

int main(int argc, char** argv)
{
    core::setNbThreads(1);
#ifdef ORVIK_HAVE_OPENCV
    cv::setNumThreads(1);
#endif
    const ImagePtr real = bench::enlargedPhotograph(g_size, image::eIBT_Real32);
    const ImagePtr bytes = bench::enlargedPhotograph(g_size, image::eIBT_UInt8), rough = noise();
    std::vector<bench::Ratio> ratios;
    for (const unsigned int dist : g_distances) {
        const std::string d = std::to_string(dist);
        registerCase("extrema_float_" + d, real, dist, 0.0);
        registerCase("extrema_uint8_" + d, bytes, dist, 0.0);
        registerCase("extrema_best_float_" + d, real, dist, 0.0, 1000);
        registerCase("extrema_best_uint8_" + d, bytes, dist, 0.0, 1000);
        registerCase("extrema_few_float_" + d, real, dist, g_brightest * 64);
        registerCase("extrema_few_uint8_" + d, bytes, dist, g_brightest);
#ifdef ORVIK_HAVE_OPENCV
        registerPeer("opencv_float_" + d, real, CV_32FC1, dist);
        registerPeer("opencv_uint8_" + d, bytes, CV_8UC1, dist);
#endif
        const std::pair<std::string, std::string> lists[] = {
            {"", "all listed"}, {"best_", "the brightest 1000 of them listed"}, {"few_", "few above the threshold"}};
        for (const auto& list : lists) {
            const std::string what = list.second + ", distance " + d;
            ratios.push_back({"OpenCV's dilation and comparison over our list, float, " + what, "opencv_float_" + d,
                              "extrema_" + list.first + "float_" + d, "at least 1.5, aim for 2"});
            ratios.push_back({"OpenCV's dilation and comparison over our list, 8 bits, " + what, "opencv_uint8_" + d,
                              "extrema_" + list.first + "uint8_" + d, "at least 1"});
        }
    }
    registerCase("extrema_float_1_nothing_listed", rough, 1, 1e9);
    registerCase("extrema_float_1_million_listed", rough, 1, 0.0);
    registerCase("extrema_float_3_2_threads", real, 3, 0.0, 1000000, 2);
    registerCase("extrema_best_float_3_2_threads", real, 3, 0.0, 1000, 2);
    ratios.push_back({"float, distance 50 over distance 3", "extrema_float_50", "extrema_float_3", "at most 3"});
    ratios.push_back({"8 bits, distance 50 over distance 3", "extrema_uint8_50", "extrema_uint8_3", "at most 3"});
    ratios.push_back({"a million listed over nothing listed", "extrema_float_1_million_listed",
                      "extrema_float_1_nothing_listed", "shown"});
    // All that is listed is put in order by one thread.
    ratios.push_back({"one thread over two, all listed", "extrema_float_3", "extrema_float_3_2_threads", "shown"});
    ratios.push_back({"one thread over two, the brightest 1000 listed", "extrema_best_float_3",
                      "extrema_best_float_3_2_threads", "at least 1.7"});
    const int status = bench::runBenchmarks(argc, argv, ratios);
    printMemory(real);
    return status;
}
