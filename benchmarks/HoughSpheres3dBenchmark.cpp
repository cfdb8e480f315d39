// Spheres: the two forms of the accumulator, radii and the whole search in volumes with a gradient everywhere, and on drawn beads
// whose truth is known.

#include "Ratios.h"

#include "Processor/ComputeBestSpheresRadiiFromGradMagImg3d/ComputeBestSpheresRadiiFromGradMagImg3dLvl1.h"
#include "Processor/GradientCone.h"
#include "Processor/HoughSpheres3d/HoughSpheres3dLvl1.h"
#include "Processor/HoughSpheres3dImg/HoughSpheres3dImgLvl1.h"
#include "Processor/HoughSpheres3dImg/HoughSpheres3dImgLvl3.h"
#include "Processor/HoughSpheres3dLabelImg/HoughSpheres3dLabelImgLvl1.h"
#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgLvl1.h"
#include "siblings/Utility/Processor/EraseImg/EraseImgLvl2.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/Records.h"
#include "frame/core/Scheduler.h"
#include "frame/image/BaseImage.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <limits>
#include <map>
#include <random>
#include <tuple>
#include <vector>

using namespace orvik;
using namespace orvik::imaproc::attr;
using namespace orvik::imaproc::fd;
typedef boost::shared_ptr<image::BaseImage> ImagePtr;
typedef std::tuple<ImagePtr, ImagePtr, ImagePtr> Gradients;
typedef HoughSphere3dPpties Sphere;

namespace {

const unsigned int g_all = std::numeric_limits<unsigned int>::max();
const double g_angle = 0.1;
const unsigned long g_nbCenters = 100;

struct Radii
{
    long min, max;
    Ptr<HoughCirclesRadiusRange> range() const { return createHoughCirclesRadiusRange(min, max); }
};
const Radii g_usual = {8, 25};

/// Noise, smoothed, so that there is a gradient everywhere and neighbours have much the same.
const Gradients& gradientsOf(unsigned long size)
{
    static std::map<unsigned long, Gradients> made;
    Gradients& gradients = made[size];
    if (!std::get<0>(gradients)) {
        const ImagePtr volume = image::createImage(image::eIBT_Real32, {size, size, size});
        std::mt19937 random(5);
        std::uniform_real_distribution<float> value(0, 255);
        for (unsigned long z = 0; z < size; ++z)
            for (unsigned long y = 0; y < size; ++y)
                std::generate_n(static_cast<float*>(volume->accessLine(y, z)), size, [&] { return value(random); });
        gradients = imaproc::filter::gaussianGradient3dImg(volume, 2.0f);
    }
    return gradients;
}

void scores(const Gradients& g, const Radii& radii, eCircleIntensityType type, double angle, const ImagePtr& out)
{
    houghSpheres3dImg(std::get<0>(g), std::get<1>(g), std::get<2>(g), radii.range(), type, angle, g_all, out);
}

void registerScores(const char* name, unsigned long size, eRingForm form, unsigned int nbThreads, eCircleIntensityType type,
                    double angle, int repetitions)
{
    benchmark::RegisterBenchmark(name,
                                 [=](benchmark::State& state) {
                                     const Gradients& gradients = gradientsOf(size);
                                     const ImagePtr out = image::createImage(image::eIBT_Real32, {size, size, size});
                                     core::setNbThreads(nbThreads);
                                     HoughSpheres3dImgLvl3::forceForm(form);
                                     for (auto _ : state)
                                         scores(gradients, g_usual, type, angle, out);
                                     HoughSpheres3dImgLvl3::forceForm(eRF_ByCost);
                                     core::setNbThreads(1);
                                 })
        ->Unit(benchmark::kMillisecond)
        ->Iterations(1)
        ->Repetitions(repetitions)
        ->UseRealTime();
}

void registerRadii(const char* name, unsigned long size)
{
    benchmark::RegisterBenchmark(
        name,
        [=](benchmark::State& state) {
            const Gradients& g = gradientsOf(size);
            const auto centers = Voxels3d::createNode();
            std::mt19937 random(6);
            const auto at = [&] { return static_cast<double>(random() % size); };
            for (unsigned long i = 0; i < g_nbCenters; ++i)
                centers->access<Voxels3d::Coll>().push_back(Voxel3d::createNode(at(), at(), at(), 1));
            for (auto _ : state)
                computeBestSpheresRadiiFromGradMagImg3d(std::get<0>(g), std::get<1>(g), std::get<2>(g), eCIT_Both,
                                                        g_usual.range(), g_angle, g_all, centers,
                                                        HoughSpheres3dPpties::createNode());
        })
        ->Unit(benchmark::kMillisecond)
        ->Repetitions(3)
        ->UseRealTime();
}

// --- truths

struct Bead
{
    double x, y, z, radius;

