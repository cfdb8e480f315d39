#pragma once

// The votes of gathered pixels in the row of one angle.

#include "frame/simd/Simd.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <type_traits>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd { namespace {

typedef Lanes<float>::type Floats;
typedef Lanes<int>::type Ints;

/// Nearest whole number, halves away from 0. What is added lies just below one half: with that the sum is never rounded
/// up to a whole number that v is not nearest to, and still is for halves.
inline Ints nearest(Floats v)
{
    const Ints sign = reinterpret_cast<Ints>(v) & std::numeric_limits<int>::min();
    const Floats half = reinterpret_cast<Floats>(reinterpret_cast<Ints>(Floats{} + 0.49999997f) | sign);
    return __builtin_convertvector(v + half, Ints);
}

/// What a voter adds to its column and to the next one. Sums of whole numbers wrap, which signed ones may not.
template<class Accum>
using Share = typename std::conditional<std::is_same<Accum, float>::value, float, unsigned int>::type;
template<class Accum>
struct Shares
{
    typedef Share<Accum> type __attribute__((vector_size(2 * sizeof(Share<Accum>))));
};

/// Voters of a line that are looked at together.
constexpr unsigned long kMaxVotes = 512;

template<class Accum>
struct Votes
{
    alignas(64) int column[kMaxVotes];
    alignas(64) typename Shares<Accum>::type shares[kMaxVotes];
};

/// What is known of the weights of voters.
enum WeightKind
{
    eOne,    // all are 1 and the accumulator holds whole numbers, as of binary images
    eLight,  // their shares can be rounded in 32 bits
    eHeavy
};

template<class Accum>
WeightKind kindOf(const float* weights, unsigned long n)
{
    float heaviest = 0.0f;
    bool ones = true;
    for (unsigned long i = 0; i < n; ++i) {
        heaviest = std::max(heaviest, std::fabs(weights[i]));
        ones &= weights[i] == 1.0f;
    }
    if (std::is_same<Accum, float>::value)
        return heaviest < std::numeric_limits<float>::infinity() ? eLight : eHeavy;
    return ones ? eOne : heaviest < 2147483648.0f ? eLight : eHeavy;
}

/// Where voters lie in the row of an angle, from its centre, and what they weigh.
struct VoterLanes
{
    Floats positions, weights;
};

/// Voters of one line of pixels. Other places that voters are had from have the same functions.
struct OneLine
{
    static constexpr bool isOne = true;
    const float *x, *weights;
    float cosine, offset;  // what the line has of the position

    VoterLanes lanes(unsigned long i) const { return {load(x + i) * cosine + offset, load(weights + i)}; }
    float position(unsigned long i) const { return x[i] * cosine + offset; }
    float weight(unsigned long i) const { return weights[i]; }
};

/// Of the voters from `first` on.
template<WeightKind Kind, class Accum, class Voters>
void computeVotes(const Voters& voters, unsigned long first, unsigned long n, int centre, Votes<Accum>& votes)
{
    typedef typename Lanes<Share<Accum>>::type ShareLanes;
    const ShareLanes one = ShareLanes{} + 1;
    for (unsigned long i = 0; i < n; i += Lanes<float>::count) {
        const VoterLanes voter = voters.lanes(first + i);
        const Floats floor = floorOf(voter.positions), frac = voter.positions - floor, rest = 1.0f - frac;
        store(votes.column + i, __builtin_convertvector(floor, Ints) + centre);
        Share<Accum>* const to = reinterpret_cast<Share<Accum>*>(votes.shares + i);
        if constexpr (Kind == eOne) {
            storePairs(to, rest >= 0.5f ? one : ShareLanes{}, frac >= 0.5f ? one : ShareLanes{});
        } else {
            const Floats here = rest * voter.weights, next = frac * voter.weights;
            if constexpr (std::is_same<Accum, float>::value)
                storePairs(to, here, next);
            else
                storePairs(to, reinterpret_cast<ShareLanes>(nearest(here)), reinterpret_cast<ShareLanes>(nearest(next)));
        }
    }
}

/// Adds what one voter has to two bins at once.
template<class Accum>
void addVote(Share<Accum>* row, const Votes<Accum>& votes, unsigned long i)
{
    typename Shares<Accum>::type bins;
    std::memcpy(&bins, row + votes.column[i], sizeof bins);
    bins += votes.shares[i];
    std::memcpy(row + votes.column[i], &bins, sizeof bins);
}

/// Sums of whole numbers may be formed in any order. Neighbours share bins, and a bin that was just stored is slow to load:
/// so voters come from places far apart, in turn.
template<class Accum>
void addVotesInAnyOrder(Share<Accum>* __restrict row, Votes<Accum>& votes, unsigned long n)
{
    constexpr unsigned long nbPlaces = 16;
    static_assert(kMaxVotes % nbPlaces == 0, "room for voters that add nothing");
    const unsigned long step = (n + nbPlaces - 1) / nbPlaces;
    for (unsigned long i = n; i < nbPlaces * step; ++i) {  // who adds nothing
        votes.column[i] = votes.column[i - n];
        votes.shares[i] = typename Shares<Accum>::type{};
    }
    for (unsigned long from = 0; from < step; ++from)
#pragma GCC unroll 16
        for (unsigned long place = 0; place < nbPlaces; ++place)
            addVote(row, votes, from + place * step);
}

