#pragma once

// The accumulator of spheres, one line after the other, in its two forms: each voxel gathers from the places of its shells, or
// each gradient votes for the voxels that lie ahead of it. Both add to a voxel in the raster order of the gradients, so they
// give the same bits. Compiled once per instruction set.

#include "Processor/PlaceSums.h"
#include "Processor/ShellBuffers.h"
#include "Processor/ShellVotes.h"
#include "Processor/Shells.h"
#include "Processor/UnitGradients.h"

#include "frame/core/ActionProvider.h"
#include "frame/image/Strips.h"
#include "frame/processor/BaseDataParser.h"
#include "frame/simd/Simd.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd { namespace {

typedef float GroupVector __attribute__((vector_size(4 * ShellVoteLists::s_lanes)));

inline GroupVector loadGroup(const float* from)
{
    GroupVector v;
    std::memcpy(&v, from, sizeof v);
    return v;
}
inline void addToGroup(float* to, GroupVector v)
{
    v = loadGroup(to) + v;
    std::memcpy(to, &v, sizeof v);
}

/// Adds a gradient's votes to the groups of a list, as they lie ahead of its voxel, or opposite, or both.
template<bool Ahead, bool Behind>
void addVotes(const ShellVoteLists::Entry* entry, const ShellVoteLists::Entry* end, const ShellVoteLists::Group* groups,
              const VotingVoxel& source, float cosine, float* voxel)
{
    const GroupVector none = {}, x = none + source.x, y = none + source.y, z = none + source.z,
                      magnitude = none + source.magnitude, least = none + cosine;
    for (; entry != end; ++entry) {
        std::uint64_t both;  // read at once, and before anything is stored
        std::memcpy(&both, entry, sizeof both);
        const ShellVoteLists::Group& group = groups[static_cast<std::uint32_t>(both)];
        const std::ptrdiff_t offset = static_cast<std::int64_t>(both) >> 32;
        const GroupVector d = x * loadGroup(group.units[0]) + y * loadGroup(group.units[1]) + z * loadGroup(group.units[2]);
        const GroupVector votes = (d > least ? d : none) * magnitude * loadGroup(group.weights);
        if constexpr (Ahead)
            addToGroup(voxel + offset, votes);
        if constexpr (Behind)  // close to the gradient the two may overlap
            addToGroup(voxel - offset - 3, __builtin_shufflevector(votes, votes, 3, 2, 1, 0));
    }
}

/// The gradients of a line that vote; those that are infinite are left to `isOdd(column)`.
template<class IsOdd>
void findVotingVoxels(const GradientCone& cone, unsigned long nbBins, const float* const (&units)[3],
                      const float* magnitudes, unsigned long n, const IsOdd& isOdd, std::vector<VotingVoxel>& sources)
{
    typedef Lanes<int>::type Whole;
    const unsigned long lanes = Lanes<float>::count;
    const PlaceVector none = {}, towards = all(cone.isBoth || cone.isInward ? 1.0f : -1.0f);
    const Whole last = Whole{} + static_cast<int>(nbBins - 1), perAxis = Whole{} + static_cast<int>(nbBins * nbBins);
    sources.clear();
    for (unsigned long first = 0; first < n; first += lanes) {
        const PlaceVector x = load(units[0] + first) * towards, y = load(units[1] + first) * towards,
                          z = load(units[2] + first) * towards, size = load(magnitudes + first);
        const PlaceVector absX = x < none ? -x : x, absY = y < none ? -y : y, absZ = z < none ? -z : z;
        const unsigned long valid = n - first < lanes ? (1ul << (n - first)) - 1 : ~0ul;
        unsigned long infinite = bitsOf<float>(size > all(NumericLimits<float>::s_max)) & valid;
        for (unsigned long bits = infinite; bits != 0; bits &= bits - 1)
            isOdd(first + static_cast<unsigned long>(__builtin_ctzl(bits)));
        // Flat gradients stay below the cosine, and no numbers below nothing; both are left out.
        unsigned long bits = bitsOf<float>(absX + absY + absZ > all(0.5f)) & valid & ~infinite;
        if (bits == 0)
            continue;
        const Whole isX = (absX >= absY) & (absX >= absZ), isY = absY >= absZ;
        const PlaceVector longest = isX ? absX : isY ? absY : absZ;
        const auto binOf = [&](PlaceVector part) {
            const Whole bin = __builtin_convertvector(part / longest * all(static_cast<float>(nbBins)), Whole);
            return bin > last ? last : bin < 0 ? Whole{} : bin;  // below 0 where it is no number: that one does not vote
        };
        const Whole axis = isX ? Whole{} : isY ? Whole{} + 1 : Whole{} + 2;
        const Whole list = axis * perAxis + binOf(isX ? absY : absX) * static_cast<int>(nbBins)
                           + binOf((isX | isY) ? absZ : absY);
        const Whole signX = x < none, signY = y < none, signZ = z < none;
        const Whole mirrored = ((signX ^ signY) & 1) | ((signX ^ signZ) & 2);
        for (; bits != 0; bits &= bits - 1) {
            const int i = __builtin_ctzl(bits);
            sources.push_back({absX[i], absY[i], absZ[i], size[i], static_cast<int>(first) + i, list[i],
                               static_cast<unsigned int>(mirrored[i]), signX[i] != 0});
        }
    }
}

