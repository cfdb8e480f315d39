// Circles: the two forms of the accumulator, the whole search on a photograph and on drawn discs whose truth is known, against
// a peer of the field where it is installed.

#include "Photographs.h"
#include "Ratios.h"

#include "Processor/HoughCircles2d/HoughCircles2dLvl1.h"
#include "Processor/HoughCircles2dImg/HoughCircles2dImgLvl1.h"
#include "Processor/HoughCircles2dImg/HoughCircles2dImgLvl3.h"
#include "Processor/RingVotes.h"
#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl1.h"

#include "frame/attr/Records.h"
#include "frame/core/Scheduler.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <vector>

#ifdef ORVIK_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

using namespace orvik;
using namespace orvik::imaproc::attr;
using namespace orvik::imaproc::fd;
using bench::ImagePtr;
typedef HoughCircle2dPpties Circle;

namespace {

const unsigned int g_all = std::numeric_limits<unsigned int>::max();
const double g_angle = 0.1;

struct Radii
{
    long min, max;
    Ptr<HoughCirclesRadiusRange> range() const { return createHoughCirclesRadiusRange(min, max); }
    double nbPlaces() const
    {
        double n = 0;
        for (long dy = -max; dy <= max; ++dy)
            for (long dx = -max; dx <= max; ++dx)
                n += dx * dx + dy * dy >= min * min && dx * dx + dy * dy < (max + 1) * (max + 1);
        return n;
    }
};
const Radii g_usual = {15, 40}, g_wide = {5, 200}, g_small = {2, 6};

/// Scores from gradients of the photograph, by a form of the accumulator.
void registerScores(const char* name, unsigned long size, const Radii& radii, eRingForm form, unsigned int nbThreads)
{
    const auto gradients = bench::gradientsOfPhotograph(size, image::eIBT_Real32);
    const ImagePtr scores = image::createImage(image::eIBT_Real32, {size, size});
    benchmark::RegisterBenchmark(
        name,
        [=](benchmark::State& state) {
            core::setNbThreads(nbThreads);
            HoughCircles2dImgLvl3::forceForm(form);
            for (auto _ : state)
                houghCircles2dImg(gradients.first, gradients.second, radii.range(), eCIT_Both, g_angle, g_all, scores);
            HoughCircles2dImgLvl3::forceForm(eRF_ByCost);
            core::setNbThreads(1);
            // Of a place and 16 pixels.
            state.counters["ns"] =
                benchmark::Counter(radii.nbPlaces() * static_cast<double>(size * size) / 16 * 1e-9,
                                   benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
        })
        ->Unit(benchmark::kMillisecond)
        ->Repetitions(3)
        ->UseRealTime();
}

/// The whole search on the grey photograph.
void registerSearch(const char* name, const ImagePtr& picture, const Radii& radii)
{
    benchmark::RegisterBenchmark(name,
                                 [=](benchmark::State& state) {
                                     for (auto _ : state)
                                         state.counters["circles"] =
                                             static_cast<double>(houghCircles2d(picture, radii.range())->size());
                                 })
        ->Unit(benchmark::kMillisecond)
        ->Repetitions(3)
        ->UseRealTime();
}

#ifdef ORVIK_HAVE_OPENCV
cv::Mat matOf(const ImagePtr& picture)
{
    return cv::Mat(static_cast<int>(picture->getSizeY()), static_cast<int>(picture->getSizeX()), CV_8UC1,
                   picture->accessLine(0), static_cast<std::size_t>(picture->getStrides().y));
}

std::vector<cv::Vec3f> circlesByOpenCv(const cv::Mat& picture, int method, const Radii& radii)
{
    std::vector<cv::Vec3f> found;
    const bool isAlt = method == cv::HOUGH_GRADIENT_ALT;
    cv::HoughCircles(picture, found, method, isAlt ? 1.5 : 1, static_cast<double>(radii.min), isAlt ? 300 : 100,
                     isAlt ? 0.8 : 30, static_cast<int>(radii.min), static_cast<int>(radii.max));
    return found;
}

void registerPeer(const char* name, const ImagePtr& picture, int method, const Radii& radii, bool isLong)
{
    auto* const registered = benchmark::RegisterBenchmark(name,
                                                          [=](benchmark::State& state) {
                                                              for (auto _ : state)
                                                                  state.counters["circles"] = static_cast<double>(
                                                                      circlesByOpenCv(matOf(picture), method, radii).size());
                                                          })
                                 ->Unit(benchmark::kMillisecond)
                                 ->UseRealTime();
    if (isLong)
        registered->Iterations(1)->Repetitions(1);
}
#endif

// --- truths

struct Disc
{
    double x, y, radius;
};

/// 12 discs of radii 10 to 40 in a picture of 512 x 512; apart from one another, or wherever they fall, but for the centres.
std::vector<Disc> discsOf(bool areApart, std::mt19937& random)
{
    std::vector<Disc> discs;
    const auto within = [&](double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); };
    while (discs.size() < 12) {
        const Disc disc = {within(45, 467), within(45, 467), within(10, 40)};
        const bool fits = std::none_of(discs.begin(), discs.end(), [&](const Disc& other) {
            const double distance = std::hypot(disc.x - other.x, disc.y - other.y);
            return distance < (areApart ? disc.radius + other.radius + 5 : std::max(disc.radius, other.radius) + 5);
        });
        if (fits)
            discs.push_back(disc);
    }
    return discs;
}

/// Bright discs of 60 grey levels on a ground of 80, blurred by half a pixel or so, with noise.
ImagePtr draw(const std::vector<Disc>& discs, double noise, std::mt19937& random)
{
    const ImagePtr picture = image::createImage(image::eIBT_UInt8, {512, 512});
    std::normal_distribution<double> deviation(0.0, 1.0);
    for (unsigned long y = 0; y < 512; ++y)
        for (unsigned long x = 0; x < 512; ++x) {
            double cover = 0;
            for (const Disc& disc : discs)
                cover = std::max(cover, disc.radius + 0.5
                                            - std::hypot(static_cast<double>(x) - disc.x, static_cast<double>(y) - disc.y));
            const double value = 80 + 60 * std::clamp(cover, 0.0, 1.0) + noise * deviation(random);
            static_cast<unsigned char*>(picture->accessLine(y))[x] =
                static_cast<unsigned char>(std::clamp(value, 0.0, 255.0));
        }
    return picture;
}

/// How well lists of circles tell the discs: shares found and true, the median distance of centres, the mean and spread of
/// radii over the true ones.
struct Truth
{
    double nbDiscs = 0, nbListed = 0, nbFound = 0;
    std::vector<double> centerErrors, radiusErrors;

