#pragma once

// Which pixels vote, and when. Compiled once per instruction set.

#include "Processor/HoughLines2dImg/HoughLines2dImgLvl3.h"
#include "Processor/HoughLines2dImg/HoughLinesGeometry.h"
#include "Processor/HoughLines2dImg/HoughLinesRowsMutexColl.h"
#include "Processor/HoughLines2dImg/HoughLinesVotes.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"
#include "frame/simd/Simd.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd {
namespace {

/// The lowest value of a pixel that votes: those above the threshold do. False when there is none.
template<class Sample>
bool lowestVoter(float threshold, Sample& lowest)
{
    if constexpr (std::is_same<Sample, float>::value) {
        lowest = std::nextafter(threshold, std::numeric_limits<float>::infinity());
        return threshold < std::numeric_limits<float>::infinity();
    } else {
        const double floor = std::floor(static_cast<double>(threshold));
        const double min = std::numeric_limits<Sample>::min(), max = std::numeric_limits<Sample>::max();
        lowest = floor < min ? std::numeric_limits<Sample>::min() : floor < max ? static_cast<Sample>(floor + 1) : Sample(0);
        return floor < max;
    }
}

/// A bit for each of up to 64 pixels that votes, the first one lowest.
template<class Sample>
unsigned long votersOf(const Sample* pixels, unsigned long n, Sample lowest)
{
    unsigned long voters = 0;
    if (n == kBlock) {
        for (unsigned long i = 0; i < kBlock; i += Lanes<Sample>::count)
            voters |= bitsOf<Sample>(load(pixels + i) >= typename Lanes<Sample>::type{} + lowest) << i;
    } else {
        for (unsigned long i = 0; i < n; ++i)
            voters |= static_cast<unsigned long>(pixels[i] >= lowest) << i;
    }
    return voters;
}

/// A pixel as the accumulator counts it. Floats beyond the limits of whole numbers count as the limits.
template<class Accum, class Sample>
Accum toAccum(Sample pixel)
{
    typedef std::numeric_limits<Accum> Limits;
    if constexpr (std::is_same<Sample, float>::value && !std::is_same<Accum, float>::value) {
        const double value = pixel, min = Limits::min(), max = Limits::max();
        return static_cast<Accum>(value < min ? min : value > max ? max : value);
    } else {
        return static_cast<Accum>(pixel);
    }
}

/// What the kernel works with on one strip.
template<class In, class Sample>
struct Strip
{
    const In* in;
    long firstX, firstY;  // of the strip, from the centre of the plane
    unsigned long nbLines;
    bool hasVoters;
    Sample lowest;  // of those that vote
};
template<class I, class S>
Strip(const I*, long, long, unsigned long, bool, S) -> Strip<I, S>;

}  // namespace

template<class Accum, core::eInstructionSet Set>
void HoughLines2dImgLvl3::vote()
{
    image::BaseImage& out = *value<attr::OutImg>();
    const WeightKind kind = kindOf<Accum>(m_weights.data(), m_nbVoters);
    const HoughLinesTables& tables = *m_tables;
    for (unsigned long i = 0; i < tables.nbRows; ++i) {
        const unsigned long t = (tables.firstRow + i) % tables.nbRows;
        Accum* const row = static_cast<Accum*>(out.accessLine(t));
        m_rowsMutexColl->lock(t);
        for (const Segment& segment : m_segments) {
            const OneLine voters = {&m_positions[segment.begin], &m_weights[segment.begin], tables.cosines[t],
                                    tables.sines[t] * segment.y};
            // Positions rise or fall, so all columns lie between those of the first and of the last voter.
            const unsigned long n = segment.end - segment.begin;
            const auto ends = std::minmax({voters.position(0), voters.position(n - 1)});
            voteInRow(row, out.getSizeX(), voters, n, kind, tables.centre,
                      areInside(ends.first, ends.second, out.getSizeX(), tables.centre));
        }
        m_rowsMutexColl->unlock(t);
    }
    m_nbVoters = 0;
    m_segments.clear();
}

template<class Sample, class Accum, core::eInstructionSet Set>
BoolResult HoughLines2dImgLvl3::processFunction(const processor::ProcessingInfo& info)
{
    const auto* const strip = onceAStrip(info, [&] {
        const image::InputImageYStrip2d& lines = *value<attr::InYStrip2d>();
        Sample lowest;
        const bool hasVoters = lowestVoter(m_threshold, lowest);
        return Strip{parser<attr::InYStrip2d, Sample>(),
                     -static_cast<long>(lines.getSizeX() / 2),
                     static_cast<long>(lines.getStripStartOffsetY()) - static_cast<long>(lines.getImageSizeY() / 2),
                     lines.getNbLines(),
                     hasVoters,
                     lowest};
    });
    if (!strip)
        return wrongSampleType();
    const float y = static_cast<float>(strip->firstY + static_cast<long>(info.lineIndex));
    const Sample* const pixels = strip->in->accessBuffer();
    if (strip->hasVoters) {
        const unsigned long capacity = m_positions.size() - kBlock;
        unsigned int begin = m_nbVoters;
        for (unsigned long i = 0; i < info.nbData; i += kBlock) {
            if (m_nbVoters + kBlock > capacity) {
                if (m_nbVoters > begin)
                    m_segments.push_back({y, begin, m_nbVoters});
                vote<Accum, Set>();
                begin = 0;
            }
            const long shift = strip->firstX + static_cast<long>(info.firstColumn + i);
            for (unsigned long voters = votersOf(pixels + i, std::min(kBlock, info.nbData - i), strip->lowest); voters != 0;
                 voters &= voters - 1) {
                const long bit = __builtin_ctzl(voters);
                m_positions[m_nbVoters] = static_cast<float>(bit + shift);
                m_weights[m_nbVoters] = static_cast<float>(toAccum<Accum>(pixels[i + static_cast<unsigned long>(bit)]));
                ++m_nbVoters;
            }
        }
        if (m_nbVoters > begin)
            m_segments.push_back({y, begin, m_nbVoters});
    }
    if (info.lineIndex + 1 == strip->nbLines && m_nbVoters > 0)
        vote<Accum, Set>();
    return success();
}

template<class Sample, core::eInstructionSet Set>
BoolResult HoughLines2dImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    switch (value<attr::OutImg>()->getBufferType()) {
    case image::eIBT_Int32: return processFunction<Sample, int, Set>(info);
    case image::eIBT_UInt32: return processFunction<Sample, unsigned int, Set>(info);
    case image::eIBT_Real32: return processFunction<Sample, float, Set>(info);
    default: return success();
    }
}

}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

ORVIK_REGISTER_KERNELS(HoughLines2dImgLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::fd
