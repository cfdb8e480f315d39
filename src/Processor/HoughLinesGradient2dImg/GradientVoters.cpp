#include "Processor/HoughLinesGradient2dImg/GradientVoters.h"

namespace orvik { namespace imaproc { namespace fd {

void GradientVoters::init(unsigned long nbRows)
{
    voters.resize(s_mostVoters);
    begins.assign(nbRows + 1, 0);
    m_next.assign(nbRows + 1, 0);
    clear();
}

void GradientVoters::sort()
{
    // How many more voters a row has than the one before; wraps where it has fewer.
    std::fill(m_next.begin(), m_next.end(), 0u);
    const Voter* const end = voters.data() + nbVoters;
    for (const Voter* voter = voters.data(); voter != end; ++voter) {
        ++m_next[voter->firstRow];
        --m_next[voter->lastRow + 1];
    }
    unsigned int nbInRow = 0, begin = 0;
    for (std::size_t row = 0; row < begins.size(); ++row) {
        nbInRow += m_next[row];
        begins[row] = m_next[row] = begin;
        begin += nbInRow;
    }
    const std::size_t slack = 64, needed = nbVotes + slack;
    if (x.size() < needed) {
        x.resize(needed);
        y.resize(needed);
        weights.resize(needed);
    }
    float *const toX = x.data(), *const toY = y.data(), *const toWeights = weights.data();
    unsigned int* const next = m_next.data();
    for (const Voter* voter = voters.data(); voter != end; ++voter) {
        const unsigned int first = voter->firstRow, last = voter->lastRow;
        for (unsigned int row = first; row <= last; ++row) {
            toX[next[row]] = voter->x;
            toY[next[row]] = voter->y;
            toWeights[next[row]] = voter->weight;
        }
        for (unsigned int row = first; row <= last; ++row)
            ++next[row];
    }
}

}}}  // namespace orvik::imaproc::fd
