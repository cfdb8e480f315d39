#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace orvik { namespace imaproc { namespace fd {

struct alignas(16) GradientVoter
{
    float x, y;  // from the centre of the plane
    float weight;
    float unused;  // loaded at once
};

/// Voters of some lines with the rows of angles that each votes for, and the same sorted by rows.
struct GradientVoters
{
    typedef std::uint16_t Index;
    struct Rows
    {
        unsigned int first, last;
    };

    void init(unsigned long nbRows);
    /// Whether they should vote before one more is added.
    bool areMany() const { return nbVotes >= s_manyVotes || nbVoters == s_mostVoters; }
    /// Fills `begins` and `sorted`; in a row voters keep their order. Cost: all voters times the most rows of one.
    void sort();
    void add(const GradientVoter& voter, const Rows& rows)
    {
        voters[nbVoters] = voter;
        m_rows[nbVoters++] = rows;
        nbVotes += rows.last - rows.first + 1ul;
    }
    void clear() { nbVoters = nbVotes = 0; }

    static constexpr unsigned long s_mostVoters = 16384;
    // A batch stays in the second cache; each row of the accumulator is fetched for as many votes as that allows.
    static constexpr unsigned long s_manyVotes = 262144;
    std::vector<GradientVoter> voters;
    unsigned long nbVoters = 0, nbVotes = 0;

    unsigned long nbInRow(unsigned long row) const { return begins[row + 1] - begins[row] - 1; }
    std::vector<unsigned long> begins;  // of each row, and the end; of its voters below
    std::vector<Index> sorted;          // one behind those of each row, and some behind all, for vectors

private:
    std::vector<Rows> m_rows;
    std::vector<unsigned long> m_next;  // place of each row, and of those behind the last one
};

}}}  // namespace orvik::imaproc::fd
