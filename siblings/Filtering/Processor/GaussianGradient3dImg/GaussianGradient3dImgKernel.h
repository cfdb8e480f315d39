#pragma once

// The three passes of separable Gaussian derivatives of volumes: across slices, across the lines of a slice, along lines.
// Compiled once per instruction set.

#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgLvl3.h"
#include "siblings/Filtering/SeparableFilter.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"
#include "frame/simd/Simd.h"

#include <algorithm>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace filter {

namespace {

/// The element that stands for `i` where the nearest one does.
inline unsigned long nearestElement(unsigned long i, unsigned long before, unsigned long size)
{
    return i < before ? 0 : std::min(i - before, size - 1);
}

/// A block of a line as double; the image has `nbLeft` samples of the line from there on.
template<class Sample>
void widenPart(double* to, const Sample* from, unsigned long nbLeft, bool hasSlack)
{
    if (nbLeft >= kBlock || hasSlack) {
        widenBlock(to, from);
        return;
    }
    alignas(64) Sample part[kBlock] = {};
    std::copy_n(from, nbLeft, part);
    widenBlock(to, part);
}

/// What the kernel works with on one strip.
template<class Sample>
struct VolumeStrip
{
    const image::InputImageZStrip3dWithKernel& slices;
    GaussianVolumeBuffers& buffers;
    const PlainStripParser *outX, *outY, *outZ;  // null where they are not wanted
    LineFilter<double> writeX, writeY, writeZ;

    /// The pass across slices, of all lines of one.
    void combineSlices(unsigned long z, unsigned long n) const
    {
        double* const tile = static_cast<double*>(buffers.tile.getDataPtr());
        const unsigned long halfSize = buffers.z.halfSize(), sizeX = slices.getSizeX();
        const Combination to = {outX || outY ? &buffers.smoothed : nullptr, outZ ? &buffers.derived : nullptr};
        for (unsigned long row = 0; row < slices.getSizeY(); ++row) {
            for (unsigned long k = 0; k <= 2 * halfSize; ++k) {
                const unsigned long slice = nearestElement(z + k, halfSize, slices.getImageSizeZ());
                buffers.lines[k] = slices.getImageLine(static_cast<long>(slice), static_cast<long>(row));
            }
            for (unsigned long x = 0; x < n; x += kBlock) {
                const unsigned long nbLeft = x < sizeX ? sizeX - x : 0;
                for (unsigned long k = 0; k <= 2 * halfSize; ++k)
                    widenPart(tile + k * kBlock, static_cast<const Sample*>(buffers.lines[k]) + x, nbLeft,
                              slices.hasSlack());
                filterTile(tile, 1, buffers.z, row, x, to);
            }
        }
    }

    /// The pass across the lines of a slice, of as many as go together from `y` on.
    void combineSlice(const CombinedLines& from, unsigned long y, const processor::ProcessingInfo& info,
                      const Combination& to) const
    {
        if (!to.smooth && !to.derivative)
            return;
        double* const tile = static_cast<double*>(buffers.tile.getDataPtr());
        const unsigned long halfSize = buffers.y.halfSize(), nbLines = std::min(g_nbLinesAtOnce, slices.getSizeY() - y);
        if (y < halfSize || y + nbLines + halfSize > slices.getSizeY()) {
            combineLines(
                y, slices.getSizeY(), info, buffers.y, buffers.x.halfSize(), tile,
                [&](unsigned long k, unsigned long x, double* block, unsigned long) {
                    const double* const line = from.get<double>(nearestElement(y + k, halfSize, slices.getSizeY()));
                    std::copy_n(line + x, kBlock, block);
                },
                &to, 1);
            return;
        }
        // The lines lie as they are read.
        const auto distance = static_cast<unsigned long>(from.get<double>(1) - from.get<double>(0));
        for (unsigned long x = 0; x < info.nbAlignedData; x += kBlock)
            filterBlocks(from.get<double>(y) + x, distance, nbLines, buffers.y, 0, x, to);
        extendLines<double>(to, nbLines, info, buffers.x.halfSize());
    }
};

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult GaussianGradient3dImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    const auto* const strip = onceAStrip(info, [&] {
        const auto typeOf = [](const BaseStripAttribute& out) { return out.getImageBufferType(); };
        parser<attr::InKnlZStrip3d, Sample>();  // notices another sample type
        return VolumeStrip<Sample>{*value<attr::InKnlZStrip3d>(),
                                   m_buffers,
                                   plainParser<attr::OutOptGradXZStrip3d>(),
                                   plainParser<attr::OutOptGradYZStrip3d>(),
                                   plainParser<attr::OutOptGradZZStrip3d>(),
                                   lineFilterFor<true, double>(typeOf(*attribute<attr::OutOptGradXZStrip3d>())),
                                   lineFilterFor<false, double>(typeOf(*attribute<attr::OutOptGradYZStrip3d>())),
                                   lineFilterFor<false, double>(typeOf(*attribute<attr::OutOptGradZZStrip3d>()))};
    });
    if (!strip)
        return wrongSampleType();
    const unsigned long sizeY = strip->slices.getSizeY(), n = info.nbAlignedData, y = info.lineIndex % sizeY;
    if (y == 0)
        strip->combineSlices(strip->slices.getStripStartOffsetZ() + info.lineIndex / sizeY, n);
    if (y % g_nbLinesAtOnce == 0) {
        strip->combineSlice(m_buffers.smoothed, y, info,
                            {strip->outX ? &m_buffers.ofX : nullptr, strip->outY ? &m_buffers.ofY : nullptr});
        strip->combineSlice(m_buffers.derived, y, info, {strip->outZ ? &m_buffers.ofZ : nullptr, nullptr});
    }
    const unsigned long line = y % g_nbLinesAtOnce;
    if (strip->outX)
        strip->writeX(m_buffers.ofX.template get<double>(line), 1, n, m_buffers.x, strip->outX->accessSamples());
    if (strip->outY)
        strip->writeY(m_buffers.ofY.template get<double>(line), 1, n, m_buffers.x, strip->outY->accessSamples());
    if (strip->outZ)
        strip->writeZ(m_buffers.ofZ.template get<double>(line), 1, n, m_buffers.x, strip->outZ->accessSamples());
    return success();
}

}}}  // namespace orvik::imaproc::filter

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace filter {

ORVIK_REGISTER_KERNELS(GaussianGradient3dImgLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::filter