/// A strip's lines of an accumulator, one after the other, slice by slice. `gradients(z, y)` gives the three lines of gradients
/// at line y of slice z of the volume, from the left margin on; `origin` is asked whether to end early, and told how far the
/// strip is.
template<class Sample>
class ShellAccumulator
{
public:
    ShellAccumulator(const Shells& shells, ShellBuffers& buffers, const processor::ProcessingInfo& info,
                     const image::BaseImageZStrip3d& strip, eRingForm form)
        : m_shells(shells), m_buffers(buffers), m_radius(shells.getMaxRadius()), m_nbAligned(info.nbAlignedData),
          m_nbData(info.nbData), m_firstSlice(static_cast<long>(strip.getStripStartOffsetZ())),
          m_endSlice(m_firstSlice + static_cast<long>(strip.getNbElements())), m_nbRows(static_cast<long>(strip.getSizeY())),
          m_nbSlices(static_cast<long>(strip.getImageSizeZ())),
          m_lists(shells.votes(Lanes<float>::count, ShellBuffers::linePitchFor(m_nbAligned, m_radius),
                               ShellBuffers::slicePitchFor(m_nbAligned, strip.getSizeY(), m_radius),
                               static_cast<double>(m_nbAligned) * static_cast<double>(strip.getNbLines()), form))
    {
        if (!shells.getCone().isOpen)
            return;
        if (m_lists)
            buffers.initVotes(m_nbAligned, strip.getSizeY(), m_radius);
        else
            buffers.initGather(m_nbAligned, strip.getSizeY(), strip.getImageSizeZ(), m_radius);
        buffers.firstSlice = m_firstSlice - 2 * m_radius;
    }

