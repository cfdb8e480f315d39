// Lines of the edges of a photograph, and drawn lines at fine steps, against a peer of the field where it is installed.

#include "LockMeter.h"
#include "Photographs.h"
#include "Ratios.h"

#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl1.h"
#include "Processor/HoughLines2d/HoughLines2dLvl1.h"
#include "Processor/HoughLines2dImg/HoughLines2dImgLvl1.h"
#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl1.h"

#include "frame/attr/Records.h"
#include "frame/core/Scheduler.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <random>

#ifdef ORVIK_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

using namespace orvik;
using namespace orvik::imaproc::attr;
using bench::ImagePtr;

namespace {

const unsigned long g_size = 2048;
const unsigned int g_nbAngles = 180;

unsigned long nbVoters(const ImagePtr& edges)
{
    unsigned long n = 0;
    for (unsigned long y = 0; y < edges->getSizeY(); ++y)
        for (unsigned long x = 0; x < edges->getSizeX(); ++x)
            n += static_cast<const unsigned char*>(edges->getLine(y))[x] != 0;
    return n;
}

/// Edges of the photograph at a fine scale, four times side by side: about every tenth pixel.
ImagePtr edgesOfPhotograph()
{
    const unsigned long part = g_size / 2;
    const auto gradients = imaproc::filter::gaussianGradient2dImg(bench::enlargedPhotograph(part), 0.8f);
    const double low = bench::magnitudeQuantile(*gradients.first, *gradients.second, 0.65);
    const ImagePtr edges =
        imaproc::fd::cannyEdges2dImg(gradients.first, gradients.second, CannyThresholds::createNode(low, 1.5 * low));
    const ImagePtr tiled = image::createImage(image::eIBT_UInt8, {g_size, g_size});
    for (unsigned long y = 0; y < g_size; ++y)
        for (unsigned long x = 0; x < g_size; ++x)
            static_cast<unsigned char*>(tiled->accessLine(y))[x] =
                static_cast<const unsigned char*>(edges->getLine(y % part))[x % part] != 0;
    return tiled;
}

ImagePtr asFloats(const ImagePtr& bytes)
{
    const ImagePtr floats = image::createImageLike(*bytes, image::eIBT_Real32);
    for (unsigned long y = 0; y < bytes->getSizeY(); ++y)
        for (unsigned long x = 0; x < bytes->getSizeX(); ++x)
            static_cast<float*>(floats->accessLine(y))[x] = static_cast<const unsigned char*>(bytes->getLine(y))[x];
    return floats;
}

benchmark::Counter rateOf(unsigned long n)
{
    return benchmark::Counter(static_cast<double>(n), benchmark::Counter::kIsIterationInvariantRate);
}

void registerVotes(const char* name, const ImagePtr& edges, unsigned long nbVotes, unsigned int nbThreads)
{
    benchmark::RegisterBenchmark(name,
                                 [=](benchmark::State& state) {
                                     core::setNbThreads(nbThreads);
                                     for (auto _ : state)
                                         imaproc::fd::houghLines2dImg(edges);
                                     core::setNbThreads(1);
                                     state.counters["votes"] = rateOf(nbVotes);
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

void registerLines(const char* name, const ImagePtr& edges)
{
    benchmark::RegisterBenchmark(name,
                                 [=](benchmark::State& state) {
                                     for (auto _ : state)
                                         state.counters["lines"] =
                                             static_cast<double>(imaproc::fd::houghLines2d(edges).first->size());
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

/// One load, one addition and one store for each bin that a vote changes, in a row that stays in the first cache.
void registerBound(unsigned long nbVotes)
{
    benchmark::RegisterBenchmark("bound",
                                 [=](benchmark::State& state) {
                                     std::vector<unsigned int> row(2048);
                                     for (auto _ : state)
                                         for (unsigned long i = 0; i < nbVotes; ++i) {
                                             volatile unsigned int* const bin = &row[i & 1023];
                                             bin[0] = bin[0] + 1;
                                             bin[1024] = bin[1024] + 1;
                                         }
                                     state.counters["votes"] = rateOf(nbVotes);
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

void printWaiting(const ImagePtr& edges)
{
    const int nbRuns = 20;
    core::setNbThreads(2);
    imaproc::fd::houghLines2dImg(edges);
    bench::LockMeter::restart();
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < nbRuns; ++i)
        imaproc::fd::houghLines2dImg(edges);
    const double elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("%8.2f  percent of the time of two threads, waiting for locks\n",
                100.0 * bench::LockMeter::waited() / (2 * elapsed));
    core::setNbThreads(1);
}

void printMemory(const ImagePtr& edges)
{
    for (const unsigned int nbThreads : {1u, 2u}) {
        core::setNbThreads(nbThreads);
        const ImagePtr accumulator = imaproc::fd::houghLines2dImg(edges);
        bench::MemoryMeter::restart();
        imaproc::fd::houghLines2dImg(edges);
        const double kept = static_cast<double>(accumulator->getStrides().y) * static_cast<double>(accumulator->getSizeY());
        std::printf("%8.1f  KB of memory beyond the accumulator's %.1f KB, %u thread%s\n",
                    (static_cast<double>(bench::MemoryMeter::peakAboveStart()) - kept) / 1024, kept / 1024, nbThreads,
                    nbThreads > 1 ? "s" : "");
    }
    core::setNbThreads(1);
}

struct DrawnLine
{
    double rho, theta;
};

/// The pixels within half a pixel of a line, along the axis that it is steeper to.
ImagePtr draw(const DrawnLine& line, long size)
{
    const ImagePtr image =
        image::createImage(image::eIBT_UInt8, {static_cast<unsigned long>(size), static_cast<unsigned long>(size)});
    const double cosine = std::cos(line.theta), sine = std::sin(line.theta);
    for (long i = 0; i < size; ++i) {
        const bool steep = std::fabs(cosine) > std::fabs(sine);
        const long j = std::lround(steep ? (line.rho - i * sine) / cosine : (line.rho - i * cosine) / sine);
        const long x = steep ? j : i, y = steep ? i : j;
        if (x >= 0 && y >= 0 && x < size && y < size)
            static_cast<unsigned char*>(image->accessLine(static_cast<unsigned long>(y)))[x] = 1;
    }
    return image;
}

/// What a search finds of drawn lines: how many it lists for each, and how far off the first one of them is.
struct Found
{
    double nbLines = 0, nbListed = 0, rhoError = 0, thetaError = 0;

    void add(const DrawnLine& drawn, unsigned long listed, double rho, double theta)
    {
        const double pi = 3.141592653589793;
        double turned = theta - drawn.theta, off = rho - drawn.rho;
        if (std::fabs(turned) > pi / 2) {  // the same line, seen from the other side
            turned -= turned > 0 ? pi : -pi;
            off = -rho - drawn.rho;
        }
        ++nbLines;
        nbListed += static_cast<double>(listed);
        rhoError += off;
        thetaError += turned * 180 / pi;
    }
    void print(const char* who) const
    {
        std::printf("%8.2f  lines listed for one drawn line by %s, 0.25 degrees, 0.5 pixels; mean errors of the first %+.3f "
                    "pixels and %+.3f degrees\n",
                    nbListed / nbLines, who, rhoError / nbLines, thetaError / nbLines);
    }
};

void printFineSteps()
{
    const double pi = 3.141592653589793;
    const auto params = HoughLinesImgParams::createNode(0.5, 0.0, pi, 720u, 0.0f);
    const auto extraction = HoughLinesExtractionParams::createNode(eHLTT_Ratio, 0.5, 10u);
    std::mt19937 random(1);
    Found ours, theirs;
    for (int i = 0; i < 200; ++i) {
        const long size = 400 + static_cast<long>(random() % 2);
        DrawnLine line;
        line.theta = std::uniform_real_distribution<double>(0, pi)(random);
        // Through a point not far from the centre, so that it is long.
        const double x = std::uniform_real_distribution<double>(150, 250)(random);
        const double y = std::uniform_real_distribution<double>(150, 250)(random);
        line.rho = x * std::cos(line.theta) + y * std::sin(line.theta);
        const ImagePtr image = draw(line, size);
        const auto lines = imaproc::fd::houghLines2d(image, params, extraction).first;
        if (lines->size() > 0)
            ours.add(line, lines->size(), (*lines)[0].get<HoughLine2dPpties::Rho>(),
                     (*lines)[0].get<HoughLine2dPpties::Theta>());
#ifdef ORVIK_HAVE_OPENCV
        const cv::Mat in(static_cast<int>(size), static_cast<int>(size), CV_8UC1, image->accessLine(0),
                         static_cast<std::size_t>(image->getStrides().y));
        std::vector<cv::Vec3f> listed;
        cv::HoughLines(in, listed, 0.5, pi / 720, 1);
        const float most = listed.empty() ? 0.0f : listed[0][2];
        cv::HoughLines(in, listed, 0.5, pi / 720, static_cast<int>(most / 2));
        if (!listed.empty())
            theirs.add(line, listed.size(), listed[0][0], listed[0][1]);
#endif
    }
    ours.print("us");
    if (theirs.nbLines > 0)
        theirs.print("OpenCV");
}

}  // namespace

int main(int argc, char** argv)
{
    core::setNbThreads(1);
    const ImagePtr edges = edgesOfPhotograph(), floats = asFloats(edges);
    const unsigned long nbVotes = nbVoters(edges) * g_nbAngles;
    std::printf("%8.2f  percent of the pixels vote\n",
                100.0 * static_cast<double>(nbVoters(edges)) / static_cast<double>(g_size * g_size));
    registerVotes("votes", edges, nbVotes, 1);
    registerVotes("votes_float", floats, nbVotes, 1);
    registerVotes("votes_2_threads", edges, nbVotes, 2);
    registerLines("lines", edges);
    registerBound(nbVotes);
    std::vector<bench::Ratio> ratios = {
        {"votes over the bound of one load, addition and store per bin", "votes", "bound", "shown"},
        {"votes of floats over the same bound", "votes_float", "bound", "shown"},
        {"votes and peaks over votes", "lines", "votes", "shown"},
        {"one thread over two", "votes", "votes_2_threads", "at least 1.6"},
    };
#ifdef ORVIK_HAVE_OPENCV
    cv::setNumThreads(1);
    benchmark::RegisterBenchmark("opencv",
                                 [=](benchmark::State& state) {
                                     const cv::Mat in(static_cast<int>(g_size), static_cast<int>(g_size), CV_8UC1,
                                                      edges->accessLine(0), static_cast<std::size_t>(edges->getStrides().y));
                                     std::vector<cv::Vec2f> listed;
                                     for (auto _ : state)
                                         cv::HoughLines(in, listed, 1, CV_PI / g_nbAngles,
                                                        1000000);  // votes alone: no bin has as many
                                     state.counters["votes"] = rateOf(nbVotes);
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
    ratios.push_back({"OpenCV's votes over ours", "opencv", "votes", "at least 1.5, aim for 3"});
    ratios.push_back({"OpenCV's votes over ours of floats", "opencv", "votes_float", "shown"});
    ratios.push_back({"OpenCV's votes over our votes and peaks", "opencv", "lines", "shown"});
#endif
    const int status = bench::runBenchmarks(argc, argv, ratios);
    printWaiting(edges);
    printMemory(edges);
    printFineSteps();
    return status;
}
