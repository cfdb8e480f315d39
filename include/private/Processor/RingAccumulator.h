#pragma once

// The accumulator of circles, one line after the other, in its two forms: each pixel gathers from the places of its rings, or
// each gradient votes for the pixels that lie ahead of it. Both add to a pixel in the raster order of the gradients, so they
// give the same bits. Compiled once per instruction set.

#include "Processor/PlaceSums.h"
#include "Processor/RingBuffers.h"
#include "Processor/UnitGradients.h"

#include "frame/simd/Simd.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd { namespace {

/// What all votes of a list have in common.
template<unsigned int NbWeights>
struct VotePlaces
{
    const float* table;
    std::size_t tablePlane;
    float* out;  // the gradient's own pixel
    std::size_t outPlane;
};

/// Votes go by 32 bytes where there are more: lists are short rows, and vectors of 64 bytes would hold more that is not on
/// them, and cross a cache line nearly always.
constexpr unsigned long kVoteBytes = ORVIK_SET_BYTES < 32 ? ORVIK_SET_BYTES : 32;
constexpr unsigned long kVoteLanes = kVoteBytes / sizeof(float);
typedef float VoteVector __attribute__((vector_size(kVoteBytes)));

inline VoteVector allVotes(float value)
{
    return VoteVector{} + value;
}
inline VoteVector loadVotes(const float* from)
{
    VoteVector v;
    std::memcpy(&v, from, sizeof v);
    return v;
}
inline void storeVotes(float* to, VoteVector v)
{
    std::memcpy(to, &v, sizeof v);
}
inline VoteVector reversed(VoteVector v)
{
#if ORVIK_SET_BYTES >= 32
    return __builtin_shufflevector(v, v, 7, 6, 5, 4, 3, 2, 1, 0);
#else
    return __builtin_shufflevector(v, v, 3, 2, 1, 0);
#endif
}

/// Adds a gradient's votes to the vectors of a list, and to those opposite when lists are mirrored.
template<unsigned int NbWeights, bool IsMirrored>
void addVotes(const RingVoteLists::Entry* entry, const RingVoteLists::Entry* end, const VotingSource& source, float cosine,
              const VotePlaces<NbWeights>& places)
{
    const VoteVector x = allVotes(source.x), y = allVotes(source.y), magnitude = allVotes(source.magnitude),
                     least = allVotes(cosine);
    for (; entry != end; ++entry) {
        std::uint64_t both;  // read at once, and before anything is stored
        std::memcpy(&both, entry, sizeof both);
        const float* const place = places.table + static_cast<std::uint32_t>(both);
        const std::ptrdiff_t out = static_cast<std::int64_t>(both) >> 32;
        float* const ahead = places.out + out;
        float* const behind = places.out - out - (kVoteLanes - 1);
        const VoteVector d = x * loadVotes(place) + y * loadVotes(place + places.tablePlane);
        const VoteVector share = (d > least ? d : VoteVector{}) * magnitude;
        for (unsigned int i = 0; i < NbWeights; ++i) {
            const VoteVector votes = share * loadVotes(place + (2 + i) * places.tablePlane);
            const std::size_t part = i * places.outPlane;
            storeVotes(ahead + part, loadVotes(ahead + part) + votes);
            if constexpr (IsMirrored)  // close to the gradient the two may overlap
                storeVotes(behind + part, loadVotes(behind + part) + reversed(votes));
        }
    }
}

