#pragma once

// Radii of the centres on one line. There is plain code alone: there is little work, and that about a few pixels.

#include "Processor/CircleCenters.h"
#include "Processor/ComputeBestCirclesRadiiFromGradMagImg2d/ComputeBestCirclesRadiiFromGradMagImg2dLvl3.h"
#include "Processor/ComputeBestCirclesRadiiFromGradMagImg2d/RadiusScores.h"
#include "Processor/GradientCone.h"
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
        float unitX[kBlock], unitY[kBlock], magnitudes[kBlock];
        const auto *const gx = strip.gx->accessBuffer(line) + x, *const gy = strip.gy->accessBuffer(line) + x;
        toUnitGradients({gx, gy}, kBlock, {unitX, unitY}, magnitudes);
        for (unsigned long i = 0; i < kBlock; ++i)
            known.codes[x + i] = RadiusScores::codeOf(unitX[i], unitY[i]);
        for (unsigned long i = 0; i < kBlock; ++i)
            known.gradients[x + i] = {unitX[i], unitY[i], magnitudes[i]};
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
        const double rounding = 2 * RadiusScores::g_codeError;
        const double codes = std::acos(static_cast<double>(cone.cosine)) * RadiusScores::g_codesPerRadian + rounding;
        turn = cone.isBoth ? 127 : 255;
        reach = 2 * codes < turn ? static_cast<unsigned char>(codes) : 127;
    }
};

/// Places that may count, with the gradients there. They lie far apart, so they are asked for when they are found and read
/// together, without a branch among them.
struct Candidates
{
    static constexpr unsigned long size = 512;
    const RadiusScores::Place* places[size];
    const RadiusScores::Gradient* gradients[size];
    unsigned long n = 0;

    void add(const RadiusScores::Place* place, const RadiusScores::Gradient* gradient)
    {
        __builtin_prefetch(place);
        __builtin_prefetch(gradient);
        places[n] = place;
        gradients[n++] = gradient;
    }
    /// Adds what they give to the sums of their radii, and forgets them.
    void sumUp(const GradientCone& cone, std::vector<double>& sums)
    {
        float d[size], magnitudes[size];
        for (unsigned long i = 0; i < n; ++i) {
            d[i] = gradients[i]->unitX * places[i]->unitX + gradients[i]->unitY * places[i]->unitY;
            magnitudes[i] = gradients[i]->magnitude;
        }
        const float width = 1.0f - cone.cosine;
        for (unsigned long i = 0; i < n; ++i) {
            const float share = cone.isBoth ? std::fabs(d[i]) : cone.isInward ? -d[i] : d[i];
            const float weight = (share - cone.cosine) / width, product = weight * magnitudes[i];
            d[i] = weight > 0.0f ? product : 0.0f;
        }
        for (unsigned long i = 0; i < n; ++i)
            sums[places[i]->radius] += static_cast<double>(d[i]);
        n = 0;
    }
};

/// Sums what all places about column `column` of the current line give, by radius. A gradient that points another way than
/// the place asks for gives nothing, so most are left out by their codes, many at once.
template<class Strip>
void sumShares(const Strip& strip, unsigned long line, unsigned long column, RadiusScores& scores)
{
    std::fill(scores.sums.begin(), scores.sums.end(), 0.0);
    const GradientCone& cone = strip.cone;
    if (1.0f - cone.cosine == 0.0f)  // nothing passes
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
    Candidates found;
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
        for (unsigned long i = 0; i < n; i += kBlock) {
            unsigned long bits = 0;
            for (unsigned long k = 0; k < kBlock; k += lanes) {
                const Codes apart = (load(row.codes + first + i + k) - load(&scores.codes[run.begin + i + k]) + shift)
                                    & turn;
                bits |= bitsOf<unsigned char>(apart <= most) << k;
            }
            if (n - i < kBlock)
                bits &= (1ul << (n - i)) - 1;
            for (; bits != 0; bits &= bits - 1) {
                const unsigned long k = i + static_cast<unsigned long>(__builtin_ctzl(bits));
                found.add(&scores.places[run.begin + k], row.gradients + first + k);
            }
            if (found.n + kBlock > Candidates::size)
                found.sumUp(cone, scores.sums);
        }
    }
    found.sumUp(cone, scores.sums);
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
