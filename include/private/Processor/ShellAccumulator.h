#pragma once

// The accumulator of spheres, one line after the other: each voxel gathers from the places of its shells. Compiled once per
// instruction set.

#include "Processor/PlaceSums.h"
#include "Processor/ShellBuffers.h"
#include "Processor/Shells.h"
#include "Processor/UnitGradients.h"

#include "frame/image/Strips.h"
#include "frame/processor/BaseDataParser.h"
#include "frame/simd/Simd.h"

#include <algorithm>
#include <cstddef>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd { namespace {

/// A strip's lines of an accumulator, one after the other, slice by slice. `gradients(z, y)` gives the three lines of gradients
/// at line y of slice z of the volume, from the left margin on; `isCancelled` tells whether to end early.
template<class Sample>
class ShellAccumulator
{
public:
    ShellAccumulator(const Shells& shells, ShellBuffers& buffers, const processor::ProcessingInfo& info,
                     const image::BaseImageZStrip3d& strip)
        : m_shells(shells), m_buffers(buffers), m_radius(shells.getMaxRadius()), m_nbAligned(info.nbAlignedData),
          m_firstSlice(static_cast<long>(strip.getStripStartOffsetZ())), m_nbRows(static_cast<long>(strip.getSizeY())),
          m_nbSlices(static_cast<long>(strip.getImageSizeZ()))
    {
        if (shells.getCone().isOpen)
            buffers.initGather(m_nbAligned, strip.getSizeY(), strip.getImageSizeZ(), m_radius);
    }

    /// False when cancelled.
    template<class Gradients, class IsCancelled>
    bool line(unsigned long i, const Gradients& gradients, const IsCancelled& isCancelled, float* out)
    {
        const long z = m_firstSlice + static_cast<long>(i) / m_nbRows, y = static_cast<long>(i) % m_nbRows;
        if (!m_shells.getCone().isOpen) {
            std::fill_n(out, m_nbAligned, 0.0f);
            return true;
        }
        if (i == 0)
            for (long slice = z - m_radius; slice < z + m_radius; ++slice)
                if (!enterRows(slice, 0, m_nbRows, gradients, isCancelled))
                    return false;
        // Of the slice that enters, as far as this line reaches.
        if (!enterRows(z + m_radius, y == 0 ? 0 : y + m_radius, y + m_radius + 1, gradients, isCancelled))
            return false;
        return gather(z, y, isCancelled, out);
    }

private:
    template<class Gradients, class IsCancelled>
    bool enterRows(long z, long begin, long end, const Gradients& gradients, const IsCancelled& isCancelled)
    {
        if (z < 0 || z >= m_nbSlices)
            return true;
        for (long y = begin; y < std::min(end, m_nbRows); ++y) {
            if (isCancelled())
                return false;
            const auto [gx, gy, gz] = gradients(z, y);
            const unsigned long pitch = m_buffers.pitch;
            float* const to = m_buffers.lineAt(z, y);
            toUnitGradients<Sample, 3>({gx, gy, gz}, m_nbAligned + 2 * static_cast<unsigned long>(m_radius) + 1,
                                       {to, to + pitch, to + 2 * pitch}, to + 3 * pitch);
        }
        return true;
    }
    template<class IsCancelled>
    bool gather(long z, long y, const IsCancelled& isCancelled, float* out) const
    {
        const ShellElement* const elements = m_shells.getElements().data();
        const auto addAll = [&](auto& sums) {
            for (const Shells::Row& row : m_shells.getRows()) {
                const long atZ = z + row.dz, atY = y + row.dy;
                const bool isInside = atZ >= 0 && atZ < m_nbSlices && atY >= 0 && atY < m_nbRows;
                // Places before the first slice are passed over; all others outside read nothing, which adds nothing.
                if (!isInside && (atZ < 0 || m_shells.isFinite()))
                    continue;
                if (isCancelled())
                    return false;
                const float* const line = isInside ? m_buffers.lineAt(atZ, atY)
                                                   : static_cast<const float*>(m_buffers.outside.getDataPtr());
                const ShellElement* const first = elements + row.begin;
                sums.add(first, row.end - row.begin, [&](std::size_t k) { return line + first[k].dx + m_radius; });
            }
            return true;
        };
        return gatherLine<ShellElement>(m_shells.getCone(), m_buffers.pitch, m_nbAligned, addAll, {out});
    }

    const Shells& m_shells;
    ShellBuffers& m_buffers;
    const long m_radius;
    const unsigned long m_nbAligned;
    const long m_firstSlice, m_nbRows, m_nbSlices;
};

}  // namespace
}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"