/// The same to the letter, for gradients that are no numbers or beyond all: what they give where they do not count is not
/// nothing. The list has all places.
template<unsigned int NbWeights, bool IsBoth>
void addOddVotes(const RingVoteLists::Entry* entry, const RingVoteLists::Entry* end, const VotingSource& source,
                 float cosine, const VotePlaces<NbWeights>& places)
{
    for (; entry != end; ++entry) {
        const float* const place = places.table + entry->table;
        const VoteVector unitX = loadVotes(place), unitY = loadVotes(place + places.tablePlane);
        VoteVector d = allVotes(source.x) * unitX + allVotes(source.y) * unitY;
        if constexpr (IsBoth)
            d = d < VoteVector{} ? -d : d;
        const VoteVector share = keptOf<NbWeights>(d, allVotes(cosine)) * allVotes(source.magnitude);
        for (unsigned int i = 0; i < NbWeights; ++i) {
            float* const out = places.out + i * places.outPlane + entry->out;
            const VoteVector old = loadVotes(out), sum = old + share * loadVotes(place + (2 + i) * places.tablePlane);
            storeVotes(out, (unitX != VoteVector{}) | (unitY != VoteVector{}) ? sum : old);
        }
    }
}

/// The gradients of a line that vote.
template<unsigned int NbWeights>
void findSources(const Rings<NbWeights>& rings, unsigned long nbDirections, const float* unitX, const float* unitY,
                 const float* magnitude, unsigned long n, std::vector<VotingSource>& sources)
{
    typedef Lanes<int>::type Whole;
    const unsigned long nbBins = rings.getNbBinsPerQuadrant(), lanes = Lanes<float>::count;
    const GradientCone& cone = rings.getCone();
    const bool isMirrored = rings.isMirrored(), isTwice = cone.isBoth && !isMirrored;
    const float towards = cone.isBoth || cone.isInward ? 1.0f : -1.0f;
    const int half = static_cast<int>(2 * nbBins), last = static_cast<int>(nbBins) - 1;
    sources.clear();
    for (unsigned long first = 0; first < n; first += lanes) {
        PlaceVector x = load(unitX + first) * all(towards), y = load(unitY + first) * all(towards);
        const PlaceVector size = load(magnitude + first);
        const PlaceVector absX = x < PlaceVector{} ? -x : x, absY = y < PlaceVector{} ? -y : y, sum = absX + absY;
        // Flat gradients stay below the cosine, and no numbers below nothing; both are left out.
        const auto isOdd = NbWeights == 1 ? size > all(NumericLimits<float>::s_max)
                                          : (size > all(NumericLimits<float>::s_max)) | (sum != sum);
        const auto counts = (sum > all(0.5f)) | isOdd;
        unsigned long bits = bitsOf<float>(counts);
        if (n - first < lanes)
            bits &= (1ul << (n - first)) - 1;
        if (bits == 0)
            continue;
        if (isMirrored) {
            const auto isBelow = y < PlaceVector{};
            x = isBelow ? -x : x;
            y = isBelow ? -y : y;
        }
        Whole bin = __builtin_convertvector(absY / sum * all(static_cast<float>(nbBins)), Whole);
        bin = bin > last ? Whole{} + last : bin;
        const Whole isLeft = x < PlaceVector{}, isBelow = y < PlaceVector{};
        const Whole quadrant = isBelow ? (isLeft ? Whole{} + 2 : Whole{} + 3) : (isLeft ? Whole{} + 1 : Whole{});
        const Whole direction = isOdd ? Whole{} + static_cast<int>(nbDirections) : quadrant * (last + 1) + bin;
        for (; bits != 0; bits &= bits - 1) {
            const int i = __builtin_ctzl(bits);
            const VotingSource source = {x[i], y[i], size[i], static_cast<int>(first) + i, direction[i]};
            sources.push_back(source);
            if (isTwice && direction[i] < static_cast<int>(nbDirections))
                sources.push_back({-x[i], -y[i], size[i], source.column,
                                   direction[i] < half ? direction[i] + half : direction[i] - half});
        }
    }
}

