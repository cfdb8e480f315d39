// The votes of one line of pixels. Compiled once per instruction set.

#include "frame/simd/Simd.h"

namespace orvik { namespace imaproc { namespace fd {
namespace {

typedef Lanes<float>::type Floats;
typedef Lanes<int>::type Ints;

/// The lowest value of a pixel that votes: those above the threshold do. False when there is none.
template<class Sample>
bool lowestVoter(float threshold, Sample& lowest)
{
    if constexpr (std::is_same<Sample, float>::value) {
        lowest = std::nextafter(threshold, std::numeric_limits<float>::infinity());
        return threshold < std::numeric_limits<float>::infinity();
    } else {
        const double floor = std::floor(static_cast<double>(threshold));
        const double min = std::numeric_limits<Sample>::min(), max = std::numeric_limits<Sample>::max();
        lowest = floor < min ? std::numeric_limits<Sample>::min() : floor < max ? static_cast<Sample>(floor + 1) : Sample(0);
        return floor < max;
    }
}

/// A bit for each of up to 64 pixels that votes, the first one lowest.
template<class Sample>
unsigned long votersOf(const Sample* pixels, unsigned long n, Sample lowest)
{
    unsigned long voters = 0;
    if (n == kBlock) {
        for (unsigned long i = 0; i < kBlock; i += Lanes<Sample>::count)
            voters |= bitsOf<Sample>(load(pixels + i) >= typename Lanes<Sample>::type{} + lowest) << i;
    } else {
        for (unsigned long i = 0; i < n; ++i)
            voters |= static_cast<unsigned long>(pixels[i] >= lowest) << i;
    }
    return voters;
}

/// A pixel as the accumulator counts it. Floats beyond the limits of whole numbers count as the limits.
template<class Accum, class Sample>
Accum toAccum(Sample pixel)
{
    typedef std::numeric_limits<Accum> Limits;
    if constexpr (std::is_same<Sample, float>::value && !std::is_same<Accum, float>::value) {
        const double value = pixel, min = Limits::min(), max = Limits::max();
        return static_cast<Accum>(value < min ? min : value > max ? max : value);
    } else {
        return static_cast<Accum>(pixel);
    }
}

/// Nearest whole number, halves away from 0.
inline Ints nearest(Floats v)
{
    const Ints whole = __builtin_convertvector(v, Ints);
    const Floats rest = v - __builtin_convertvector(whole, Floats);
    return whole - (rest >= 0.5f) + (rest <= -0.5f);  // comparisons give -1
}

/// Columns and shares of a block of voters.
template<class Accum>
struct Votes
{
    // Sums of whole numbers wrap, which signed ones may not.
    typedef typename std::conditional<std::is_same<Accum, float>::value, float, unsigned int>::type Share;