    void add(const std::vector<Disc>& discs, const std::vector<Disc>& listed)
    {
        nbDiscs += static_cast<double>(discs.size());
        nbListed += static_cast<double>(listed.size());
        for (const Disc& disc : discs) {
            const Disc* best = nullptr;
            const auto distance = [&](const Disc& other) { return std::hypot(other.x - disc.x, other.y - disc.y); };
            for (const Disc& other : listed)
                if (distance(other) < 3 && std::fabs(other.radius - disc.radius) < 4
                    && (!best || distance(other) < distance(*best)))
                    best = &other;
            if (!best)
                continue;
            ++nbFound;
            centerErrors.push_back(distance(*best));
            radiusErrors.push_back(best->radius - disc.radius);
        }
    }
    void print(const char* who, const char* where, double noise)
    {
        std::sort(centerErrors.begin(), centerErrors.end());
        double mean = 0, squares = 0;
        for (const double error : radiusErrors)
            mean += error / static_cast<double>(radiusErrors.size());
        for (const double error : radiusErrors)
            squares += (error - mean) * (error - mean) / static_cast<double>(radiusErrors.size());
        std::printf("%-24s %-11s noise %2.0f: recall %.3f, precision %.3f, centres off by %.2f (median), radii by %+.2f, "
                    "deviation %.2f\n",
                    who, where, noise, nbFound / nbDiscs, nbListed > 0 ? nbFound / nbListed : 1.0,
                    centerErrors.empty() ? 0.0 : centerErrors[centerErrors.size() / 2], mean, std::sqrt(squares));
    }
};

std::vector<Disc> toDiscs(const HoughCircles2dPpties& circles)
{
    std::vector<Disc> discs;
    for (std::size_t i = 0; i < circles.size(); ++i)
        discs.push_back({circles[i].get<Circle::X>(), circles[i].get<Circle::Y>(), circles[i].get<Circle::Radius>()});
    return discs;
}

void printTruths()
{
    const Radii radii = {8, 45};
    const int nbPictures = 10;
    for (const bool areApart : {true, false})
        for (const double noise : {0.0, 10.0, 20.0, 35.0}) {
            std::mt19937 random(7);
            Truth standard, coded, gradient, alt;
            for (int i = 0; i < nbPictures; ++i) {
                const std::vector<Disc> discs = discsOf(areApart, random);
                const ImagePtr picture = draw(discs, noise, random);
                // Noise turns gradients away from the radius. Smoothing turns them back, and a wider angle keeps them; the
                // standard method can't have that, since its scores are flat about a centre then.
                const auto search = [&](eHoughCircles2dAlgoMethod method, float sigma, double angle) {
                    const auto [gx, gy] = imaproc::filter::gaussianGradient2dImg(picture, sigma);
                    return toDiscs(*houghCircles2d(gx, gy, radii.range(), method, eCIT_Inward, angle, g_all,
                                                   AccumIntensityThreshold::createNode(0.0, 0.4), nullptr, nullptr,
                                                   nullptr));
                };
                standard.add(discs, search(eHCAM_Standard, 4.0f, 0.1));
                coded.add(discs, search(eHCAM_PhaseCoded, 1.5f, 0.3));
#ifdef ORVIK_HAVE_OPENCV
                const auto peer = [&](int method) {
                    std::vector<Disc> listed;
                    for (const cv::Vec3f& circle : circlesByOpenCv(matOf(picture), method, radii))
                        listed.push_back({circle[0], circle[1], circle[2]});
                    return listed;
                };
                gradient.add(discs, peer(cv::HOUGH_GRADIENT));
                alt.add(discs, peer(cv::HOUGH_GRADIENT_ALT));
#endif
            }
            const char* const where = areApart ? "apart" : "overlapping";
            standard.print("standard", where, noise);
            coded.print("phase-coded", where, noise);
#ifdef ORVIK_HAVE_OPENCV
            gradient.print("OpenCV, GRADIENT", where, noise);
            alt.print("OpenCV, GRADIENT_ALT", where, noise);
#endif
        }
}

void printMemory(unsigned long size, const Radii& radii)
{
    const auto gradients = bench::gradientsOfPhotograph(size, image::eIBT_Real32);
    const ImagePtr scores = image::createImage(image::eIBT_Real32, {size, size});
    for (const eRingForm form : {eRF_Gather, eRF_Votes}) {
        HoughCircles2dImgLvl3::forceForm(form);
        bench::MemoryMeter::restart();
        houghCircles2dImg(gradients.first, gradients.second, radii.range(), eCIT_Both, g_angle, g_all, scores);
        std::printf(
            "%8.2f  MB of memory beyond gradients and scores of %lu x %lu, radii %ld to %ld, %s, 1 thread; lines that "
            "rings reach are %.2f MB\n",
            static_cast<double>(bench::MemoryMeter::peakAboveStart()) / 1e6, size, size, radii.min, radii.max,
            form == eRF_Gather ? "gathered" : "by votes",
            static_cast<double>(2 * radii.max + 1) * static_cast<double>(size + 2 * static_cast<unsigned long>(radii.max))
                * 4e-6);
    }
    HoughCircles2dImgLvl3::forceForm(eRF_ByCost);
}

}  // namespace