    double distanceTo(double otherX, double otherY, double otherZ) const
    {
        return std::sqrt((x - otherX) * (x - otherX) + (y - otherY) * (y - otherY) + (z - otherZ) * (z - otherZ));
    }
};

/// 8 beads of radii 5 to 14, apart from one another and within the volume.
std::vector<Bead> beadsOf(unsigned long size, std::mt19937& random)
{
    std::vector<Bead> beads;
    const auto within = [&](double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); };
    while (beads.size() < 8) {
        const double radius = within(5, 14), end = static_cast<double>(size) - radius - 3;
        const Bead bead = {within(radius + 2, end), within(radius + 2, end), within(radius + 2, end), radius};
        const bool fits = std::none_of(beads.begin(), beads.end(), [&](const Bead& other) {
            return other.distanceTo(bead.x, bead.y, bead.z) < other.radius + bead.radius + 2;
        });
        if (fits)
            beads.push_back(bead);
    }
    return beads;
}

/// Beads of a contrast of 60 on a ground of 100, blurred by a voxel or so, with noise.
ImagePtr draw(const std::vector<Bead>& beads, unsigned long size, double step, double noise, std::mt19937& random)
{
    const ImagePtr volume = image::createImage(image::eIBT_Real32, {size, size, size});
    std::normal_distribution<double> deviation(0.0, 1.0);
    for (unsigned long z = 0; z < size; ++z)
        for (unsigned long y = 0; y < size; ++y)
            for (unsigned long x = 0; x < size; ++x) {
                double value = 100 + noise * deviation(random);
                for (const Bead& bead : beads) {
                    const double depth =
                        bead.radius
                        - bead.distanceTo(static_cast<double>(x), static_cast<double>(y), static_cast<double>(z));
                    value += depth > -6 ? step * 0.5 * std::erfc(-depth / std::sqrt(2.0)) : 0;
                }
                static_cast<float*>(volume->accessLine(y, z))[x] = static_cast<float>(value);
            }
    return volume;
}

/// How well the search tells drawn beads, by the contrast over the noise.
void printTruths()
{
    const Radii radii = {4, 16};
    for (const unsigned long size : {64ul, 96ul})
        for (const bool isBright : {true, false})
            for (const double contrastToNoise : {10.0, 5.0, 2.0}) {
                std::mt19937 random(7);
                double nbBeads = 0, nbListed = 0, nbFound = 0, bias = 0;
                std::vector<double> errors;
                for (int i = 0; i < 5; ++i) {
                    const std::vector<Bead> beads = beadsOf(size, random);
                    const ImagePtr volume = draw(beads, size, isBright ? 60 : -60, 60 / contrastToNoise, random);
                    const auto spheres = houghSpheres3d(volume, radii.range(), isBright ? eCIT_Inward : eCIT_Outward, g_all,
                                                        AccumIntensityThreshold::createNode(0.0, 0.4),
                                                        RemoveTooCloseCirclesParams::createNode(true, 1.0));
                    nbBeads += static_cast<double>(beads.size());
                    nbListed += static_cast<double>(spheres->size());
                    for (const Bead& bead : beads) {
                        double nearest = 3, radius = 0;
                        for (std::size_t k = 0; k < spheres->size(); ++k) {
                            const Sphere& sphere = (*spheres)[k];
                            const double distance =
                                bead.distanceTo(sphere.get<Sphere::X>(), sphere.get<Sphere::Y>(), sphere.get<Sphere::Z>());
                            if (distance < nearest && std::fabs(sphere.get<Sphere::Radius>() - bead.radius) < 3) {
                                nearest = distance;
                                radius = sphere.get<Sphere::Radius>();
                            }
                        }
                        if (radius == 0)
                            continue;
                        ++nbFound;
                        errors.push_back(nearest);
                        bias += radius - bead.radius;
                    }
                }
                std::sort(errors.begin(), errors.end());
                std::printf("%lu^3, %-6s contrast %2.0f times the noise: recall %.3f, precision %.3f, centres off by %.2f "
                            "(median), radii by %+.2f (mean)\n",
                            size, isBright ? "bright" : "dark", contrastToNoise, nbFound / nbBeads,
                            nbListed > 0 ? nbFound / nbListed : 1.0, errors.empty() ? 0.0 : errors[errors.size() / 2],
                            nbFound > 0 ? bias / nbFound : 0.0);
            }
}

