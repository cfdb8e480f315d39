#pragma once

#include <algorithm>
#include <vector>

namespace orvik { namespace imaproc { namespace fd {

/// Voters of some lines with the rows of angles that each votes for, and the same sorted by rows.
struct GradientVoters
{
    struct Voter
    {
        float x, y;  // from the centre of the plane
        float weight;
        unsigned int firstRow, lastRow;
    };

    void init(unsigned long nbRows);
    /// Whether they should vote before one more is added.
    bool areMany() const { return nbVotes >= s_manyVotes || nbVoters == s_mostVoters; }
    /// Fills `begins`, `x`, `y` and `weights`; in a row voters keep their order.
    void sort();
    void clear() { nbVoters = nbVotes = 0; }

    static constexpr unsigned long s_mostVoters = 16384;
    static constexpr unsigned long s_manyVotes = 65536;  // 12 bytes each stay in the second cache
    std::vector<Voter> voters;                           // as many as there may be
    unsigned long nbVoters = 0, nbVotes = 0;

    std::vector<unsigned int> begins;  // of each row, and the end; of its voters below
    std::vector<float> x, y, weights;  // with room for a vector behind the last one

private:
    std::vector<unsigned int> m_next;
};

}}}  // namespace orvik::imaproc::fd
