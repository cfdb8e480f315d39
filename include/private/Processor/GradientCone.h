#pragma once

// Which gradients count for the centre of a circle or sphere, and how that is summed up.

namespace orvik { namespace imaproc { namespace fd {

/// The two ways of an accumulator to the same bits.
enum eRingForm : unsigned int
{
    eRF_ByCost = 0,  ///< the cheaper one
    eRF_Gather = 1,  ///< each pixel looks at all places of its rings or shells
    eRF_Votes = 2    ///< each gradient adds to the pixels that lie in its direction, where its direction limits them at all
};

/// Which gradients count.
struct GradientCone
{
    float cosine;   // of the greatest angle between gradient and radius; NaN for an angle that is none
    bool isOpen;    // whether the angle is not so small that nothing passes
    bool isBoth;    // whether either direction counts
    bool isInward;  // otherwise: whether from the rim to the centre
};
GradientCone makeCone(int circleIntensityType, double maxAngle);

}}}  // namespace orvik::imaproc::fd
