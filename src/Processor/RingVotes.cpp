#include "Processor/RingVotes.h"

#include <algorithm>
#include <cmath>

namespace orvik { namespace imaproc { namespace fd {

namespace {

// Columns of the table beyond the rings, so that a vector that begins on them stays in its row.
const unsigned long g_spareColumns = 16;
// Votes for angles whose cosine is above this one: beyond, a gradient that is flat might count, and gathering is as fast.
const float g_leastCosine = 0.25f;
// By how much the directions of a list are widened, far above what normalising and the cosine are rounded by.
const double g_slack = 2e-6;

// Costs in nanoseconds, as measured; only their ratios count.
const double g_gatherCost = 1.7;  // a vector of 512 bits of one place
const double g_voteCost = 2.2;    // a vector of votes
const double g_listCost = 60.0;   // a row of a list

/// The angle of a direction that lies at `t` of the way from the x axis to the y axis along the diagonal.
double angleOf(double t)
{
    return std::atan2(t, 1.0 - t);
}

/// Limits of x so that (x, y) lies left of the ray of angle `alpha` and right of that of `beta`, which are less than half a
/// turn apart.
struct Interval
{
    double low = -1e30, high = 1e30;

    Interval(double alpha, double beta, double y)
    {
        atLeastZero(-std::sin(alpha), std::cos(alpha) * y);
        atLeastZero(std::sin(beta), -std::cos(beta) * y);
    }

private:
    /// slope * x + offset >= 0, up to rounding
    void atLeastZero(double slope, double offset)
    {
        const double tiny = 1e-9;
        if (std::fabs(slope) < 1e-15) {
            if (offset < -tiny)
                high = low - 1;
            return;
        }
        const double bound = -offset / slope;
        if (slope > 0)
            low = std::max(low, bound - tiny * (1 + std::fabs(bound)));
        else
            high = std::min(high, bound + tiny * (1 + std::fabs(bound)));
    }
};

}  // namespace

template<unsigned int NbWeights>
Rings<NbWeights>::Rings(std::vector<Element> elements, long maxRadius, const GradientCone& cone)
    : m_elements(std::move(elements)), m_maxRadius(maxRadius), m_cone(cone),
      m_canVote(cone.isOpen && cone.cosine >= g_leastCosine), m_isMirrored(false), m_nbBins(8),
      m_pitch(static_cast<unsigned long>(2 * maxRadius + 1) + g_spareColumns),
      m_planeSize(static_cast<std::size_t>(2 * maxRadius + 1) * m_pitch + g_spareColumns)
{
    m_rowBegins.assign(static_cast<std::size_t>(2 * maxRadius + 2), 0);
    const auto isFinite = [](const Element& e) {
        bool all = std::isfinite(e.units[0]) && std::isfinite(e.units[1]);
        for (const float weight : e.weights)
            all = all && std::isfinite(weight);
        return all;
    };
    for (const Element& e : m_elements) {
        ++m_rowBegins[static_cast<std::size_t>(e.dy + maxRadius) + 1];
        m_canVote = m_canVote && isFinite(e);
    }
    for (std::size_t row = 1; row < m_rowBegins.size(); ++row)
        m_rowBegins[row] += m_rowBegins[row - 1];
    // Rings that are not thinned hold with each place the opposite one, which stands as far from the end of the list.
    bool isSymmetric = true;
    for (std::size_t i = 0; i < m_elements.size() / 2 && isSymmetric; ++i) {
        const Element &a = m_elements[i], &b = m_elements[m_elements.size() - 1 - i];
        isSymmetric = a.dx == -b.dx && a.dy == -b.dy && std::equal(a.weights, a.weights + NbWeights, b.weights);
    }
    m_isMirrored = m_cone.isBoth && isSymmetric;
    // Narrow lists have few vectors that a gradient does not reach, wide ones are soon made.
    const double angle = std::acos(std::max(static_cast<double>(m_cone.cosine), -1.0));
    while (m_nbBins < 64 && static_cast<double>(m_nbBins) * angle < 6.0)
        m_nbBins *= 2;
}

template<unsigned int NbWeights>
std::size_t Rings<NbWeights>::firstFromRow(long dy) const
{
    const long row = std::min(std::max(dy, -m_maxRadius), m_maxRadius + 1);
    return m_rowBegins[static_cast<std::size_t>(row + m_maxRadius)];
}

template<unsigned int NbWeights>
void Rings<NbWeights>::makeTable() const
{
    m_table.assign(m_planeSize * (2 + NbWeights), 0.0f);
    for (const Element& e : m_elements) {
        // Seen from the gradient the centre lies opposite.
        float* const place =
            &m_table[static_cast<std::size_t>(m_maxRadius - e.dy) * m_pitch + static_cast<std::size_t>(m_maxRadius - e.dx)];
        place[0] = -e.units[0];
        place[m_planeSize] = -e.units[1];
        for (unsigned int i = 0; i < NbWeights; ++i)
            place[(2 + i) * m_planeSize] = e.weights[i];
    }
}

template<unsigned int NbWeights>
std::unique_ptr<RingVoteLists> Rings<NbWeights>::makeLists(unsigned long lanes, unsigned long pitch) const
{
    const long radius = m_maxRadius, side = 2 * radius + 1, none = side;
    // From each column of a row the next one that has a place, or none.
    std::vector<int> next(static_cast<std::size_t>(side * (side + 1)), static_cast<int>(none));
    for (const Element& e : m_elements)
        next[static_cast<std::size_t>((radius - e.dy) * (side + 1) + radius - e.dx)] = static_cast<int>(radius - e.dx);
    for (long row = 0; row < side; ++row)
        for (long column = side - 1; column >= 0; --column) {
            int* const here = &next[static_cast<std::size_t>(row * (side + 1) + column)];
            here[0] = std::min(here[0], here[1]);
        }

    auto lists = std::make_unique<RingVoteLists>();
    lists->lanes = lanes;
    const unsigned long nbQuadrants = m_isMirrored ? 2 : 4, nbDirections = nbQuadrants * m_nbBins;
    lists->nbDirections = nbDirections;

    const auto addRow = [&](long qy, double low, double high) {
        const int* const columns = &next[static_cast<std::size_t>((qy + radius) * (side + 1))];
        const double reach = static_cast<double>(radius);
        const long first = static_cast<long>(std::ceil(std::max(low, -reach))) + radius;
        const long last = static_cast<long>(std::floor(std::min(high, reach))) + radius;
        if (!(low <= high))
            return;
        for (long column = first; column <= last; column += static_cast<long>(lanes)) {
            column = columns[column];
            if (column > last)
                break;
            lists->entries.push_back({static_cast<int>((qy + radius) * static_cast<long>(m_pitch) + column),
                                      static_cast<int>(qy * static_cast<long>(pitch) + column - radius)});
        }
    };

    const double open = std::acos(std::max(static_cast<double>(m_cone.cosine) - g_slack, -1.0)) + g_slack;
    struct Cone
    {
        double from, to;
    };
    std::vector<Cone> cones;
    for (unsigned long quadrant = 0; quadrant < nbQuadrants; ++quadrant)
        for (unsigned long bin = 0; bin < m_nbBins; ++bin) {
            const double low = angleOf(static_cast<double>(bin) / static_cast<double>(m_nbBins));
            const double high = angleOf(static_cast<double>(bin + 1) / static_cast<double>(m_nbBins));
            const double turned[4][2] = {{low, high}, {M_PI - high, M_PI - low}, {M_PI + low, M_PI + high}, {-high, -low}};
            cones.push_back({turned[quadrant][0] - open - g_slack, turned[quadrant][1] + open + g_slack});
        }

    // Bytes of the table's rows above and below, and of the accumulator's, that a band may take; but a gradient should vote for
    // some vectors in each, since what was just stored is slow to load, and the next gradient votes for nearly the same.
    const double cacheBytes = 24576, leastVectors = 12;
    const double rowBytes = 2.0 * static_cast<double>(side) * sizeof(float) * (2 + 2 * NbWeights);
    const double share = (2 * open + M_PI_2 / static_cast<double>(m_nbBins)) / (2 * M_PI);
    const double vectorsPerRow =
        0.4 + share * static_cast<double>(m_elements.size()) / static_cast<double>(lanes) / static_cast<double>(radius + 1);
    const long rowsPerBand = static_cast<long>(std::ceil(std::max(cacheBytes / rowBytes, leastVectors / vectorsPerRow)));
    for (long firstRow = 0; firstRow <= radius; firstRow += rowsPerBand) {
        const long lastRow = std::min(radius, firstRow + rowsPerBand - 1);
        lists->bands.push_back({firstRow, lastRow});
        const auto addRows = [&](const auto& limitsOf) {
            lists->begins.push_back(static_cast<unsigned int>(lists->entries.size()));
            for (long qy = -lastRow; qy <= lastRow; ++qy)
                if (std::labs(qy) >= firstRow) {
                    const auto limits = limitsOf(static_cast<double>(qy));
                    addRow(qy, limits.low, limits.high);
                }
        };
        for (const Cone& cone : cones)
            addRows([&](double y) { return Interval(cone.from, cone.to, y); });
        lists->meanLength += static_cast<double>(lists->entries.size() - lists->begins[lists->begins.size() - nbDirections])
                             / static_cast<double>(nbDirections);
        struct All
        {
            double low = -1e30, high = 1e30;
        };
        addRows([](double) { return All(); });
    }
    lists->begins.push_back(static_cast<unsigned int>(lists->entries.size()));
    if (m_cone.isBoth && !m_isMirrored)
        lists->meanLength *= 2;
    return lists;
}

template<unsigned int NbWeights>
const RingVoteLists* Rings<NbWeights>::votes(unsigned long lanes, unsigned long pitch, double nbPixels, eRingForm form) const
{
    const double mostPixels = 2147483648.0;  // that an offset counts
    if (!m_canVote || form == eRF_Gather || m_elements.empty()
        || static_cast<double>(m_maxRadius + 1) * static_cast<double>(pitch) > mostPixels)
        return nullptr;
    const double widest = 16, nbElements = static_cast<double>(m_elements.size());
    const double gather = nbPixels * nbElements * g_gatherCost * NbWeights / widest;
    const double making = g_listCost * static_cast<double>((m_isMirrored ? 2 : 4) * m_nbBins)
                          * static_cast<double>(2 * m_maxRadius + 1);
    if (form == eRF_ByCost && gather < 4 * making)
        return nullptr;
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_table.empty())
        makeTable();
    std::unique_ptr<RingVoteLists>& lists = m_lists[{lanes, pitch}];
    if (!lists)
        lists = makeLists(lanes, pitch);
    const double perSource = lists->meanLength * (m_isMirrored ? 1.5 : 1.0) * g_voteCost;
    const bool isCheaper = perSource < nbElements / static_cast<double>(lanes) * g_gatherCost;
    return isCheaper || form == eRF_Votes ? lists.get() : nullptr;
}

template class Rings<1>;
template class Rings<2>;

}}}  // namespace orvik::imaproc::fd
