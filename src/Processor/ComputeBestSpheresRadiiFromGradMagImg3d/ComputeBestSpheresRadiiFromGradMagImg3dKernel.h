#pragma once

// Radii of the centres on one line. There is plain code alone: there is little work, and that about a few voxels.

#include "Processor/CircleCenters.h"
#include "Processor/ComputeBestSpheresRadiiFromGradMagImg3d/ComputeBestSpheresRadiiFromGradMagImg3dLvl3.h"
#include "Processor/ComputeBestSpheresRadiiFromGradMagImg3d/ShellScores.h"
#include "Processor/GradientCone.h"
#include "Processor/UnitGradients.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/core/Scheduler.h"
#include "frame/processor/KernelRegistrator.h"

#include <algorithm>
#include <cmath>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd {
namespace {

/// What the kernel works with on one strip.
struct ShellRadiiStrip
{
    const image::BaseImageZStrip3d* gradients[3];
    GradientCone cone;
    const attr::Voxels3d& centers;
    attr::HoughSpheres3dPpties::Coll::Nodes& spheres;
    unsigned long firstZ, sizeX, sizeY;
};

/// Reads the gradients of a row about column `x`, as far as shells reach; 0 outside. False where all of it lies outside.
template<class Sample>
bool lookAtRow(const ShellRadiiStrip& strip, long z, long y, long x, const ShellScores& scores)
{
    const long reach = scores.maxRadius;
    const long begin = std::max(x - reach, 0l), end = std::min(x + reach + 1, static_cast<long>(strip.sizeX));
    Sample* samples[3];
    bool isInside = false;
    for (unsigned int axis = 0; axis < 3; ++axis) {
        samples[axis] = static_cast<Sample*>(scores.samples.getDataPtr(axis));
        std::fill_n(samples[axis], scores.rowSize, Sample());
        const Sample* const line = static_cast<const Sample*>(strip.gradients[axis]->getImageLine(z, y));
        if (line)
            std::copy(line + begin, line + end, samples[axis] + (begin - x + reach));
        isInside = isInside || line;
    }
    const auto to = [&](unsigned long i) { return static_cast<float*>(scores.gradients.getDataPtr(i)); };
    toUnitGradients<Sample, 3>({samples[0], samples[1], samples[2]}, scores.rowSize, {to(0), to(1), to(2)}, to(3));
    return isInside;
}

/// Sums what all places about a centre give, by radius.
template<class Sample>
void sumShares(const ShellRadiiStrip& strip, const ShellScores::Center& center, ShellScores& scores)
{
    std::fill(scores.sums.begin(), scores.sums.end(), 0.0);
    const GradientCone& cone = strip.cone;
    const float least = cone.cosine, width = 1.0f - least;
    if (width == 0.0f)  // nothing passes
        return;
    const float* const unitX = static_cast<const float*>(scores.gradients.getDataPtr(0));
    const float* const unitY = static_cast<const float*>(scores.gradients.getDataPtr(1));
    const float* const unitZ = static_cast<const float*>(scores.gradients.getDataPtr(2));
    const float* const magnitude = static_cast<const float*>(scores.gradients.getDataPtr(3));
    const float sign = cone.isInward ? -1.0f : 1.0f;
    for (const ShellScores::Row& row : scores.rows) {
        const bool isInside = lookAtRow<Sample>(strip, static_cast<long>(center.z) + row.dz,
                                                static_cast<long>(center.y) + row.dy, static_cast<long>(center.x), scores);
        if (!isInside && !(least < 0.0f))
            continue;
        for (std::size_t k = row.begin; k < row.end; ++k) {
            const ShellScores::Place& place = scores.places[k];
            const int x = place.column;
            const float d = sign * (unitX[x] * place.units[0] + unitY[x] * place.units[1] + unitZ[x] * place.units[2]);
            const float share = cone.isBoth ? std::fabs(d) : d;
            if (share > least)
                scores.sums[place.radius] += static_cast<double>((share - least) / width * magnitude[x]);
        }
    }
}

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult ComputeBestSpheresRadiiFromGradMagImg3dLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    auto* const strip = onceAStrip(info, [&] {
        parser<attr::InGxKnlZStrip3d, Sample>();  // notice other sample types
        parser<attr::InGyKnlZStrip3d, Sample>();
        parser<attr::InGzKnlZStrip3d, Sample>();
        const image::InputImageZStrip3dWithKernel& slices = *value<attr::InGxKnlZStrip3d>();
        return ShellRadiiStrip{
            {&slices, value<attr::InGyKnlZStrip3d>().get(), value<attr::InGzKnlZStrip3d>().get()},
            makeCone(value<attr::InCircleIntensityType>(), value<attr::InMaxAngleWithGradDir>()),
            *value<attr::InHoughSpheres3dCenters>(),
            value<attr::OutHoughSpheres3dPpties>()->template access<attr::HoughSpheres3dPpties::Coll>().accessNodes(),
            slices.getStripStartOffsetZ(),
            slices.getSizeX(),
            slices.getSizeY()};
    });
    if (!strip)
        return wrongSampleType();
    ShellScores& scores = *m_scores;
    const unsigned long z = strip->firstZ + info.lineIndex / strip->sizeY, y = info.lineIndex % strip->sizeY;
    for (; scores.nbDone < scores.centers.size(); ++scores.nbDone) {
        const ShellScores::Center& center = scores.centers[scores.nbDone];
        if (center.z > z || (center.z == z && center.y > y))
            break;
        if (center.z != z || center.y != y || center.x >= info.nbData)
            continue;
        if (getOrigin().isCancellationRequested())
            return failure(core::getCancelledText());
        sumShares<Sample>(*strip, center, scores);
        strip->spheres[center.index] = sphereAt(strip->centers[center.index], scores.best());
    }
    return success();
}

}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

ORVIK_REGISTER_KERNELS(ComputeBestSpheresRadiiFromGradMagImg3dLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::fd
