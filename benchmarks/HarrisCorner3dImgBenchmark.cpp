// The Harris response of a volume: its kernel with AVX2 against plain code and against the same steps in scalars with the
// functions of the C library, the whole against the gradient and the tensor that it is made of, the tensor against its memory.

#include "Ratios.h"

#include "Processor/HarrisCorner3dImg/HarrisCorner3dImgLvl1.h"
#include "Processor/HarrisCorner3dImg/HarrisCorner3dImgLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/core/Scheduler.h"
#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgLvl1.h"
#include "siblings/Filtering/Processor/StructureTensor3dImg/StructureTensor3dImgLvl2.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <random>

using namespace orvik;
using namespace imaproc::attr;
using imaproc::ImagePtr;
typedef imaproc::fd::HarrisCorner3dImgLvl3 Kernel;

namespace {

const unsigned long g_size = 256;

ImagePtr volume()
{
    return image::createImage(image::eIBT_Real32, {g_size, g_size, g_size});
}

float* lineOf(const ImagePtr& image, unsigned long i)
{
    return static_cast<float*>(image->accessLine(i % g_size, i / g_size));
}

struct Volumes
{
    ImagePtr in = volume(), wk[6] = {volume(), volume(), volume(), volume(), volume(), volume()}, out = volume();

    void gradient() const { imaproc::filter::gaussianGradient3dImg(in, 1, 1, 1, 4, wk[0], wk[1], wk[2]); }
    /// Over the gradient, as in the chain.
    void tensor() const
    {
        const auto run = processor::createInitialised<imaproc::filter::StructureTensor3dImgLvl2>();
        run->set<InSubGxImg3d>(wk[0]);
        run->set<InSubGyImg3d>(wk[1]);
        run->set<InSubGzImg3d>(wk[2]);
        run->set<InSmoothingStdDev>(1.0f);
        run->set<InGaussianCoverage>(createGaussianCoverage());
        run->set<OutGxGxImg>(wk[0]);
        run->set<OutGyGyImg>(wk[1]);
        run->set<OutGzGzImg>(wk[2]);
        run->set<OutGxGyImg>(wk[3]);
        run->set<OutGxGzImg>(wk[4]);
        run->set<OutGyGzImg>(wk[5]);
        processor::executeSyncRun(run);
    }
    void copies() const
    {
        for (unsigned long i = 0; i < g_size * g_size; ++i)
            for (unsigned long product = 0; product < 6; ++product) {
                const float* const from = lineOf(wk[product % 3], i);
                float* const to = lineOf(wk[product], i);
                for (unsigned long x = 0; x < g_size; ++x)
                    to[x] = from[x] * 0.5f;
            }
    }
    void whole() const
    {
        const auto run = processor::createInitialised<imaproc::fd::HarrisCorner3dImgLvl1>();
        run->set<InImg3d>(in);
        run->set<OutWk1Img>(wk[0]);
        run->set<OutWk2Img>(wk[1]);
        run->set<OutWk3Img>(wk[2]);
        run->set<OutWk4Img>(wk[3]);
        run->set<OutWk5Img>(wk[4]);
        run->set<OutWk6Img>(wk[5]);
        run->set<OutImg>(out);
        processor::executeSyncRun(run);
    }
    /// Level 3 with the kernel of this pair of sets.
    void respond(eCornerResponseType type, core::eInstructionSet first, core::eInstructionSet second) const
    {
        core::InstructionSetsIdentifier sets;
        sets.init(first, second);
        Kernel::forceInstructionSets(sets);
        const auto strip = [&](unsigned long i) {
            return boost::make_shared<image::InputImageZStrip3d>(wk[i], PlanIndex(), 0, g_size);
        };
        const auto run = processor::createInitialised<Kernel>();
        run->set<InXXZStrip3d>(strip(0));
        run->set<InYYZStrip3d>(strip(1));
        run->set<InZZZStrip3d>(strip(2));
        run->set<InXYZStrip3d>(strip(3));
        run->set<InXZZStrip3d>(strip(4));
        run->set<InYZZStrip3d>(strip(5));
        run->set<InCornerDetectionParams>(CornerDetectionParams::createNode(type, 0.005f));
        run->set<OutZStrip3d>(boost::make_shared<image::OutputImageZStrip3d>(out, PlanIndex(), 0, g_size));
        processor::executeSyncRun(run);
        Kernel::releaseForcedInstructionSets();
    }
    template<class Response>
    void respondInScalars(const Response& response) const
    {
        for (unsigned long i = 0; i < g_size * g_size; ++i) {
            const float *const xx = lineOf(wk[0], i), *const yy = lineOf(wk[1], i), *const zz = lineOf(wk[2], i);
            const float *const xy = lineOf(wk[3], i), *const xz = lineOf(wk[4], i), *const yz = lineOf(wk[5], i);
            float* const to = lineOf(out, i);
            for (unsigned long x = 0; x < g_size; ++x)
                to[x] = response(xx[x], yy[x], zz[x], xy[x], xz[x], yz[x]);
        }
    }
};

float harrisInScalars(float xx, float yy, float zz, float xy, float xz, float yz)
{
    const float t = xx + yy + zz;
    const float r = (xy * yz - yy * xz) * xz + ((yy * zz - yz * yz) * xx - (zz * xy - xz * yz) * xy) - t * (t * t) * 0.005f;
    const float p = std::exp(std::log(std::fabs(r) + NumericLimits<float>::s_eps) * 0.33333334f);
    return 0.0f <= r ? p : -p;
}

float eigenvalueInScalars(float xx, float yy, float zz, float xy, float xz, float yz)
{
    const float q = (xx + yy + zz) / 3, p1 = yz * yz + (xy * xy + xz * xz), a = xx - q, b = yy - q, c = zz - q;
    const float p = std::sqrt((a * a + b * b + c * c + p1 + p1) / 6), s = NumericLimits<float>::s_sqrt_eps;
    float r = 0;
    if (p > s * s)
        r = (2 * xy * yz * xz + a * b * c - b * (xz * xz) - c * (xy * xy) - a * (yz * yz)) / (2 * (p * p * p));
    if (!(r > -1))
        r = -1;
    const bool isOne = r >= 1;
    const float phi = isOne ? 0 : std::acos(r) / 3;
    const float e1 = q + 2 * p * (isOne ? 1 : std::cos(phi)),
                e2 = q + 2 * p * (isOne ? -0.50000006f : std::cos(phi - 2.0943952f));
    return 3 * q - e1 - e2;
}

void printMemory(const Volumes& volumes)
{
    for (const unsigned int nbThreads : {1u, 2u}) {
        core::setNbThreads(nbThreads);
        volumes.whole();
        bench::MemoryMeter::restart();
        volumes.whole();
        std::printf("%8.2f  percent of a volume's size for each thread, memory beyond input, result and working images, "
                    "%u thread%s (below 3)\n",
                    100.0 * static_cast<double>(bench::MemoryMeter::peakAboveStart())
                        / static_cast<double>(4 * g_size * g_size * g_size * nbThreads),
                    nbThreads, nbThreads > 1 ? "s" : "");
    }
    core::setNbThreads(1);
}

}  // namespace