    /// False when cancelled.
    template<class Gradients>
    bool line(unsigned long i, const Gradients& gradients, const core::BaseRequestOrigin& origin, float* out)
    {
        const long z = m_firstSlice + static_cast<long>(i) / m_nbRows, y = static_cast<long>(i) % m_nbRows;
        if (!m_shells.getCone().isOpen) {
            std::fill_n(out, m_nbAligned, 0.0f);
            return true;
        }
        if (i == 0)
            for (long slice = z - m_radius; slice < z + m_radius; ++slice)
                if (!enterRows(slice, 0, m_nbRows, gradients, origin))
                    return false;
        // Of the slice that enters, as far as this line reaches.
        if (!enterRows(z + m_radius, y == 0 ? 0 : y + m_radius, y + m_radius + 1, gradients, origin))
            return false;
        if (m_lists) {
            handOver(z, y, out);
            return true;
        }
        if (y + 1 == m_nbRows)
            origin.reportProgress(static_cast<unsigned long>(z - m_firstSlice + 1),
                                  static_cast<unsigned long>(m_endSlice - m_firstSlice));
        return gather(z, y, origin, out);
    }

private:
    template<class Gradients>
    bool enterRows(long z, long begin, long end, const Gradients& gradients, const core::BaseRequestOrigin& origin)
    {
        if (m_lists && begin == 0)
            enterVoteSlice(z + m_radius);
        if (z < 0 || z >= m_nbSlices)
            return true;
        for (long y = begin; y < std::min(end, m_nbRows); ++y) {
            if (origin.isCancellationRequested())
                return false;
            const auto [gx, gy, gz] = gradients(z, y);
            if (m_lists) {
                vote(z, y, {gx + m_radius, gy + m_radius, gz + m_radius});
                continue;
            }
            const unsigned long pitch = m_buffers.pitch;
            float* const to = m_buffers.lineAt(z, y);
            toUnitGradients<Sample, 3>({gx, gy, gz}, m_nbAligned + 2 * static_cast<unsigned long>(m_radius) + 1,
                                       {to, to + pitch, to + 2 * pitch}, to + 3 * pitch);
        }
        const long first = std::max(m_firstSlice - m_radius, 0l), last = std::min(m_endSlice + m_radius, m_nbSlices);
        if (m_lists && begin < m_nbRows && end >= m_nbRows)  // nearly all of the work
            origin.reportProgress(static_cast<unsigned long>(z - first + 1), static_cast<unsigned long>(last - first));
        return true;
    }
    bool gather(long z, long y, const core::BaseRequestOrigin& origin, float* out) const
    {
        const ShellElement* const elements = m_shells.getElements().data();
        const auto addAll = [&](auto& sums) {
            for (const Shells::Row& row : m_shells.getRows()) {
                const long atZ = z + row.dz, atY = y + row.dy;
                const bool isInside = atZ >= 0 && atZ < m_nbSlices && atY >= 0 && atY < m_nbRows;
                // Places before the first slice are passed over; all others outside read nothing, which adds nothing.
                if (!isInside && (atZ < 0 || m_shells.isFinite()))
                    continue;
                if (origin.isCancellationRequested())
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

    /// Makes room for the votes for a slice, the last one that gradients reach. Those that none reaches any more are dropped when
    /// all room is used.
    void enterVoteSlice(long z)
    {
        const unsigned long pitch = m_buffers.slicePitch;
        if (z - m_buffers.firstSlice >= static_cast<long>(m_buffers.nbVoteSlices)) {
            const unsigned long kept = 2 * static_cast<unsigned long>(m_radius);
            const unsigned long dropped = m_buffers.nbVoteSlices - kept;
            std::memmove(m_buffers.votes.data(), &m_buffers.votes[dropped * pitch], kept * pitch * sizeof(float));
            m_buffers.firstSlice += static_cast<long>(dropped);
        }
        std::fill_n(&m_buffers.votes[static_cast<std::size_t>(z - m_buffers.firstSlice) * pitch], pitch, 0.0f);
    }
    float* voteAt(long z, long y, long x) const
    {
        const std::size_t column = static_cast<std::size_t>(x + m_radius) + 2 * ShellVoteLists::s_lanes;
        return &m_buffers.votes[static_cast<std::size_t>(z - m_buffers.firstSlice) * m_buffers.slicePitch
                                + static_cast<std::size_t>(y + m_radius) * m_buffers.linePitch + column];
    }
    /// The gradients of a line vote, which may lie beyond the strip.
    void vote(long z, long y, const Sample* const (&gradients)[3])
    {
        const unsigned long side = m_buffers.line.size() / 4;
        float* const line = m_buffers.line.data();
        toUnitGradients<Sample, 3>({gradients[0], gradients[1], gradients[2]}, m_nbData,
                                   {line, line + side, line + 2 * side}, line + 3 * side);
        long firstOdd = -1, endOdd = -1;
        const auto noteOdd = [&](unsigned long column) {
            const long x = static_cast<long>(column);
            if (x != endOdd) {
                spoil(z, y, firstOdd, endOdd);
                firstOdd = x;
            }
            endOdd = x + 1;
        };
        findVotingVoxels(m_shells.getCone(), m_lists->nbBins, {line, line + side, line + 2 * side}, line + 3 * side,
                         m_nbData, noteOdd, m_buffers.sources);
        spoil(z, y, firstOdd, endOdd);
        float* const voxels = voteAt(z, y, 0);
        const bool isInside = z >= m_firstSlice && z < m_endSlice, isBoth = m_shells.getCone().isBoth;
        // Slices from the gradient's own to the strip, where that is another.
        const long distance = z < m_firstSlice ? m_firstSlice - z : z - m_endSlice + 1;
        for (const VotingVoxel& source : m_buffers.sources) {
            const ShellVoteLists::Entry* const entries = m_lists->entries[source.mirrored].data();
            const std::uint32_t* const slices = m_lists->slicesOf(static_cast<unsigned long>(source.list));
            float* const voxel = voxels + source.column;
            if (isInside) {
                add(isBoth || !source.isBehind, isBoth || source.isBehind, entries + slices[0],
                    entries + slices[2 * m_radius + 1], source, voxel);
                continue;
            }
            // Ahead the list goes towards higher slices unless it is mirrored, behind the other way.
            const bool goesUp = (source.mirrored & 2u) == 0, isBelow = z < m_firstSlice;
            for (const bool ahead : {true, false}) {
                if (!isBoth && ahead == source.isBehind)
                    continue;
                const bool isEnd = (ahead == goesUp) == isBelow;  // whether the strip lies where the list ends
                add(ahead, !ahead, entries + slices[isEnd ? m_radius + distance : 0],
                    entries + slices[isEnd ? 2 * m_radius + 1 : m_radius - distance + 1], source, voxel);
            }
        }
    }
    void add(bool ahead, bool behind, const ShellVoteLists::Entry* entry, const ShellVoteLists::Entry* end,
             const VotingVoxel& source, float* voxel) const
    {
        const ShellVoteLists::Group* const groups = m_lists->groups.data();
        const float cosine = m_shells.getCone().cosine;
        if (ahead && behind)
            addVotes<true, true>(entry, end, groups, source, cosine, voxel);
        else if (ahead)
            addVotes<true, false>(entry, end, groups, source, cosine, voxel);
        else
            addVotes<false, true>(entry, end, groups, source, cosine, voxel);
    }
    /// Infinite gradients from column `begin` to `end` make no numbers of all voxels whose shells reach one of them, whatever else
    /// these are given.
    void spoil(long z, long y, long begin, long end)
    {
        for (const Shells::Row& row : m_shells.getRows()) {
            if (begin >= end)
                return;
            const std::vector<ShellElement>& elements = m_shells.getElements();
            for (std::size_t first = row.begin, k = first; k < row.end; ++k)
                if (k + 1 == row.end || elements[k + 1].dx != elements[k].dx + 1) {
                    // Shells are alike on both sides, so what sees a place of them is seen from there.
                    std::fill(voteAt(z + row.dz, y + row.dy, begin + elements[first].dx),
                              voteAt(z + row.dz, y + row.dy, end + elements[k].dx), __builtin_nanf(""));
                    first = k + 1;
                }
        }
    }
    void handOver(long z, long y, float* out) const
    {
        const float* const votes = voteAt(z, y, 0);
        for (unsigned long x = 0; x < m_nbAligned; x += Lanes<float>::count)
            store(out + x, withOneNan(load(votes + x)));
    }

    const Shells& m_shells;
    ShellBuffers& m_buffers;
    const long m_radius;
    const unsigned long m_nbAligned, m_nbData;
    const long m_firstSlice, m_endSlice, m_nbRows, m_nbSlices;
    const ShellVoteLists* const m_lists;
};

}  // namespace
}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"
