#pragma once

// Which gradients vote, for which angles, and when. Compiled once per instruction set.

#include "Processor/HoughLines2dImg/HoughLinesGeometry.h"
#include "Processor/HoughLines2dImg/HoughLinesRowsMutexColl.h"
#include "Processor/HoughLines2dImg/HoughLinesVotes.h"
#include "Processor/HoughLinesGradient2dImg/ArcTangent.h"
#include "Processor/HoughLinesGradient2dImg/GradientVoters.h"
#include "Processor/HoughLinesGradient2dImg/HoughLinesGradient2dImgLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"
#include "frame/simd/Simd.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd {
namespace {

/// The rows of angles within the window about a direction. Angles are compared as floats, as they are computed.
struct AngleWindow
{
    double thetaMin, thetaMax, thetaStep;
    double lastRow;
    float tolerance;

    /// Calls f(first row, last row) for each of the one or two ranges of a window.
    template<class F>
    void forRows(float direction, const F& f) const
    {
        const float pi = 3.1415927f, turn = 6.2831855f;
        const float first = static_cast<float>(thetaMin), last = static_cast<float>(thetaMax);
        float low = 0.0f, high = pi;
        if (tolerance < pi) {
            low = direction - tolerance;
            if (low < -pi)
                low += turn;
            high = direction + tolerance;
            if (high >= pi)
                high -= turn;
            if (high < low) {  // across the cut from pi to -pi
                if (static_cast<double>(high) >= thetaMin)
                    range(first, high, f);
                if (thetaMax >= static_cast<double>(low))
                    range(low, last, f);
                return;
            }
        }
        if (last > low && high > first)
            range(std::max(first, low), std::min(last, high), f);
    }

private:
    template<class F>
    void range(float from, float to, const F& f) const
    {
        // A row that comes to lie before the first one stands for none; so do those of ranges that run downwards.
        const double firstOf = rowOf(from), lastOf = std::min(rowOf(to), lastRow);
        if (firstOf >= 0.0 && firstOf <= lastOf)
            f(static_cast<unsigned int>(firstOf), static_cast<unsigned int>(lastOf));
    }
    double rowOf(float angle) const { return std::trunc((static_cast<double>(angle) - thetaMin) / thetaStep + 0.5); }
};

/// Magnitudes of a block, and a bit for each that is above the threshold.
inline unsigned long votersOf(const float* gx, const float* gy, unsigned long n, float threshold, float* magnitudes)
{
    unsigned long voters = 0;
    for (unsigned long i = 0; i < kBlock; i += Lanes<float>::count) {
        const Floats x = load(gx + i), y = load(gy + i), magnitude = squareRoot(x * x + y * y);
        store(magnitudes + i, magnitude);
        voters |= bitsOf<float>(magnitude > Floats{} + threshold) << i;
    }
    return n < kBlock ? voters & ((1ul << n) - 1) : voters;
}

/// Directions of a block's voters. Plain code has those of the library of mathematics.
template<core::eInstructionSet Set>
void directionsOf(const float* gx, const float* gy, unsigned long voters, float* directions)
{
    if constexpr (Set == core::eIS_Generic) {
        for (; voters != 0; voters &= voters - 1) {
            const int i = __builtin_ctzl(voters);
            directions[i] = std::atan2(gy[i], gx[i]);
        }
    } else {
        const unsigned long lanes = Lanes<float>::count, some = (1ul << lanes) - 1;
        for (unsigned long i = 0; i < kBlock; i += lanes)
            if ((voters >> i & some) != 0)
                store(directions + i, angleOf(load(gy + i), load(gx + i)));
    }
}

/// Voters of many lines, for the row of an angle.
struct ManyLines
{
    static constexpr bool isOne = false;
    const GradientVoter* voters;
    const GradientVoters::Index* ofRow;
    float cosine, sine;

    VoterLanes lanes(unsigned long i) const
    {
        constexpr unsigned long n = Lanes<float>::count / 4;
        const auto some = [&](unsigned long from) { return loadQuads(&voters->x, ofRow + from); };
        const Floats a = some(i), b = some(i + n), c = some(i + 2 * n), d = some(i + 3 * n);
        const Floats ab = evenOf(a, b), cd = evenOf(c, d), y = evenOf(oddOf(a, b), oddOf(c, d));
        return {evenOf(ab, cd) * cosine + y * sine, oddOf(ab, cd)};
    }
    float position(unsigned long i) const { return voters[ofRow[i]].x * cosine + voters[ofRow[i]].y * sine; }
    float weight(unsigned long i) const { return voters[ofRow[i]].weight; }
};

/// What the kernel works with on one strip.
template<class Gx, class Gy>
struct GradientStrip
{
    const Gx* gx;
    const Gy* gy;
    long firstX, firstY;  // of the strip, from the centre of the plane
    unsigned long nbLines;
    float threshold;
    AngleWindow window;
};
template<class Gx, class Gy>
GradientStrip(const Gx*, const Gy*, long, long, unsigned long, float, AngleWindow) -> GradientStrip<Gx, Gy>;

}  // namespace

