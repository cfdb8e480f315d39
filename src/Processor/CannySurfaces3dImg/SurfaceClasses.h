#pragma once

// Classes of the voxels of one block: 0 no candidate, 1 weak, 2 strong.

#include "Processor/BlockLanes.h"
#include "Processor/CannyMagnitudes.h"

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd { namespace {

/// A block of a line, and the lines about it in the slices before, of, and after it: magnitudes by slice and line, each from
/// the voxel left of the block, and the gradient of the block alone.
template<class Sample, class Magnitude>
struct VolumeNeighbourhood
{
    const Magnitude* rows[3][3];
    const Sample *gx, *gy, *gz;
};

/// The same in doubles, which hold the values of every type.
class SurfaceBlock
{
public:
    typedef Lanes<double>::type D;

    template<class Sample, class Magnitude>
    explicit SurfaceBlock(const VolumeNeighbourhood<Sample, Magnitude>& at)
        : m_gx(inLanes(at.gx, m_gradientRoom[0], kBlock)), m_gy(inLanes(at.gy, m_gradientRoom[1], kBlock)),
          m_gz(inLanes(at.gz, m_gradientRoom[2], kBlock))
    {
        for (unsigned long z = 0; z < 3; ++z)
            for (unsigned long y = 0; y < 3; ++y)
                m_rows[z][y] = inLanes(at.rows[z][y], m_room[z][y], kBlock + 2);
    }

    /// Magnitudes of the voxels that lie (dz, dy, dx) beside those from `i` on.
    D beside(int dz, int dy, int dx, unsigned long i) const
    {
        return load(m_rows[dz + 1][dy + 1] + (static_cast<long>(i) + 1 + dx));
    }
    D x(unsigned long i) const { return load(m_gx + i); }
    D y(unsigned long i) const { return load(m_gy + i); }
    D z(unsigned long i) const { return load(m_gz + i); }

private:
    alignas(64) double m_room[3][3][kBlock + 2];
    alignas(64) double m_gradientRoom[3][kBlock];
    const double* m_rows[3][3];
    const double *m_gx, *m_gy, *m_gz;
};

/// Sectors by the tangents: along an axis, between two of them, or between all three. In each the voxel must beat the
/// neighbour that comes before it in scan order. It may tie with the one after it along x, y and z, so that the first of two
/// equal ones stays, but not along a diagonal, where none does: deliberate.
template<class Sample>
void classify(const SurfaceBlock& block, const SquaredThresholds<Sample>& thresholds, long* classes)
{
    typedef Lanes<double>::type D;
    typedef Lanes<long>::type L;
    const double tanLow = 0.41421356237309503, tanHigh = 2.414213562373095;  // of 22.5 and 67.5 degrees
    const L magnitudeBits = L{} + 0x7fffffffffffffffL;
    const auto absolute = [&](D v) { return reinterpret_cast<D>(reinterpret_cast<L>(v) & magnitudeBits); };
    for (unsigned long i = 0; i < kBlock; i += Lanes<double>::count) {
        const D m = block.beside(0, 0, 0, i);
        const L candidate = ~(thresholds.low >= m);
        if (!anyOf(candidate)) {
            store(classes + i, L{});
            continue;
        }
        const D x = block.x(i), y = block.y(i), z = block.z(i), ax = absolute(x), ay = absolute(y), az = absolute(z);
        const D h = squareRoot(x * x + y * y);
        const L steep = az > h * tanHigh, flat = ~steep & (h * tanLow > az), tilted = ~steep & ~flat;
        const L nearX = ax * tanLow > ay, nearY = ~nearX & (ay > ax * tanHigh), between = ~nearX & ~nearY;

        // Between two axes zero counts as positive, between three as negative: deliberate.
        const L negativeX = 0.0 > x, negativeY = 0.0 > y, negativeZ = 0.0 > z;
        const L positiveX = x > 0.0, positiveY = y > 0.0, positiveZ = z > 0.0;
        const L unlikeXY = positiveX ^ positiveY, unlikeXZ = positiveX ^ positiveZ, unlikeYZ = positiveY ^ positiveZ;

        const auto firstOfEqual = [&](int dz, int dy, int dx) -> L {
            return (m > block.beside(-dz, -dy, -dx, i)) & (m >= block.beside(dz, dy, dx, i));
        };
        const auto alone = [&](int dz, int dy, int dx) -> L {
            return (m > block.beside(-dz, -dy, -dx, i)) & (m > block.beside(dz, dy, dx, i));
        };
        const auto byTurn = [&](L sector, L opposite, L like, L unlike) {
            return sector & ((opposite & unlike) | (~opposite & like));
        };
        L kept = (flat & ((nearX & firstOfEqual(0, 0, 1)) | (nearY & firstOfEqual(0, 1, 0))))
                 | (steep & firstOfEqual(1, 0, 0))
                 | byTurn(flat & between, negativeX ^ negativeY, alone(0, 1, 1), alone(0, 1, -1));
        if (anyOf(tilted)) {
            const L all = tilted & between;
            kept |= byTurn(tilted & nearX, negativeX ^ negativeZ, alone(1, 0, 1), alone(1, 0, -1))
                    | byTurn(tilted & nearY, negativeY ^ negativeZ, alone(1, 1, 0), alone(-1, 1, 0))
                    | (all & ~unlikeXY & ~unlikeXZ & alone(1, 1, 1)) | (all & unlikeXZ & unlikeYZ & alone(1, -1, -1))
                    | (all & unlikeXY & unlikeYZ & alone(1, -1, 1)) | (all & unlikeXY & unlikeXZ & alone(1, 1, -1));
        }
        const L strong = m > thresholds.high;
        store(classes + i, candidate & kept & (1 - strong));
    }
}

}  // namespace
}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"
