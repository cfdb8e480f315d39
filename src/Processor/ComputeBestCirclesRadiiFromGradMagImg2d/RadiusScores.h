#pragma once

#include "Processor/RadiusSums.h"

#include "frame/attr/Records.h"
#include "frame/util/ProcessingResult.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace orvik { namespace imaproc { namespace fd {

/// The places that radii are scored on, in raster order, the gradients about centres, as far as they were
/// looked at, and what a score is summed in.
struct RadiusScores : RadiusSums
{
    /// Places of a row whose columns follow one another.
    struct Run
    {
        long dx, dy;
        std::size_t begin, end;
    };
    /// A place, and a gradient: what is read of them together lies together.
    struct Place
    {
        float unitX, unitY;
        unsigned int radius;  // whole
    };
    struct Gradient
    {
        float unitX, unitY, magnitude;
    };
    /// Where the gradients of a row lie, and their directions in 256ths of a turn.
    struct Row
    {
        Gradient* gradients;
        unsigned char* codes;
    };

    /// For lines of `nbColumns` pixels with margins. Fails for places beyond the greatest radius.
    BoolResult init(const attr::HoughCirclesKernelXY& kernel, const attr::HoughCirclesRadiusRange& range,
                    unsigned long nbColumns);
    /// Row `y` of the strip, which lies in the place of the one that is no longer within reach.
    Row row(long y);
    /// Where it is told which row the blocks of that place have.
    long* blocksOf(long y);

    /// The direction (x, y) in 256ths of a turn, off by `g_codeError` at most; any where it is no number.
    static unsigned char codeOf(float x, float y);
    static constexpr double g_codesPerRadian = 128.0 / 3.141592653589793, g_codeError = 0.58;

    std::vector<Run> runs;
    std::vector<Place> places;
    std::vector<unsigned char> codes;  // of their directions

private:
    std::size_t m_pitch = 0, m_nbBlocks = 0;
    std::vector<Gradient> m_gradients;
    std::vector<unsigned char> m_codes;
    std::vector<long> m_rows;
};

inline unsigned char RadiusScores::codeOf(float x, float y)
{
    const float absX = std::fabs(x), absY = std::fabs(y), greater = std::max(absX, absY);
    const float slope = greater > 0.0f ? std::min(absX, absY) / greater : 0.0f;
    // The arc tangent of 0 to 1 within 0.0015, so within 0.07 codes.
    const float angle = slope * (0.7853982f + (1.0f - slope) * (0.2447f + 0.0663f * slope));
    const float acute = absY > absX ? 1.5707964f - angle : angle;
    const float half = x < 0.0f ? 3.1415927f - acute : acute;
    const float rounded = (y < 0.0f ? -half : half) * static_cast<float>(g_codesPerRadian) + 256.5f;
    return static_cast<unsigned char>(static_cast<int>(rounded > 0.0f ? rounded : 0.0f));
}

}}}  // namespace orvik::imaproc::fd
