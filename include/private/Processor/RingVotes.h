#pragma once

// Which places about a gradient can hold the centre of a circle that it points along: what accumulators that vote go through
// instead of all places of all rings.

#include "Processor/GradientCone.h"

#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace orvik { namespace imaproc { namespace fd {

/// A place of the rings with what it counts for: one weight, or the two parts of a complex one.
template<unsigned int NbWeights>
struct RingElement
{
    int dx, dy;
    float units[2];
    float weights[NbWeights];
};

/// Vectors of pixels that a gradient votes for, by its direction. A vector is told by where it stands in the table of places
/// and how far it lies from the gradient's own pixel in the accumulator.
struct RingVoteLists
{
    struct Entry
    {
        int table;
        int out;
    };
    /// Rows of places, above and below the gradient alike, that are gone through together, so that they stay in the nearest
    /// cache.
    struct Band
    {
        long firstRow, lastRow;  // distances from the gradient
    };

    unsigned long lanes = 0;         // of a vector
    unsigned long nbDirections = 0;  // that lists are made for; one more list has all places
    std::vector<Band> bands;
    std::vector<unsigned int> begins;  // of the list of each direction in `entries`, band by band
    std::vector<Entry> entries;
    double meanLength = 0;  // vectors that a gradient votes for
};

/// The rings of a run as its strips see them: the places in raster order, and what votes need, made when they are asked for.
template<unsigned int NbWeights>
class Rings
{
public:
    typedef RingElement<NbWeights> Element;

    Rings(std::vector<Element> elements, long maxRadius, const GradientCone& cone);

    const std::vector<Element>& getElements() const { return m_elements; }
    /// The first element that does not lie above row `dy`.
    std::size_t firstFromRow(long dy) const;
    long getMaxRadius() const { return m_maxRadius; }
    const GradientCone& getCone() const { return m_cone; }
    /// Whether a vote stands for two, that for the opposite place as well.
    bool isMirrored() const { return m_isMirrored; }
    unsigned long getNbBinsPerQuadrant() const { return m_nbBins; }

    /// Lists for vectors of `lanes` and an accumulator whose lines lie `pitch` apart; null when `nbPixels` pixels are better
    /// served by gathering.
    const RingVoteLists* votes(unsigned long lanes, unsigned long pitch, double nbPixels, eRingForm form) const;

    // The table: planes of directions along x, along y and weights, a square of places with some columns more, in which
    // what is no place has no direction and no weight. Directions are those from a place to the centre.
    const float* getTable() const { return m_table.data(); }
    std::size_t getPlaneSize() const { return m_planeSize; }

private:
    void makeTable() const;
    std::unique_ptr<RingVoteLists> makeLists(unsigned long lanes, unsigned long pitch) const;

    std::vector<Element> m_elements;
    std::vector<std::size_t> m_rowBegins;
    long m_maxRadius;
    GradientCone m_cone;
    bool m_canVote;
    bool m_isMirrored;
    unsigned long m_nbBins;
    unsigned long m_pitch;  // of the table
    std::size_t m_planeSize;

    mutable std::mutex m_mutex;
    mutable std::vector<float> m_table;
    mutable std::map<std::pair<unsigned long, unsigned long>, std::unique_ptr<RingVoteLists>> m_lists;
};

extern template class Rings<1>;
extern template class Rings<2>;

}}}  // namespace orvik::imaproc::fd
