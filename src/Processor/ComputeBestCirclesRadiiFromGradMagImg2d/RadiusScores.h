#pragma once

#include "frame/attr/Records.h"
#include "frame/util/ProcessingResult.h"

#include <vector>

namespace orvik { namespace imaproc { namespace fd {

/// The places that radii are scored on, in raster order, field by field, the gradients about centres, as far as they were
/// looked at, and what a score is summed in.
struct RadiusScores
{
    /// Places of a row whose columns follow one another.
    struct Run
    {
        long dx, dy;
        std::size_t begin, end;
    };
    /// Where the gradients of a row lie: directions, magnitudes, and directions in 256ths of a turn.
    struct Row
    {
        float *x, *y, *magnitude;
        unsigned char* codes;
    };

    /// For lines of `nbColumns` pixels with margins. Fails for places beyond the greatest radius.
    BoolResult init(const attr::HoughCirclesKernelXY& places, const attr::HoughCirclesRadiusRange& range,
                    unsigned long nbColumns);
    /// The best radius, by what `sums` holds.
    double best();
    /// Row `y` of the strip, which lies in the place of the one that is no longer within reach.
    Row row(long y);
    /// Where it is told which row the blocks of that place have.
    long* blocksOf(long y);

    /// The direction (x, y) in 256ths of a turn, rounded.
    static unsigned char codeOf(float x, float y);
    static constexpr double g_codesPerRadian = 128.0 / 3.141592653589793;

    long minRadius = 0, maxRadius = 0;
    std::vector<Run> runs;
    std::vector<float> unitX, unitY;
    std::vector<unsigned char> codes;  // of their directions
    std::vector<unsigned int> radii;   // whole, of each place
    std::vector<double> sums;          // by whole radius
    std::vector<unsigned int> counts;  // of places

private:
    std::size_t m_pitch = 0, m_nbBlocks = 0;
    std::vector<float> m_gradients;
    std::vector<unsigned char> m_codes;
    std::vector<long> m_rows;
};

}}}  // namespace orvik::imaproc::fd