/// The votes of a row of gradients for all rows that the rings reach, as far as those from `firstRow` to `endRow` are wanted.
template<unsigned int NbWeights>
void voteRow(const Rings<NbWeights>& rings, const RingVoteLists& lists, RingBuffers& buffers, long row, long endRow)
{
    const GradientCone& cone = rings.getCone();
    VotePlaces<NbWeights> places = {rings.getTable(), rings.getPlaneSize(), nullptr, buffers.planeSize};
    float* const line = &buffers.votes[static_cast<std::size_t>(row - buffers.firstRow) * buffers.pitch
                                       + static_cast<std::size_t>(rings.getMaxRadius()) + kVoteLanes];
    const int odd = static_cast<int>(lists.nbDirections);
    const unsigned int* begins = lists.begins.data();
    for (const RingVoteLists::Band& band : lists.bands) {
        const bool isWanted = (row - band.firstRow >= 0 && row - band.lastRow < endRow)
                              || (row + band.lastRow >= 0 && row + band.firstRow < endRow);
        for (auto source = buffers.sources.begin(); isWanted && source != buffers.sources.end(); ++source) {
            const RingVoteLists::Entry* const entry = lists.entries.data() + begins[source->list];
            const RingVoteLists::Entry* const end = lists.entries.data() + begins[source->list + 1];
            places.out = line + source->column;
            if (source->list == odd)
                cone.isBoth ? addOddVotes<NbWeights, true>(entry, end, *source, cone.cosine, places)
                            : addOddVotes<NbWeights, false>(entry, end, *source, cone.cosine, places);
            else if (rings.isMirrored())
                addVotes<NbWeights, true>(entry, end, *source, cone.cosine, places);
            else
                addVotes<NbWeights, false>(entry, end, *source, cone.cosine, places);
        }
        begins += lists.nbDirections + 1;
    }
}

/// A strip's lines of an accumulator, one after the other. `gradients(i)` gives the lines of gradients of row `i` of the
/// window about the current line, from the left margin on, as a pair; `isCancelled` tells whether to end early.
template<class Sample, unsigned int NbWeights>
class RingAccumulator
{
public:
    RingAccumulator(const Rings<NbWeights>& rings, RingBuffers& buffers, eRingForm form, unsigned long nbAligned,
                    unsigned long nbData, unsigned long nbLines, long firstRow, unsigned long nbImageRows)
        : m_rings(rings), m_buffers(buffers), m_radius(rings.getMaxRadius()), m_nbAligned(nbAligned), m_nbData(nbData),
          m_nbLines(static_cast<long>(nbLines)), m_firstRow(firstRow), m_nbImageRows(static_cast<long>(nbImageRows)),
          m_lists(rings.votes(kVoteLanes, RingBuffers::votesPitch(nbAligned, m_radius),
                              static_cast<double>(nbAligned) * static_cast<double>(nbLines), form))
    {
        if (!m_rings.getCone().isOpen)
            return;
        if (m_lists)
            m_buffers.initVotes(nbAligned, m_radius, NbWeights);
        else
            m_buffers.initGather(nbAligned, m_radius);
    }

