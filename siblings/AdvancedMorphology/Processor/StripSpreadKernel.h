#pragma once

// Finds the weak samples (1) beside strong ones (2 and above) of one strip and spreads from them: the kernel of planes and
// of volumes. Compiled once per instruction set.

#include "siblings/AdvancedMorphology/Processor/WeakSpreader.h"

#include "frame/image/Buffers.h"
#include "frame/simd/Simd.h"

#include <algorithm>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace advmorpho { namespace {

/// Largest value of each column over some lines, and of all of them.
template<unsigned long N>
inline unsigned char largestOfColumns(const unsigned char* const (&lines)[N], unsigned char* columns, unsigned long n)
{
    typedef typename Lanes<unsigned char>::type V;
    constexpr unsigned long lanes = Lanes<unsigned char>::count;
    V largest = {};
    unsigned long x = 0;
    for (; x + lanes <= n; x += lanes) {
        V m = load(lines[0] + x);
        for (unsigned long l = 1; l < N; ++l) {
            const V v = load(lines[l] + x);
            m = m > v ? m : v;
        }
        store(columns + x, m);
        largest = largest > m ? largest : m;
    }
    unsigned char result = 0;
    for (; x < n; ++x) {
        unsigned char m = lines[0][x];
        for (unsigned long l = 1; l < N; ++l)
            m = std::max(m, lines[l][x]);
        columns[x] = m;
        result = std::max(result, m);
    }
    for (unsigned long l = 0; l < lanes; ++l)
        result = largest[l] > result ? largest[l] : result;
    return result;
}

/// Whether a block of samples holds a weak one beside a strong one: in its own column or the next ones of lines that reach
/// there, in its own column alone of the others.
template<bool Others>
inline bool hasSeed(const unsigned char* at, const unsigned char* reaching, const unsigned char* others)
{
    typedef typename Lanes<unsigned char>::type V;
    const V weak = V{} + static_cast<unsigned char>(1);
    const V left = load(reaching - 1), middle = load(reaching), right = load(reaching + 1);
    V m = left > middle ? left : middle;
    m = m > right ? m : right;
    if constexpr (Others) {
        const V other = load(others);
        m = m > other ? m : other;
    }
    return anyOf((load(at) == weak) & (m > weak));
}

constexpr unsigned long nbReaching(const Neighborhood& neighborhood)
{
    unsigned long nb = 1;  // the line itself
    for (unsigned long n = 0; n < neighborhood.nbLines; ++n)
        nb += neighborhood.lines[n].reach;
    return nb;
}

/// Spreads among the lines of a strip; gives the largest value. `N`: an enumerator of the neighbourhoods of planes or volumes.
template<auto N>
unsigned char spreadInStrip(const ByteLines& strip)
{
    constexpr Neighborhood neighborhood = neighborhoodOf(N);
    constexpr unsigned long reachingSize = nbReaching(neighborhood), othersSize = neighborhood.nbLines + 1 - reachingSize;
    constexpr bool hasOthers = othersSize > 0;
    const unsigned long sizeX = strip.sizeX;
    WeakSpreader spreader(strip, neighborhood);

    // A margin of 0 on both sides, so that blocks need no test for the edges of the image.
    image::TypedOwnBuffer room, otherRoom;
    room.init(sizeX + 2, eDT_UInt8);
    otherRoom.init(hasOthers ? sizeX : 1, eDT_UInt8);
    unsigned char* const reaching = static_cast<unsigned char*>(room.getDataPtr()) + 1;
    unsigned char* const others = static_cast<unsigned char*>(otherRoom.getDataPtr());
    constexpr unsigned long lanes = Lanes<unsigned char>::count;
    unsigned char largest = 0;
    for (unsigned long z = 0; z < strip.sizeZ; ++z)
        for (unsigned long y = 0; y < strip.sizeY; ++y) {
            const unsigned char* const at = strip.at(y, z);
            const unsigned char* reachingLines[reachingSize] = {at};
            const unsigned char* otherLines[othersSize + 1] = {};
            for (unsigned long n = 0, r = 1, o = 0; n < neighborhood.nbLines; ++n) {
                const NeighborLine& line = neighborhood.lines[n];
                const unsigned char* const beside =
                    line.isInside(y, z, strip.sizeY, strip.sizeZ) ? strip.at(line.yFrom(y), line.zFrom(z)) : at;
                (line.reach > 0 ? reachingLines[r++] : otherLines[o++]) = beside;
            }
            unsigned char ofLines = largestOfColumns(reachingLines, reaching, sizeX);
            if constexpr (hasOthers) {
                otherLines[othersSize] = at;
                ofLines = std::max(ofLines, largestOfColumns(otherLines, others, sizeX));
            }
            largest = std::max(largest, ofLines);
            if (ofLines < 2)
                continue;
            const auto besideStrong = [&](unsigned long x) {
                const unsigned char* const columns = reaching + x;
                return std::max({columns[-1], columns[0], columns[1]}) > 1 || (hasOthers && others[x] > 1);
            };
            for (unsigned long x = 0; x < sizeX; x += lanes) {
                if (x + lanes <= sizeX && !hasSeed<hasOthers>(at + x, reaching + x, others + x))
                    continue;
                for (unsigned long i = x; i < std::min(x + lanes, sizeX); ++i)
                    if (at[i] == 1 && besideStrong(i))
                        spreader.spreadFrom(i, y, z);
            }
        }
    return largest;
}

}  // namespace
}}}  // namespace orvik::imaproc::advmorpho

#include "frame/simd/CloseSet.h"