template<core::eInstructionSet Set>
void HoughLinesGradient2dImgLvl3::vote()
{
    m_voters->sort();
    image::BaseImage& out = *value<attr::OutRealImg>();
    const unsigned long sizeX = out.getSizeX();
    const HoughLinesTables& tables = *m_tables;
    typedef float Quad __attribute__((vector_size(sizeof(GradientVoter))));
    Quad low = {}, high = {};
    for (unsigned long i = 0; i < m_voters->nbVoters; ++i) {
        Quad voter;
        std::memcpy(&voter, &m_voters->voters[i], sizeof voter);
        low = voter < low ? voter : low;
        high = voter > high ? voter : high;
    }
    const float lowX = low[0], highX = high[0], lowY = low[1], highY = high[1], heaviest = high[2];
    const WeightKind kind = kindOf<float>(&heaviest, 1);
    for (unsigned long i = 0; i < tables.nbRows; ++i) {
        const unsigned long t = (tables.firstRow + i) % tables.nbRows;
        const unsigned long begin = m_voters->begins[t], n = m_voters->nbInRow(t);
        if (n == 0)
            continue;
        // Positions rise or fall with x and with y, so they lie between those of the corners.
        const float cosine = tables.cosines[t], sine = tables.sines[t];
        const auto ends = std::minmax({lowX * cosine + lowY * sine, lowX * cosine + highY * sine,
                                       highX * cosine + lowY * sine, highX * cosine + highY * sine});
        m_rowsMutexColl->lock(t);
        voteInRow(static_cast<float*>(out.accessLine(t)), sizeX,
                  ManyLines{m_voters->voters.data(), &m_voters->sorted[begin], cosine, sine}, n, kind, tables.centre,
                  areInside(ends.first, ends.second, sizeX, tables.centre));
        m_rowsMutexColl->unlock(t);
    }
    m_voters->clear();
}

template<class Sample, core::eInstructionSet Set>
BoolResult HoughLinesGradient2dImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    const auto* const strip = onceAStrip(info, [&] {
        const image::InputImageYStrip2d& lines = *value<attr::InGxYStrip2d>();
        typedef attr::HoughLinesGradientImgParams Params;
        const Params& params = *value<attr::InOptHoughLinesGradientImgParams>();
        return GradientStrip{parser<attr::InGxYStrip2d, Sample>(),
                             parser<attr::InGyYStrip2d, Sample>(),
                             -static_cast<long>(lines.getSizeX() / 2),
                             static_cast<long>(lines.getStripStartOffsetY()) - static_cast<long>(lines.getImageSizeY() / 2),
                             lines.getNbLines(),
                             params.get<Params::PixelThreshold>(),
                             {params.get<Params::ThetaMin>(), params.get<Params::ThetaMax>(), thetaStepOf(params),
                              static_cast<double>(m_tables->nbRows) - 1,
                              value<attr::InOptHoughLinesOrientationTolerance>()}};
    });
    if (!strip)
        return wrongSampleType();
    const float y = static_cast<float>(strip->firstY + static_cast<long>(info.lineIndex));
    const Sample *const gx = strip->gx->accessBuffer(), *const gy = strip->gy->accessBuffer();
    alignas(64) float roomX[kBlock], roomY[kBlock], magnitudes[kBlock], directions[kBlock];
    for (unsigned long i = 0; i < info.nbData; i += kBlock) {
        const float *const x = widened<float>(gx + i, roomX), *const fromY = widened<float>(gy + i, roomY);
        const unsigned long voters = votersOf(x, fromY, info.nbData - i, strip->threshold, magnitudes);
        if (voters == 0)
            continue;
        directionsOf<Set>(x, fromY, voters, directions);
        const long shift = strip->firstX + static_cast<long>(info.firstColumn + i);
        for (unsigned long rest = voters; rest != 0; rest &= rest - 1) {
            const long bit = __builtin_ctzl(rest);
            strip->window.forRows(directions[bit], [&](unsigned int first, unsigned int last) {
                if (m_voters->areMany())
                    vote<Set>();
                m_voters->add({static_cast<float>(bit + shift), y, magnitudes[bit], 0.0f}, {first, last});
            });
        }
    }
    if (info.lineIndex + 1 == strip->nbLines)
        vote<Set>();
    return success();
}

}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

ORVIK_REGISTER_KERNELS(HoughLinesGradient2dImgLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::fd
