#pragma once

// The classes of the voxels of one line. Compiled once per instruction set.

#include "Processor/CannySurfaces3dImg/CannySurfaces3dImgLvl3.h"
#include "Processor/CannySurfaces3dImg/SurfaceClasses.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"
#include "frame/simd/Simd.h"

#include <cstring>
#include <type_traits>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd {
namespace {

/// What the kernel works with on one strip.
template<class Sample, class Magnitude>
struct SurfaceStrip
{
    typedef LineZStrip3dWithKernelParser<Sample, attr::InGxKnlZStrip3d::StripBase> Lines;

    const Lines *gx, *gy, *gz;
    const LineZStrip3dParser<unsigned char, attr::OutZStrip3d::StripBase>* out;
    SquaredThresholds<Sample> thresholds;
    unsigned long sizeY;
    /// Squared magnitudes of three slices, of each the lines -1 to sizeY, of each the columns -1 to n; column 0 is aligned.
    image::FragHybridBuffer& slices;
    unsigned long rowSize;

    static constexpr unsigned long s_lead = 64 / sizeof(Magnitude) - 1;

    Magnitude* row(unsigned long slice, unsigned long line) const
    {
        return static_cast<Magnitude*>(slices.getDataPtr(slice)) + line * rowSize + s_lead;
    }
    /// Row `line` of a slice of magnitudes, from line `kernelLine` of the kernel.
    void computeRow(unsigned long slice, unsigned long line, unsigned long kernelLine, unsigned long n) const
    {
        computeGradientMagnitudeSquare(gx->accessBuffer(slice, kernelLine), gy->accessBuffer(slice, kernelLine),
                                       gz->accessBuffer(slice, kernelLine), row(slice, line), n + 2);
    }
};

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult CannySurfaces3dImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    typedef typename std::conditional<std::is_same<Sample, float>::value, double, typename MagnitudeOf<Sample>::type>::type
        Magnitude;
    return processFunction<Sample, Magnitude, Set>(info);
}

template<class Sample, class Magnitude, core::eInstructionSet Set>
BoolResult CannySurfaces3dImgLvl3::processFunction(const processor::ProcessingInfo& info)
{
    typedef attr::CannyThresholds Limits;
    typedef SurfaceStrip<Sample, Magnitude> Strip;
    const unsigned long n = info.nbAlignedData;
    auto* const strip = onceAStrip(info, [&] {
        const Limits& limits = *value<attr::InCannyThresholds>();
        return Strip{parser<attr::InGxKnlZStrip3d, Sample>(),
                     parser<attr::InGyKnlZStrip3d, Sample>(),
                     parser<attr::InGzKnlZStrip3d, Sample>(),
                     parser<attr::OutZStrip3d, unsigned char>(),
                     SquaredThresholds<Sample>(limits.get<Limits::LowThreshold>(), limits.get<Limits::HighThreshold>()),
                     value<attr::InGxKnlZStrip3d>()->getSizeY(),
                     m_magnitudes[info.partIndex],
                     processor::alignedCount(Strip::s_lead + n + 2 + Lanes<double>::count, Strip::s_lead + 1)};
    });
    if (!strip)
        return wrongSampleType();

    const unsigned long y = info.lineIndex % strip->sizeY;
    if (info.lineIndex == 0)
        strip->slices.init(DataTypeOf<Magnitude>::value, (strip->sizeY + 2) * strip->rowSize, 3);
    else if (y == 0)
        strip->slices.rollUpFragments();
    for (unsigned long slice = info.lineIndex < strip->sizeY ? 0 : 2; slice < 3; ++slice)
        for (unsigned long line = y == 0 ? 0 : 2; line < 3; ++line)
            strip->computeRow(slice, y + line, line, n);

    // The gradient of the line is asked for where it has a candidate: most lines of most volumes have none.
    VolumeNeighbourhood<Sample, Magnitude> line{};
    unsigned char* const classes = strip->out->accessBuffer();
    for (unsigned long i = 0; i < n; i += kBlock) {
        if (!mayHaveCandidate(strip->row(1, y + 1) + i + 1, strip->thresholds)) {
            std::memset(classes + i, 0, kBlock);
            continue;
        }
        if (!line.gx)
            line = {
                {}, strip->gx->accessBuffer(1, 1) + 1, strip->gy->accessBuffer(1, 1) + 1, strip->gz->accessBuffer(1, 1) + 1};
        VolumeNeighbourhood<Sample, Magnitude> at{{}, line.gx + i, line.gy + i, line.gz + i};
        for (unsigned long slice = 0; slice < 3; ++slice)
            for (unsigned long row = 0; row < 3; ++row)
                at.rows[slice][row] = strip->row(slice, y + row) + i;
        alignas(64) long blockClasses[kBlock];
        classify(SurfaceBlock(at), strip->thresholds, blockClasses);
        copyBlock(blockClasses, classes + i, kBlock);
    }
    return success();
}

}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

ORVIK_REGISTER_KERNELS(CannySurfaces3dImgLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::fd