/// Sums of floats are formed in the voters' order. Columns rise or fall along a line, so those of places that are parted
/// by a gap share no bin: then places may take turns, and each bin still gets its shares in order.
inline void addVotesInOrder(float* __restrict row, const Votes<float>& votes, unsigned long n)
{
    constexpr unsigned long nbPlaces = 16;
    unsigned long begin[nbPlaces + 1] = {}, longest = 0;
    for (unsigned long place = 1; place <= nbPlaces; ++place) {
        unsigned long i = std::max(place * n / nbPlaces, begin[place - 1]);
        while (i > 0 && i < n && std::abs(votes.column[i] - votes.column[i - 1]) < 2)
            ++i;
        begin[place] = i;
        longest = std::max(longest, i - begin[place - 1]);
    }
    for (unsigned long from = 0; from < longest; ++from)
#pragma GCC unroll 16
        for (unsigned long place = 0; place < nbPlaces; ++place)
            if (begin[place] + from < begin[place + 1])
                addVote(row, votes, begin[place] + from);
}

/// The same of few voters, for which turns do not pay.
template<class Accum>
void addFewVotes(Share<Accum>* __restrict row, const Votes<Accum>& votes, unsigned long n)
{
    for (unsigned long i = 0; i < n; ++i)
        addVote(row, votes, i);
}

/// The same where each voter lies beside the one before, in a column or in one of the next: what was just stored for two bins
/// can't be loaded again for one of them and another, so they are stored one by one.
inline void addVotesBinByBin(float* row, const Votes<float>& votes, unsigned long n)
{
    for (unsigned long i = 0; i < n; ++i) {
        float* const bins = row + votes.column[i];
        bins[0] += votes.shares[i][0];
        asm volatile("" ::: "memory");
        bins[1] += votes.shares[i][1];
    }
}

/// The same for angles at which neighbours share their column: its sums stay in registers until the next column.
template<class Accum>
void addVotesByColumn(Share<Accum>* __restrict row, const Votes<Accum>& votes, unsigned long n)
{
    for (unsigned long i = 0; i < n;) {
        const int column = votes.column[i];
        typename Shares<Accum>::type bins;
        std::memcpy(&bins, row + column, sizeof bins);
        for (; i < n && votes.column[i] == column; ++i)
            bins += votes.shares[i];
        std::memcpy(row + column, &bins, sizeof bins);
    }
}

/// One share where its column may be anything.
template<class Accum>
void addShare(Accum* row, unsigned long sizeX, double column, float share)
{
    if (!(column >= 0.0 && column < static_cast<double>(sizeX)))
        return;
    if constexpr (std::is_same<Accum, float>::value) {
        row[static_cast<unsigned long>(column)] += share;
    } else {
        const double rounded = share < 0.0f ? static_cast<double>(share) - 0.5 : static_cast<double>(share) + 0.5;
        reinterpret_cast<unsigned int*>(row)[static_cast<unsigned long>(column)] +=
            static_cast<unsigned int>(static_cast<long>(rounded));
    }
}

/// Whether all voters, which lie between the positions `low` and `high` on an axis of bins about rho 0, have both of their
/// columns within the row, and all that they need in 32 bits. NaN lies nowhere.
inline bool areInside(float low, float high, unsigned long sizeX, double centre)
{
    const double exact = 8388608.0;  // floats below have whole numbers
    return centre < exact && static_cast<double>(low) >= -centre
           && static_cast<double>(high) < static_cast<double>(sizeX) - 1.0 - centre && static_cast<double>(high) < exact;
}

/// The votes of voters into the row of one angle.
template<class Accum, class Voters>
void voteInRow(Accum* row, unsigned long sizeX, const Voters& voters, unsigned long n, WeightKind kind, double centre,
               bool inside)
{
    if (!inside || kind == eHeavy) {
        for (unsigned long i = 0; i < n; ++i) {
            const float p = voters.position(i), floor = std::floor(p), frac = p - floor, weight = voters.weight(i);
            const double column = static_cast<double>(floor) + centre;
            addShare(row, sizeX, column, (1.0f - frac) * weight);
            addShare(row, sizeX, column + (frac != 0.0f ? 1.0 : 0.0), frac * weight);
        }
        return;
    }

    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the kernel fills what it reads
    Votes<Accum> votes;
    Share<Accum>* const bins = reinterpret_cast<Share<Accum>*>(row);
    // Bins from one pixel to the next below which columns are shared by many; with more gaps are rare, too.
    const float sharedColumns = std::is_same<Accum, float>::value ? 0.2f : 0.03125f;
    for (unsigned long i = 0; i < n; i += kMaxVotes) {
        const unsigned long nbVotes = std::min(kMaxVotes, n - i);
        if (!std::is_same<Accum, float>::value && kind == eOne)
            computeVotes<eOne>(voters, i, nbVotes, static_cast<int>(centre), votes);
        else
            computeVotes<eLight>(voters, i, nbVotes, static_cast<int>(centre), votes);
        const unsigned long few = 16;
        if (Voters::isOne && nbVotes <= few)
            addFewVotes<Accum>(bins, votes, nbVotes);
        else if (std::fabs(voters.cosine) < sharedColumns)
            addVotesByColumn<Accum>(bins, votes, nbVotes);
        else if constexpr (!Voters::isOne)
            addVotesBinByBin(bins, votes, nbVotes);
        else if constexpr (std::is_same<Accum, float>::value)
            addVotesInOrder(bins, votes, nbVotes);
        else
            addVotesInAnyOrder(bins, votes, nbVotes);
    }
}

}  // namespace
}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"