int main(int argc, char** argv)
{
    core::setNbThreads(1);
    const Volumes volumes;
    std::mt19937 random(1);
    for (unsigned long i = 0; i < g_size * g_size; ++i)
        for (unsigned long x = 0; x < g_size; ++x)
            lineOf(volumes.in, i)[x] = static_cast<float>(random() >> 24);
    volumes.whole();  // what the kernels are timed on is a tensor
    const std::pair<const char*, eCornerResponseType> measures[] = {{"harris", eCRT_Harris},
                                                                    {"eigenvalue", eCRT_MinEigenvalue}};
    std::vector<bench::Ratio> ratios;
    for (const auto& measure : measures) {
        const std::string name = measure.first;
        const eCornerResponseType type = measure.second;
        for (const auto& [first, second] : {std::make_pair(core::eIS_Generic, core::eIS_Generic),
                                            {core::eIS_Avx2, core::eIS_Avx2},
                                            {core::eIS_Fma, core::eIS_Avx2},
                                            {core::eIS_Avx512, core::eIS_Avx512}}) {
            if (!core::isAvailable(first) || !core::isAvailable(second))
                continue;
            const std::string of = core::getInstructionSetName(first);
            bench::registerRun(name + "_" + of, 1,
                               [=, &volumes, first = first, second = second] { volumes.respond(type, first, second); });
            if (first != core::eIS_Generic)
                ratios.push_back({"kernel of plain code, whose vectors have 16 bytes, over that of " + of + ", " + name,
                                  name + "_generic", name + "_" + of, "shown"});
            ratios.push_back({"steps in scalars over the kernel of " + of + ", " + name, name + "_scalars", name + "_" + of,
                              first == core::eIS_Avx2 ? "at least 4" : "shown"});
        }
    }
    bench::registerRun("harris_scalars", 1, [&] { volumes.respondInScalars(harrisInScalars); });
    bench::registerRun("eigenvalue_scalars", 1, [&] { volumes.respondInScalars(eigenvalueInScalars); });
    bench::registerRun("gradient", 1, [&] { volumes.gradient(); });
    bench::registerRun("tensor", 1, [&] { volumes.tensor(); });
    bench::registerRun("copies", 1, [&] { volumes.copies(); });
    bench::registerRun("gradient_and_tensor", 1, [&] {
        volumes.gradient();
        volumes.tensor();
    });
    bench::registerRun("whole", 1, [&] { volumes.whole(); });
    bench::registerRun("whole_2_threads", 2, [&] { volumes.whole(); });
    ratios.push_back({"whole over gradient and tensor", "whole", "gradient_and_tensor", "at most 4"});
    ratios.push_back({"tensor over reading and writing its images once", "tensor", "copies", "at most 3"});
    ratios.push_back({"one thread over two", "whole", "whole_2_threads", "aim for 1.7"});
    const int status = bench::runBenchmarks(argc, argv, ratios);
    printMemory(volumes);
    return status;
}