    alignas(64) int column[kBlock];
    alignas(64) Share first[kBlock], second[kBlock];  // for the column and the next one
};

template<class Accum>
void computeVotes(const float* x, const float* weight, unsigned long n, float cosine, float offset, int centre,
                  Votes<Accum>& votes)
{
    typedef typename Lanes<typename Votes<Accum>::Share>::type Shares;
    for (unsigned long i = 0; i < n; i += Lanes<float>::count) {
        const Floats p = load(x + i) * cosine + offset;
        Ints floor = __builtin_convertvector(p, Ints);
        floor += __builtin_convertvector(floor, Floats) > p;
        const Floats frac = p - __builtin_convertvector(floor, Floats), w = load(weight + i);
        const Floats first = (1.0f - frac) * w, second = frac * w;
        store(votes.column + i, floor + centre);
        if constexpr (std::is_same<Accum, float>::value) {
            store(votes.first + i, first);
            store(votes.second + i, second);
        } else {
            store(votes.first + i, reinterpret_cast<Shares>(nearest(first)));
            store(votes.second + i, reinterpret_cast<Shares>(nearest(second)));
        }
    }
}

/// Adds shares one voter at a time, in the voters' order, which sums of floats depend on.
template<class Accum>
void addVotes(typename Votes<Accum>::Share* __restrict row, const Votes<Accum>& votes, unsigned long n)
{
    for (unsigned long i = 0; i < n; ++i) {
        typename Votes<Accum>::Share* const bin = row + votes.column[i];
        bin[0] += votes.first[i];
        bin[1] += votes.second[i];
    }
}

/// The same for angles at which neighbours share their column: its sums stay in registers until the next column.
template<class Accum>
void addVotesByColumn(typename Votes<Accum>::Share* __restrict row, const Votes<Accum>& votes, unsigned long n)
{
    for (unsigned long i = 0; i < n;) {
        const int column = votes.column[i];
        typename Votes<Accum>::Share first = row[column], second = row[column + 1];
        for (; i < n && votes.column[i] == column; ++i) {
            first += votes.first[i];
            second += votes.second[i];
        }
        row[column] = first;
        row[column + 1] = second;
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

/// The votes of a part of a line into the row of one angle.
template<class Accum>
void voteInRow(Accum* row, unsigned long sizeX, const float* x, const float* weight, unsigned long n, bool lightWeights,
               float cosine, float offset, double centre)
{
    // Positions rise, so all columns lie between those of the first and of the last voter; NaN lies nowhere.
    const float atFirst = x[0] * cosine + offset, atLast = x[n - 1] * cosine + offset;
    const float low = std::min(atFirst, atLast), high = std::max(atFirst, atLast);
    const double exact = 8388608.0;  // floats below have whole numbers
    const bool inside = centre < exact && static_cast<double>(low) >= -centre
                        && static_cast<double>(high) < static_cast<double>(sizeX) - 1.0 - centre
                        && static_cast<double>(high) < exact && lightWeights;
    if (!inside) {
        for (unsigned long i = 0; i < n; ++i) {
            const float p = x[i] * cosine + offset, floor = std::floor(p), frac = p - floor;
            const double column = static_cast<double>(floor) + centre;
            addShare(row, sizeX, column, (1.0f - frac) * weight[i]);
            addShare(row, sizeX, column + (frac != 0.0f ? 1.0 : 0.0), frac * weight[i]);
        }
        return;
    }

    typedef typename Votes<Accum>::Share Share;
    Votes<Accum> votes;
    Share* const shares = reinterpret_cast<Share*>(row);
    const float sharedColumns = 0.0625f;  // bins from one pixel to the next
    for (unsigned long i = 0; i < n; i += kBlock) {
        const unsigned long nbVotes = std::min(kBlock, n - i);
        computeVotes<Accum>(x + i, weight + i, nbVotes, cosine, offset, static_cast<int>(centre), votes);
        if (cosine < sharedColumns && cosine > -sharedColumns)
            addVotesByColumn<Accum>(shares, votes, nbVotes);
        else
            addVotes<Accum>(shares, votes, nbVotes);
    }
}

}  // namespace

template<class Accum, core::eInstructionSet Set>
void HoughLines2dImgLvl3::vote()
{
    image::BaseImage& out = *value<attr::OutImg>();
    float heaviest = 0.0f;
    for (unsigned int i = 0; i < m_nbVoters; ++i)
        heaviest = std::max(heaviest, std::fabs(m_weights[i]));
    const bool lightWeights = std::is_same<Accum, float>::value
                                  ? heaviest < std::numeric_limits<float>::infinity()
                                  : heaviest < 2147483648.0f;
    for (unsigned long i = 0; i < m_nbRows; ++i) {
        const unsigned long t = m_firstRow + i < m_nbRows ? m_firstRow + i : m_firstRow + i - m_nbRows;
        Accum* const row = static_cast<Accum*>(out.accessLine(t));
        m_rowsMutexColl->lock(t);
        for (const Segment& segment : m_segments)
            voteInRow(row, out.getSizeX(), &m_positions[segment.begin], &m_weights[segment.begin],
                      segment.end - segment.begin, lightWeights, m_cosines[t], m_sines[t] * segment.y, m_centre);
        m_rowsMutexColl->unlock(t);
    }
    m_nbVoters = 0;
    m_segments.clear();
}

template<class Sample, class Accum, core::eInstructionSet Set>
BoolResult HoughLines2dImgLvl3::processFunction(const processor::ProcessingInfo& info)
{
    const auto* const in = parser<attr::InYStrip2d, Sample>();
    if (!in)
        return wrongSampleType();
    const image::InputImageYStrip2d& strip = *value<attr::InYStrip2d>();
    const long halfX = static_cast<long>(strip.getSizeX() / 2), halfY = static_cast<long>(strip.getImageSizeY() / 2);
    const float y = static_cast<float>(static_cast<long>(strip.getStripStartOffsetY() + info.lineIndex) - halfY);
    const Sample* const pixels = in->accessBuffer();
    Sample lowest;
    if (lowestVoter(m_threshold, lowest)) {
        const unsigned long capacity = m_positions.size() - kBlock;
        unsigned int begin = m_nbVoters;
        for (unsigned long i = 0; i < info.nbData; i += kBlock) {
            if (m_nbVoters + kBlock > capacity) {
                if (m_nbVoters > begin)
                    m_segments.push_back({y, begin, m_nbVoters});
                vote<Accum, Set>();
                begin = 0;
            }
            const long shift = static_cast<long>(info.firstColumn + i) - halfX;
            for (unsigned long voters = votersOf(pixels + i, std::min(kBlock, info.nbData - i), lowest); voters != 0;
                 voters &= voters - 1) {
                const long bit = __builtin_ctzl(voters);
                m_positions[m_nbVoters] = static_cast<float>(bit + shift);
                m_weights[m_nbVoters] = static_cast<float>(toAccum<Accum>(pixels[i + static_cast<unsigned long>(bit)]));
                ++m_nbVoters;
            }
        }
        if (m_nbVoters > begin)
            m_segments.push_back({y, begin, m_nbVoters});
    }
    if (info.lineIndex + 1 == strip.getNbLines() && m_nbVoters > 0)
        vote<Accum, Set>();
    return success();
}

template<class Sample, core::eInstructionSet Set>
BoolResult HoughLines2dImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    switch (value<attr::OutImg>()->getBufferType()) {
    case image::eIBT_Int32: return processFunction<Sample, int, Set>(info);
    case image::eIBT_UInt32: return processFunction<Sample, unsigned int, Set>(info);
    case image::eIBT_Real32: return processFunction<Sample, float, Set>(info);
    default: return success();
    }
}

}}}  // namespace orvik::imaproc::fd
