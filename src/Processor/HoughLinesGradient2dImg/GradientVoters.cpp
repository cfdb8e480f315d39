#include "Processor/HoughLinesGradient2dImg/GradientVoters.h"

namespace orvik { namespace imaproc { namespace fd {

void GradientVoters::init(unsigned long nbRows)
{
    voters.resize(s_mostVoters);
    m_rows.resize(s_mostVoters);
    begins.assign(nbRows + 1, 0);
    m_next.assign(2 * nbRows + 1, 0);
    clear();
}

void GradientVoters::sort()
{
    // How many more voters a row has than the one before; wraps where it has fewer.
    std::fill(m_next.begin(), m_next.end(), 0ul);
    unsigned long most = 0;
    for (unsigned long i = 0; i < nbVoters; ++i) {
        ++m_next[m_rows[i].first];
        --m_next[m_rows[i].last + 1];
        most = std::max(most, m_rows[i].last - m_rows[i].first + 1ul);
    }
    unsigned long nbInRow = 0, begin = 0;
    for (std::size_t row = 0; row < begins.size(); ++row) {
        nbInRow += m_next[row];
        begins[row] = begin;
        begin += nbInRow + 1;  // one for what is not kept
    }
    std::fill(std::copy(begins.begin(), begins.end(), m_next.begin()), m_next.end(), begins.back());
    const std::size_t slack = 16, needed = begin + slack;
    if (sorted.size() < needed)
        sorted.resize(needed);
    Index* const to = sorted.data();
    // As many rows of every voter, so that no branch is guessed wrong: those that it has not are written over.
    for (unsigned long i = 0; i < nbVoters; ++i) {
        unsigned long* const next = &m_next[m_rows[i].first];
        const unsigned long nbRows = m_rows[i].last - m_rows[i].first + 1ul;
        for (unsigned long row = 0; row < most; ++row) {
            to[next[row]] = static_cast<Index>(i);
            next[row] += row < nbRows;
        }
    }
}

}}}  // namespace orvik::imaproc::fd
