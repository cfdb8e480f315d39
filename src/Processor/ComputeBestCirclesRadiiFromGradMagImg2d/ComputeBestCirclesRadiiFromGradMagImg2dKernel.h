#pragma once

// Radii of the centres on one line. There is plain code alone: there is little work, and that about a few pixels.

#include "Processor/CircleCenters.h"
#include "Processor/ComputeBestCirclesRadiiFromGradMagImg2d/ComputeBestCirclesRadiiFromGradMagImg2dLvl3.h"
#include "Processor/ComputeBestCirclesRadiiFromGradMagImg2d/RadiusScores.h"
#include "Processor/RingVotes.h"
#include "Processor/UnitGradients.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/core/Scheduler.h"
#include "frame/processor/KernelRegistrator.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd {
namespace {

/// What the kernel works with on one strip.
template<class Gx, class Gy>
struct RadiiStrip
{
    const Gx* gx;
    const Gy* gy;
    GradientCone cone;
    const attr::Pixels2d::Coll::Nodes& centers;
    attr::HoughCircles2dPpties::Coll::Nodes& circles;
    unsigned long firstY;  // of the strip, in the plane
};
template<class Gx, class Gy>
RadiiStrip(const Gx*, const Gy*, GradientCone, const attr::Pixels2d::Coll::Nodes&, attr::HoughCircles2dPpties::Coll::Nodes&,
           unsigned long) -> RadiiStrip<Gx, Gy>;

/// Looks at the gradients of a row of the strip, `line` of the window, from column `begin` of its margins up to `end`, unless
/// they are known.
template<class Strip>
RadiusScores::Row lookAtRow(const Strip& strip, long row, unsigned long line, unsigned long begin, unsigned long end,
                            RadiusScores& scores)
{
    const RadiusScores::Row known = scores.row(row);
    long* const rows = scores.blocksOf(row);
    for (unsigned long block = begin / kBlock; block * kBlock < end; ++block) {
        if (rows[block] == row)
            continue;
        rows[block] = row;
        const unsigned long x = block * kBlock;
        toUnitGradients(strip.gx->accessBuffer(line) + x, strip.gy->accessBuffer(line) + x, kBlock, known.x + x, known.y + x,
                        known.magnitude + x);
        for (unsigned long i = x; i < x + kBlock; ++i)
            known.codes[i] = RadiusScores::codeOf(known.x[i], known.y[i]);
    }
    return known;
}

/// Which gradients may count at a place: those whose code differs by no more, where both are taken modulo `turn`.
struct CodeWindow
{
    unsigned char turn, reach;

    explicit CodeWindow(const GradientCone& cone) : turn(255), reach(255)
    {
        const float widest = 0.5f;  // beyond, or where flat gradients might count, all are looked at
        if (!(cone.cosine > widest))
            return;
        const double rounding = 1.01;  // of both codes, and of what they are made of
        const double codes = std::acos(static_cast<double>(cone.cosine)) * RadiusScores::g_codesPerRadian + rounding;
        turn = cone.isBoth ? 127 : 255;
        reach = 2 * codes < turn ? static_cast<unsigned char>(codes) : 127;
    }
};

/// Sums what all places about column `column` of the current line give, by radius. A gradient that points another way than
/// the place asks for gives nothing, so most are left out by their codes, many at once.
template<class Strip>
void sumShares(const Strip& strip, unsigned long line, unsigned long column, RadiusScores& scores)
{
    std::fill(scores.sums.begin(), scores.sums.end(), 0.0);
    const GradientCone& cone = strip.cone;
    const float width = 1.0f - cone.cosine;
    if (width == 0.0f)  // nothing passes
        return;
    typedef Lanes<unsigned char>::type Codes;
    const CodeWindow window(cone);
    const unsigned char offset = static_cast<unsigned char>(window.reach + (cone.isInward ? 128 : 0));
    const auto allCodes = [](int code) {
        Codes codes;
        std::memset(&codes, code, sizeof codes);
        return codes;
    };
    const Codes shift = allCodes(offset), turn = allCodes(window.turn), most = allCodes(std::min(2 * window.reach, 255));
    long dy = -scores.maxRadius - 1;
    RadiusScores::Row row = {};
    for (const RadiusScores::Run& run : scores.runs) {
        if (run.dy != dy) {
            dy = run.dy;
            row = lookAtRow(strip, static_cast<long>(line) + dy, static_cast<unsigned long>(dy + scores.maxRadius), column,
                            column + 2 * static_cast<unsigned long>(scores.maxRadius) + 1, scores);
        }
        const unsigned long first = column + static_cast<unsigned long>(run.dx + scores.maxRadius);
        const unsigned long n = run.end - run.begin, lanes = Lanes<unsigned char>::count;
        const float *const x = row.x + first, *const y = row.y + first, *const magnitude = row.magnitude + first;
        for (unsigned long i = 0; i < n; i += kBlock) {
            unsigned long candidates = 0;
            for (unsigned long k = 0; k < kBlock; k += lanes) {
                const Codes apart = (load(row.codes + first + i + k) - load(&scores.codes[run.begin + i + k]) + shift)
                                    & turn;
                candidates |= bitsOf<unsigned char>(apart <= most) << k;
            }
            if (n - i < kBlock)
                candidates &= (1ul << (n - i)) - 1;
            for (; candidates != 0; candidates &= candidates - 1) {
                const unsigned long k = i + static_cast<unsigned long>(__builtin_ctzl(candidates));
                const std::size_t place = run.begin + k;
                float d = x[k] * scores.unitX[place] + y[k] * scores.unitY[place];
                d = cone.isBoth ? std::fabs(d) : cone.isInward ? -d : d;
                const float weight = (d - cone.cosine) / width;
                // Nothing is added where it is none, without a branch that would be guessed wrong as often as not.
                scores.sums[scores.radii[place]] += static_cast<double>(weight > 0.0f ? weight * magnitude[k] : 0.0f);
            }
        }
    }
}

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult ComputeBestCirclesRadiiFromGradMagImg2dLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    auto* const strip = onceAStrip(info, [&] {
        return RadiiStrip{
            parser<attr::InGxKnlYStrip2d, Sample>(),
            parser<attr::InGyKnlYStrip2d, Sample>(),
            makeCone(value<attr::InCircleIntensityType>(), value<attr::InMaxAngleWithGradDir>()),
            value<attr::InHoughCircles2dCenters>()->template get<attr::Pixels2d::Coll>().getNodes(),
            value<attr::OutHoughCircles2dPpties>()->template access<attr::HoughCircles2dPpties::Coll>().accessNodes(),
            value<attr::InGxKnlYStrip2d>()->getStripStartOffsetY()};
    });
    if (!strip)
        return wrongSampleType();
    const unsigned long row = strip->firstY + info.lineIndex;
    for (std::size_t i = 0; i < strip->centers.size(); ++i) {
        unsigned long column;
        const attr::Pixel2d& center = *strip->centers[i];
        if (!isOnRun(center, row, info.firstColumn, info.nbData, true, column))
            continue;
        if (getOrigin().isCancellationRequested())
            return failure(core::getCancelledText());
        sumShares(*strip, info.lineIndex, column, *m_scores);
        strip->circles[i] = circleAt(center, m_scores->best());
    }
    return success();
}

}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

ORVIK_REGISTER_KERNELS(ComputeBestCirclesRadiiFromGradMagImg2dLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::fd
