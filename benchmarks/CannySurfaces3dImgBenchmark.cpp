// Surfaces of a head: time against ITK's detector, where that is installed, with the gradient included; classes and hysteresis
// alone; threads; memory.

#include "Ratios.h"
#include "Volumes.h"

#include "Processor/CannySurfaces3dImg/CannySurfaces3dImgLvl1.h"

#include "frame/attr/Records.h"
#include "frame/core/Scheduler.h"
#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgLvl1.h"

#include <cstdio>
#include <cstring>
#include <functional>

#ifdef ORVIK_HAVE_ITK
#include <itkCannyEdgeDetectionImageFilter.h>
#include <itkImage.h>
#include <itkMultiThreaderBase.h>
#endif

using namespace orvik;
using namespace orvik::bench;
using namespace orvik::imaproc;

namespace {

const unsigned long g_size = 256;
const double g_low = 8.0, g_high = 20.0;  // grey levels a voxel: skin, skull and the folds of the brain

#ifdef ORVIK_HAVE_ITK
typedef itk::Image<float, 3> ItkImage;

ItkImage::Pointer itkVolumeOf(const ImagePtr& volume)
{
    const ItkImage::Pointer made = ItkImage::New();
    made->SetRegions(ItkImage::SizeType{{g_size, g_size, g_size}});
    made->Allocate();
    for (unsigned long z = 0; z < g_size; ++z)
        for (unsigned long y = 0; y < g_size; ++y)
            std::memcpy(made->GetBufferPointer() + (z * g_size + y) * g_size, volume->getLine(y, z), 4 * g_size);
    return made;
}

void itkSurfaces(const ItkImage::Pointer& volume)
{
    const auto canny = itk::CannyEdgeDetectionImageFilter<ItkImage, ItkImage>::New();
    canny->SetInput(volume);
    canny->SetVariance(1.0);
    canny->SetLowerThreshold(g_low);
    canny->SetUpperThreshold(g_high);
    canny->SetNumberOfWorkUnits(1);
    canny->Update();
}
#endif

}  // namespace

int main(int argc, char** argv)
{
    core::setNbThreads(1);
    const ImagePtr head = enlargedHead(g_size);
    const auto thresholds = attr::CannyThresholds::createNode(g_low, g_high);
    const ImagePtr x = image::createImageLike(*head, image::eIBT_Real32),
                   y = image::createImageLike(*head, image::eIBT_Real32);
    const ImagePtr z = image::createImageLike(*head, image::eIBT_Real32),
                   out = image::createImageLike(*head, image::eIBT_Binary);
    const auto gradient = [=] { filter::gaussianGradient3dImg(head, 1, 1, 1, 4, x, y, z); };
    const auto canny = [=] { fd::cannySurfaces3dImg(x, y, z, thresholds, attr::ePOP_Iterative, out); };
    gradient();
    const auto both = [=] {
        gradient();
        canny();
    };
    registerRun("surfaces", 1, canny);
    registerRun("surfaces_2_threads", 2, canny);
    registerRun("labels", 1, [=] { fd::cannySurfaces3dImg(x, y, z, thresholds, attr::ePOP_Labels, out); });
    registerRun("gradient", 1, gradient);
    registerRun("gradient_and_surfaces", 1, both);
    registerRun("gradient_and_surfaces_2_threads", 2, both);
    std::vector<Ratio> ratios = {{"one thread over two", "surfaces", "surfaces_2_threads", "at least 1.7"},
                                 {"one thread over two, gradient included", "gradient_and_surfaces",
                                  "gradient_and_surfaces_2_threads", "shown"},
                                 {"surfaces over the gradient", "surfaces", "gradient", "shown"},
                                 {"labels over iterative", "labels", "surfaces", "shown"}};
#ifdef ORVIK_HAVE_ITK
    itk::MultiThreaderBase::SetGlobalMaximumNumberOfThreads(1);
    const ItkImage::Pointer itkHead = itkVolumeOf(head);
    benchmark::RegisterBenchmark("itk",
                                 [=](benchmark::State& state) {
                                     for (auto _ : state)
                                         itkSurfaces(itkHead);
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
    ratios.push_back({"ITK's over gradient and surfaces", "itk", "gradient_and_surfaces", "at least 10"});
#endif
    const int status = runBenchmarks(argc, argv, ratios);
    MemoryMeter::restart();
    canny();
    std::printf("%8.2f  percent of a gradient's size, memory (below 3)\n",
                100.0 * static_cast<double>(MemoryMeter::peakAboveStart())
                    / static_cast<double>(4 * g_size * g_size * g_size));
    unsigned long nbVoxels = 0;
    for (unsigned long i = 0; i < g_size * g_size; ++i)
        for (unsigned long column = 0; column < g_size; ++column)
            nbVoxels += static_cast<const unsigned char*>(out->getLine(i % g_size, i / g_size))[column];
    std::printf("%8.2f  percent of the voxels are surface\n",
                100.0 * static_cast<double>(nbVoxels) / static_cast<double>(g_size * g_size * g_size));
    return status;
}