int main(int argc, char** argv)
{
    core::setNbThreads(1);
    const ImagePtr large = bench::enlargedPhotograph(2048, image::eIBT_UInt8),
                   middle = bench::enlargedPhotograph(1024, image::eIBT_UInt8);
    registerScores("gather", 2048, g_usual, eRF_Gather, 1);
    registerScores("votes", 2048, g_usual, eRF_Votes, 1);
    registerScores("scores_2_threads", 2048, g_usual, eRF_ByCost, 2);
    registerScores("scores_16x16", 16, g_small, eRF_ByCost, 1);
    registerSearch("search", large, g_usual);
    registerSearch("search_wide", middle, g_wide);
    std::vector<bench::Ratio> ratios = {
        {"gathering over votes, radii 15 to 40", "gather", "votes", "at least 5"},
        {"one thread over two", "votes", "scores_2_threads", "at least 1.7"},
    };
#ifdef ORVIK_HAVE_OPENCV
    cv::setNumThreads(1);
    registerPeer("opencv_gradient", large, cv::HOUGH_GRADIENT, g_usual, false);
    registerPeer("opencv_alt", large, cv::HOUGH_GRADIENT_ALT, g_usual, false);
    registerPeer("opencv_gradient_wide", middle, cv::HOUGH_GRADIENT, g_wide, true);
    ratios.push_back({"our search over OpenCV's HOUGH_GRADIENT, radii 15 to 40", "search", "opencv_gradient", "at most 3"});
    ratios.push_back({"OpenCV's HOUGH_GRADIENT_ALT over our search, radii 15 to 40", "opencv_alt", "search", "at least 1"});
    ratios.push_back({"OpenCV's HOUGH_GRADIENT over our search, 1024 x 1024, radii 5 to 200", "opencv_gradient_wide",
                      "search_wide", "at least 20"});
#endif
    const int status = bench::runBenchmarks(argc, argv, ratios);
    printMemory(2048, g_usual);
    printTruths();
    return status;
}
