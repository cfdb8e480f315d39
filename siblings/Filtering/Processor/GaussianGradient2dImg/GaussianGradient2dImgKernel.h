// The two passes of separable Gaussian derivatives. Compiled once per instruction set.

#include "siblings/Filtering/SeparableFilter.h"

namespace orvik { namespace imaproc { namespace filter {

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
                filterBlock<true, false>(centre, kBlock, m_y, smoothLine(line) + x, static_cast<double*>(nullptr));
            else
                filterBlock<false, true>(centre, kBlock, m_y, static_cast<double*>(nullptr), derivativeLine(line) + x);
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
            filterLine<alongX>(line, n, m_x, out->accessBuffer());
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
