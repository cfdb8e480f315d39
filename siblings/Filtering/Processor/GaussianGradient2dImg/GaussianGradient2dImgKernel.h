// The two passes of separable Gaussian derivatives. Compiled once per instruction set.

#include "frame/simd/Simd.h"

namespace orvik { namespace imaproc { namespace filter {
namespace {

/// Both kernels on a block of samples whose neighbours at distance k lie k * stride away: lines of a tile, or columns of
/// a line. Sums run outwards from the centre.
template<bool Smooth, bool Differentiate>
void filterBlock(const double* centre, unsigned long stride, const GaussianWeights& weights, double* smooth,
                 double* derivative)
{
    typedef Lanes<double>::type D;
    constexpr unsigned long lanes = Lanes<double>::count, nbVectors = 4, step = nbVectors * lanes;
    const unsigned long halfSize = weights.halfSize();
    const double* const h = weights.smoothing.data();
    const double* const d = weights.derivative.data();
    for (unsigned long x = 0; x < kBlock; x += step) {
        D s[nbVectors], g[nbVectors];
        for (unsigned long i = 0; i < nbVectors; ++i) {
            s[i] = load(centre + x + i * lanes) * h[0];
            g[i] = D{};
        }
        const double* before = centre + x;
        const double* after = centre + x;
        for (unsigned long k = 1; k <= halfSize; ++k) {
            before -= stride;
            after += stride;
            for (unsigned long i = 0; i < nbVectors; ++i) {
                const D a = load(before + i * lanes), b = load(after + i * lanes);
                if constexpr (Smooth)
                    s[i] += (a + b) * h[k];
                if constexpr (Differentiate)
                    g[i] += (b - a) * d[k];
            }
        }
        for (unsigned long i = 0; i < nbVectors; ++i) {
            if constexpr (Smooth)
                store(smooth + x + i * lanes, s[i]);
            if constexpr (Differentiate)
                store(derivative + x + i * lanes, g[i]);
        }
    }
}

template<class Sample>
void widenBlock(double* __restrict to, const Sample* __restrict from)
{
    for (unsigned long i = 0; i < kBlock; ++i)
        to[i] = static_cast<double>(from[i]);
}

/// The one rounding.
inline void narrowBlock(float* to, const double* from)
{
    for (unsigned long i = 0; i < kBlock; ++i)
        to[i] = static_cast<float>(from[i]);
}

/// To nearest, half to even, saturated; NaN becomes 0.
template<class Sample>
void narrowBlock(Sample* __restrict to, const double* __restrict from)
{
    // Added to a number below 2^51 it leaves no bits for the fraction: the low bits of the sum are the rounded number.
    const double integers = 6755399441055744.0;  // 1.5 * 2^52
    const double low = static_cast<double>(std::numeric_limits<Sample>::min());
    const double high = static_cast<double>(std::numeric_limits<Sample>::max());
    for (unsigned long i = 0; i < kBlock; ++i) {
        double v = from[i];
        v = v == v ? v : 0.0;
        v = v > low ? v : low;
        v = (v < high ? v : high) + integers;
        unsigned long bits;
        std::memcpy(&bits, &v, sizeof bits);
        to[i] = static_cast<Sample>(bits);
    }
}

/// Repeats the first and the last sample of a line, that far.
inline void extendLine(double* line, unsigned long sizeX, unsigned long before, unsigned long end)
{
    std::fill(line - before, line, line[0]);
    std::fill(line + sizeX, line + end, line[sizeX - 1]);
}

}  // namespace

template<core::eInstructionSet Set, class Parser>
void GaussianGradient2dImgLvl3::combineLines(const Parser& lines, const processor::ProcessingInfo& info)
{
    const bool smooths = m_smooth.getNbFragments() != 0, differentiates = m_derivative.getNbFragments() != 0;
    const unsigned long nbLines = std::min(s_nbLinesAtOnce, lines.getNbLines() - info.lineIndex);
    const unsigned long nbRows = nbLines + 2 * m_y.halfSize();
    double* const tile = static_cast<double*>(m_tile.getDataPtr());
    for (unsigned long x = 0; x < info.nbAlignedData; x += kBlock) {
        for (unsigned long row = 0; row < nbRows; ++row)
            widenBlock(tile + row * kBlock, lines.accessBuffer(row) + x);
        for (unsigned long line = 0; line < nbLines; ++line) {
            const double* const centre = tile + (m_y.halfSize() + line) * kBlock;
            if (smooths && differentiates)
                filterBlock<true, true>(centre, kBlock, m_y, smoothLine(line) + x, derivativeLine(line) + x);
            else if (smooths)
                filterBlock<true, false>(centre, kBlock, m_y, smoothLine(line) + x, nullptr);
            else
                filterBlock<false, true>(centre, kBlock, m_y, nullptr, derivativeLine(line) + x);
        }
    }
    const unsigned long end = info.nbAlignedData + m_x.halfSize();
    for (unsigned long line = 0; line < nbLines; ++line) {
        if (smooths)
            extendLine(smoothLine(line), info.nbData, m_x.halfSize(), end);
        if (differentiates)
            extendLine(derivativeLine(line), info.nbData, m_x.halfSize(), end);
    }
}

template<class Attribute, core::eInstructionSet Set>
bool GaussianGradient2dImgLvl3::writeLine(const double* line, unsigned long n)
{
    constexpr bool alongX = std::is_same<Attribute, attr::OutOptGradXYStrip2d>::value;
    bool written = false;
    image::withSampleType(image::toDataType(value<Attribute>()->getBufferType()), [&](auto zero) {
        typedef decltype(zero) Sample;
        if constexpr (!std::is_same<Sample, double>::value) {
            const auto* const out = this->template parser<Attribute, Sample>();
            for (unsigned long x = 0; x < n; x += kBlock) {
                alignas(64) double block[kBlock];
                filterBlock<!alongX, alongX>(line + x, 1, m_x, block, block);
                narrowBlock(out->accessBuffer() + x, block);
            }
            written = true;
        }
    });
    return written;
}

template<class Sample, core::eInstructionSet Set>
BoolResult GaussianGradient2dImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    const auto* const in = parser<attr::InKnlYStrip2d, Sample>();
    if (!in)
        return wrongSampleType();
    const unsigned long line = info.lineIndex % s_nbLinesAtOnce;
    if (line == 0)
        combineLines<Set>(*in, info);
    const bool written =
        (m_smooth.getNbFragments() == 0
         || writeLine<attr::OutOptGradXYStrip2d, Set>(smoothLine(line), info.nbAlignedData))
        && (m_derivative.getNbFragments() == 0
            || writeLine<attr::OutOptGradYYStrip2d, Set>(derivativeLine(line), info.nbAlignedData));
    return written ? success() : wrongSampleType();
}

}}}  // namespace orvik::imaproc::filter
