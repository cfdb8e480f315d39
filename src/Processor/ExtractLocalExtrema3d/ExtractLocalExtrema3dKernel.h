#pragma once

// Local extrema of one line of a volume, listed when the slices after it have entered the window. Compiled once per
// instruction set.

#include "Processor/ExtractLocalExtrema3d/ExtractLocalExtrema3dLvl3.h"

#include "Processor/ExtractLocalExtrema3d/SliceLines.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"
#include "frame/simd/Simd.h"

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd {
namespace {

/// What the kernel works with on one strip.
template<class Lines, class T>
struct VolumeStrip
{
    const Lines* lines;
    bool isListed;  // whether any value passes the threshold
    SliceLines<T> slice;
    std::vector<ExtremaWindow<T>> windows;  // along z, one for each line of a slice
    unsigned long firstZ;                   // of the strip, in the volume
    unsigned long distX, distY, distZ;
    attr::Voxels3d::Coll::Nodes& listed;

    /// Line `y` of a slice of the window, its element, enters; `row` is the parser's row of the first line of the slice.
    void enter(unsigned long element, unsigned long y, unsigned long row)
    {
        const auto raw = [&](unsigned long line) { return lines->accessBuffer(element, row + line); };
        if (y == 0)
            slice.begin();
        for (unsigned long line = y == 0 ? 0 : y + distY; line <= y + distY; ++line)
            slice.enter(raw(line));
        windows[y].enterElement(slice.line(), *lines);
        if (slice.hasNan())
            windows[y].closeNearNan(raw(y));
    }
};

template<class T, core::eInstructionSet Set>
std::vector<ExtremaWindow<T>> makeWindows(VolumeExtremaBuffers& buffers, const ExtremaKind<T>& kind, unsigned long n)
{
    std::vector<ExtremaWindow<T>> windows;
    windows.reserve(buffers.windows.size());
    for (ExtremaBuffers& window : buffers.windows)
        windows.emplace_back(buffers.scratch, window, kind, n, inWholeBlocks<T, Set>(n));
    return windows;
}

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult ExtractLocalExtrema3dLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    typedef LineZStrip3dWithKernelParser<Sample, attr::InKnlZStrip3d::StripBase> Lines;
    auto* const strip = onceAStrip(info, [&] {
        const ExtremaKind<Sample> kind = makeKind<Sample>(*value<attr::InLocalExtremaConfig>());
        const unsigned long n = info.nbAlignedData;
        const image::InputImageZStrip3dWithKernel& slices = *value<attr::InKnlZStrip3d>();
        const image::StripMargins& margins = slices.getMargins();
        return VolumeStrip<Lines, Sample>{parser<attr::InKnlZStrip3d, Sample>(),
                                          kind.isListed,
                                          SliceLines<Sample>(m_buffers->scratch, m_buffers->slice, kind.minima, n),
                                          makeWindows<Sample, Set>(*m_buffers, kind, n),
                                          slices.getStripStartOffsetZ(),
                                          margins.startX,
                                          margins.startY,
                                          margins.startZ,
                                          value<attr::OutVoxels3d>()->template access<attr::Voxels3d::Coll>().accessNodes()};
    });
    if (!strip)
        return wrongSampleType();
    if (!strip->isListed)
        return success();
    const unsigned long sizeY = m_buffers->windows.size(), y = info.lineIndex % sizeY;
    if (info.lineIndex == 0)
        for (unsigned long slice = 0; slice < 2 * strip->distZ; ++slice)
            for (unsigned long line = 0; line < sizeY; ++line)
                strip->enter(slice, line, strip->distY);
    strip->enter(2 * strip->distZ, y, strip->distY - y);

    const Sample* const centre = strip->lines->accessBuffer(strip->distZ, strip->distY) + strip->distX;
    const double z = static_cast<double>(strip->firstZ + info.lineIndex / sizeY);
    strip->windows[y].forEachExtremum(centre, [&](unsigned long x) {
        strip->listed.push_back(m_nodes.next());
        attr::Voxel3d& voxel = *strip->listed.back();
        voxel.set<attr::Voxel3d::X>(static_cast<double>(x));
        voxel.set<attr::Voxel3d::Y>(static_cast<double>(y));
        voxel.set<attr::Voxel3d::Z>(z);
        voxel.set<attr::Voxel3d::Value>(static_cast<double>(centre[x]));
    });
    return success();
}

}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

ORVIK_REGISTER_KERNELS(ExtractLocalExtrema3dLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::fd