    /// False when cancelled.
    template<class Gradients, class IsCancelled>
    bool line(long i, const Gradients& gradients, const IsCancelled& isCancelled, float* const (&out)[NbWeights])
    {
        if (!m_rings.getCone().isOpen) {
            for (float* const each : out)
                std::fill_n(each, m_nbAligned, 0.0f);
            return true;
        }
        for (long row = i == 0 ? -m_radius : m_radius; row <= m_radius; ++row) {
            if (isCancelled())
                return false;
            const auto [gx, gy] = gradients(static_cast<unsigned long>(row + m_radius));
            m_lists ? vote(i + row, gx, gy) : enter(i, row, gx, gy);
        }
        if (!m_lists)
            return gather(i, isCancelled, out);
        handOver(i, out);
        return true;
    }

private:
    void enter(long i, long row, const Sample* gx, const Sample* gy)
    {
        if (i > 0)
            m_buffers.gradients.rollUpFragments();
        const unsigned long pitch = m_buffers.gradientsPitch;
        float* const to = static_cast<float*>(m_buffers.gradients.getDataPtr(static_cast<unsigned long>(row + m_radius)));
        toUnitGradients<Sample, 2>({gx, gy}, m_nbAligned + 2 * static_cast<unsigned long>(m_radius) + 1, {to, to + pitch},
                                   to + 2 * pitch);
    }
    template<class IsCancelled>
    bool gather(long i, const IsCancelled& isCancelled, float* const (&out)[NbWeights])
    {
        const auto& elements = m_rings.getElements();
        // Places above the image are passed over, all others read nothing outside of it.
        const std::size_t first = m_rings.firstFromRow(-(m_firstRow + i));
        m_buffers.places.resize(elements.size());
        for (std::size_t k = first; k < elements.size(); ++k)
            m_buffers.places[k] = static_cast<const float*>(
                                      m_buffers.gradients.getDataPtr(static_cast<unsigned long>(elements[k].dy + m_radius)))
                                  + elements[k].dx + m_radius;
        const auto addAll = [&](auto& sums) {
            const std::size_t some = 16384;
            for (std::size_t k = first; k < elements.size(); k += some) {
                if (isCancelled())
                    return false;
                sums.add(&elements[k], std::min(some, elements.size() - k),
                         [&](std::size_t u) { return m_buffers.places[k + u]; });
            }
            return true;
        };
        return gatherLine<RingElement<NbWeights>>(m_rings.getCone(), m_buffers.gradientsPitch, m_nbAligned, addAll, out);
    }
    /// Gradients of row `row` of the strip, which may lie beyond it, for all that they reach.
    void vote(long row, const Sample* gx, const Sample* gy)
    {
        // Only rows that gradients still reach are kept; those that are left move to the beginning when all are used.
        const unsigned long pitch = m_buffers.pitch;
        if (row + m_radius - m_buffers.firstRow >= static_cast<long>(m_buffers.nbRows)) {
            const unsigned long kept = static_cast<unsigned long>(2 * m_radius);
            const std::size_t from = (m_buffers.nbRows - kept) * pitch;
            for (unsigned int i = 0; i < NbWeights; ++i)
                std::memmove(&m_buffers.votes[i * m_buffers.planeSize], &m_buffers.votes[i * m_buffers.planeSize + from],
                             kept * pitch * sizeof(float));
            m_buffers.firstRow += static_cast<long>(m_buffers.nbRows - kept);
        }
        const std::size_t entered = static_cast<std::size_t>(row + m_radius - m_buffers.firstRow) * pitch;
        for (unsigned int i = 0; i < NbWeights; ++i)
            std::fill_n(&m_buffers.votes[i * m_buffers.planeSize + entered], pitch, 0.0f);
        if (m_firstRow + row < 0 || m_firstRow + row >= m_nbImageRows)
            return;
        const unsigned long side = m_buffers.line.size() / 3;
        float* const unitX = m_buffers.line.data();
        toUnitGradients<Sample, 2>({gx + m_radius, gy + m_radius}, m_nbData, {unitX, unitX + side}, unitX + 2 * side);
        findSources(m_rings, m_lists->nbDirections, unitX, unitX + side, unitX + 2 * side, m_nbData, m_buffers.sources);
        voteRow(m_rings, *m_lists, m_buffers, row, m_nbLines);
    }
    void handOver(long i, float* const (&out)[NbWeights])
    {
        const std::size_t at = static_cast<std::size_t>(i - m_buffers.firstRow) * m_buffers.pitch
                               + static_cast<std::size_t>(m_radius) + kVoteLanes;
        for (unsigned int k = 0; k < NbWeights; ++k)
            for (unsigned long x = 0; x < m_nbAligned; x += Lanes<float>::count)
                store(out[k] + x, withOneNan(load(&m_buffers.votes[k * m_buffers.planeSize + at + x])));
    }

    const Rings<NbWeights>& m_rings;
    RingBuffers& m_buffers;
    const long m_radius;
    const unsigned long m_nbAligned, m_nbData;
    const long m_nbLines, m_firstRow, m_nbImageRows;
    const RingVoteLists* const m_lists;
};

}  // namespace
}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"
