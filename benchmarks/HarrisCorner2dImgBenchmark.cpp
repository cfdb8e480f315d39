// The Harris response of an enlarged photograph, against the same chain of a peer of the field where it is installed; the
// list of corners against the response.

#include "Photographs.h"
#include "Ratios.h"

#include "Processor/HarrisCorner2d/HarrisCorner2dLvl1.h"
#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl1.h"

#include "frame/attr/Records.h"
#include "frame/core/Scheduler.h"

#include <cmath>
#include <cstdio>

#ifdef ORVIK_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

using namespace orvik;
using bench::ImagePtr;

namespace {

const unsigned long g_size = 4096;

void run(const ImagePtr& in, const ImagePtr& out)
{
    imaproc::fd::harrisCorner2dImg(in, 1.0f, nullptr, nullptr, out);
}

template<class Call>
void registerCase(const char* name, unsigned int nbThreads, benchmark::TimeUnit unit, const Call& call)
{
    benchmark::RegisterBenchmark(name,
                                 [=](benchmark::State& state) {
                                     core::setNbThreads(nbThreads);
                                     for (auto _ : state)
                                         call();
                                     core::setNbThreads(1);
                                 })
        ->Unit(unit)
        ->UseRealTime();
}

void printMemory(const ImagePtr& in, const ImagePtr& out)
{
    for (const unsigned int nbThreads : {1u, 2u}) {
        core::setNbThreads(nbThreads);
        run(in, out);
        bench::MemoryMeter::restart();
        run(in, out);
        const double one = static_cast<double>(g_size * g_size * sizeof(float));
        std::printf("%8.2f  percent of the result's size, memory beyond input, result and three working images, "
                    "%u thread%s\n",
                    100.0 * (static_cast<double>(bench::MemoryMeter::peakAboveStart()) - 3 * one) / one, nbThreads,
                    nbThreads > 1 ? "s" : "");
    }
    core::setNbThreads(1);
}

#ifdef ORVIK_HAVE_OPENCV

/// The images that the chain needs; those of a caller who keeps them from call to call are not allocated again.
struct OpencvHarris
{
    cv::Mat gx, gy, xx, yy, xy, trace, determinant;

    void run(const cv::Mat& in, const cv::Mat& smoothing, const cv::Mat& derivative, cv::Mat& out)
    {
        cv::sepFilter2D(in, gx, CV_32F, derivative, smoothing, cv::Point(-1, -1), 0, cv::BORDER_REPLICATE);
        cv::sepFilter2D(in, gy, CV_32F, smoothing, derivative, cv::Point(-1, -1), 0, cv::BORDER_REPLICATE);
        const auto smoothed = [&](const cv::Mat& a, const cv::Mat& b, cv::Mat& product) {
            cv::multiply(a, b, product);
            cv::sepFilter2D(product, product, CV_32F, smoothing, smoothing, cv::Point(-1, -1), 0, cv::BORDER_REPLICATE);
        };
        smoothed(gx, gx, xx);
        smoothed(gy, gy, yy);
        smoothed(gx, gy, xy);
        cv::add(xx, yy, trace);
        cv::multiply(trace, trace, trace, 0.04);
        cv::multiply(xx, yy, determinant);
        cv::multiply(xy, xy, xy);
        cv::subtract(determinant, xy, determinant);
        cv::subtract(determinant, trace, out);
    }
};

void registerOpencv(const ImagePtr& in, const ImagePtr& ours)
{
    cv::Mat smoothing(1, 9, CV_64F), derivative(1, 9, CV_64F);
    for (int k = -4; k <= 4; ++k) {
        smoothing.at<double>(k + 4) = std::exp(-0.5 * k * k);
        derivative.at<double>(k + 4) = k * smoothing.at<double>(k + 4);
    }
    double slope = 0;
    for (int k = -4; k <= 4; ++k)
        slope += k * derivative.at<double>(k + 4);
    smoothing.convertTo(smoothing, CV_32F, 1 / cv::sum(smoothing)[0]);
    derivative.convertTo(derivative, CV_32F, 1 / slope);
    const int size = static_cast<int>(g_size);
    const cv::Mat view(size, size, CV_8U, in->accessLine(0), static_cast<std::size_t>(in->getStrides().y));
    cv::setNumThreads(1);
    cv::Mat out;
    OpencvHarris().run(view, smoothing, derivative, out);
    run(in, ours);
    double largest = 0, difference = 0;
    for (unsigned long y = 0; y < g_size; y += 5)
        for (unsigned long x = 0; x < g_size; x += 3) {
            const double root = static_cast<double>(static_cast<const float*>(ours->getLine(y))[x]);
            const double theirs = static_cast<double>(out.at<float>(static_cast<int>(y), static_cast<int>(x)));
            largest = std::max(largest, std::fabs(theirs));
            difference = std::max(difference, std::fabs(root * std::fabs(root) - theirs));
        }
    std::printf("largest difference from OpenCV's chain: %.2g of the largest response\n", difference / largest);
    benchmark::RegisterBenchmark("opencv_harris", [=](benchmark::State& state) {
        for (auto _ : state) {
            cv::Mat result;
            OpencvHarris().run(view, smoothing, derivative, result);
        }
    })->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("opencv_harris_kept_images", [=](benchmark::State& state) {
        OpencvHarris images;
        cv::Mat result;
        for (auto _ : state)
            images.run(view, smoothing, derivative, result);
    })->Unit(benchmark::kMillisecond);
}

#endif

}  // namespace

int main(int argc, char** argv)
{
    core::setNbThreads(1);
    const ImagePtr in = bench::enlargedPhotograph(g_size, image::eIBT_UInt8);
    const ImagePtr little = bench::enlargedPhotograph(16, image::eIBT_UInt8);
    const ImagePtr out = image::createImageLike(*in, image::eIBT_Real32);
    const ImagePtr littleOut = image::createImageLike(*little, image::eIBT_Real32);
    registerCase("harris_uint8", 1, benchmark::kMillisecond, [=] { run(in, out); });
    registerCase("harris_uint8_2_threads", 2, benchmark::kMillisecond, [=] { run(in, out); });
    registerCase("harris_call_16x16", 1, benchmark::kMicrosecond, [=] { run(little, littleOut); });
    registerCase("harris_list_uint8", 1, benchmark::kMillisecond, [=] { imaproc::fd::harrisCorner2d(in, 1.0f, 1000, 5); });
#ifdef ORVIK_HAVE_OPENCV
    registerOpencv(in, out);
#endif
    const int status =
        bench::runBenchmarks(argc, argv,
                             {{"OpenCV's chain over ours, each with new working images, one thread", "opencv_harris",
                               "harris_uint8", "at least 1, aim for 1.5"},
                              {"OpenCV's chain with images that are kept over ours with new ones",
                               "opencv_harris_kept_images", "harris_uint8", "no figure is set"},
                              {"one thread over two", "harris_uint8", "harris_uint8_2_threads", "at least 1.7"},
                              {"the 1000 strongest corners over the response alone, which the list needs too",
                               "harris_list_uint8", "harris_uint8", "no figure is set"}});
    printMemory(in, out);
    return status;
}