/// 200 spheres of radius 10 in 256^3 voxels, and the zeros that they are drawn on.
void registerLabels()
{
    const unsigned long size = 256;
    const auto spheres = HoughSpheres3dPpties::createNode();
    std::mt19937 random(6);
    std::uniform_real_distribution<double> place(0, static_cast<double>(size));
    for (unsigned int i = 0; i < 200; ++i)
        spheres->access<HoughSpheres3dPpties::Coll>().push_back(Sphere::createNode(place(random), place(random),
                                                                                   place(random), 10.0, 1.0));
    const ImagePtr out = image::createImage(image::eIBT_Label8, {size, size, size});
    const ConstPtr<HoughSpheres3dPpties> drawn = spheres;
    bench::registerRun("labels", 1, [=] { houghSpheres3dLabelImg(drawn, out, out); });
    bench::registerRun("erasing", 1, [=] {
        const auto erase = processor::createInitialised<imaproc::util::EraseImgLvl2>();
        erase->set<OutSubImg2d>(out);
        processor::executeSyncRun(erase);
    });
}

void printLarge(unsigned long size, unsigned int nbThreads)
{
    const Gradients& gradients = gradientsOf(size);
    const ImagePtr out = image::createImage(image::eIBT_Real32, {size, size, size});
    core::setNbThreads(nbThreads);
    bench::MemoryMeter::restart();
    const auto begin = std::chrono::steady_clock::now();
    scores(gradients, g_usual, eCIT_Both, g_angle, out);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    core::setNbThreads(1);
    const double slice = static_cast<double>(size * size) * sizeof(float);
    std::printf(
        "%lu^3, radii %ld to %ld, %u threads: %.2f s, %.1f MB beyond gradients and scores; 2 * radius + 1 slices of scores "
        "are %.1f MB\n",
        size, g_usual.min, g_usual.max, nbThreads, seconds, static_cast<double>(bench::MemoryMeter::peakAboveStart()) / 1e6,
        static_cast<double>(2 * g_usual.max + 1) * slice / 1e6);
}

}  // namespace

int main(int argc, char** argv)
{
    core::setNbThreads(1);
    registerScores("gather", 128, eRF_Gather, 1, eCIT_Both, g_angle, 1);
    registerScores("votes", 128, eRF_Votes, 1, eCIT_Both, g_angle, 5);
    registerScores("votes_outward", 128, eRF_Votes, 1, eCIT_Outward, g_angle, 3);
    registerScores("scores", 128, eRF_ByCost, 1, eCIT_Both, g_angle, 5);
    registerScores("scores_2_threads", 128, eRF_ByCost, 2, eCIT_Both, g_angle, 5);
    registerScores("gather_64", 64, eRF_Gather, 1, eCIT_Both, g_angle, 3);
    registerScores("votes_64", 64, eRF_Votes, 1, eCIT_Both, g_angle, 3);
    registerScores("gather_64_wide", 64, eRF_Gather, 1, eCIT_Both, 1.0, 3);
    registerScores("votes_64_wide", 64, eRF_Votes, 1, eCIT_Both, 1.0, 3);
    registerScores("gather_64_middle", 64, eRF_Gather, 1, eCIT_Both, 0.3, 3);
    registerScores("votes_64_middle", 64, eRF_Votes, 1, eCIT_Both, 0.3, 3);
    registerRadii("radii_100", 128);
    registerLabels();
    const int status =
        bench::runBenchmarks(argc, argv,
                             {{"gathering over votes, 128^3, radii 8 to 25", "gather", "votes", "at least 20"},
                              {"one thread over two", "scores", "scores_2_threads", "at least 1.7"},
                              {"scores over radii of 100 centres", "scores", "radii_100", "at least 10"},
                              {"labels of 200 spheres over erasing their volume", "labels", "erasing", "at most 5"},
                              {"gathering over votes, 64^3, 0.1 radians", "gather_64", "votes_64", ""},
                              {"gathering over votes, 64^3, 0.3 radians", "gather_64_middle", "votes_64_middle", ""},
                              {"gathering over votes, 64^3, 1 radian", "gather_64_wide", "votes_64_wide", ""}});
    printLarge(256, 2);
    printTruths();
    return status;
}
