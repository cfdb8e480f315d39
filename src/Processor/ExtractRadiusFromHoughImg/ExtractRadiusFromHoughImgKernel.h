#pragma once

// Radii of the centres on one line. Compiled once per instruction set, though there is nothing to win.

#include "Processor/CircleCenters.h"
#include "Processor/ExtractRadiusFromHoughImg/ExtractRadiusFromHoughImgLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"

#include <cmath>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd {
namespace {

/// What the kernel works with on one strip.
template<class Real, class Imaginary>
struct PhaseStrip
{
    const Real* real;
    const Imaginary* imaginary;
    const attr::Pixels2d::Coll::Nodes& centers;
    attr::HoughCircles2dPpties::Coll::Nodes& circles;
    double minRadius, maxRadius;
    unsigned long firstY;  // of the strip, in the plane
};
template<class Real, class Imaginary>
PhaseStrip(const Real*, const Imaginary*, const attr::Pixels2d::Coll::Nodes&, attr::HoughCircles2dPpties::Coll::Nodes&,
           double, double, unsigned long) -> PhaseStrip<Real, Imaginary>;

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult ExtractRadiusFromHoughImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    auto* const strip = onceAStrip(info, [&] {
        const attr::HoughCirclesRadiusRange& range = *value<attr::InHoughCirclesRadiusRange>();
        return PhaseStrip{
            parser<attr::InComplexRealKnlYStrip2d, Sample>(),
            parser<attr::InComplexImKnlYStrip2d, Sample>(),
            value<attr::InHoughCircles2dCenters>()->template get<attr::Pixels2d::Coll>().getNodes(),
            value<attr::OutHoughCircles2dPpties>()->template access<attr::HoughCircles2dPpties::Coll>().accessNodes(),
            static_cast<double>(range.get<attr::HoughCirclesRadiusRange::MinRadius>()),
            static_cast<double>(range.get<attr::HoughCirclesRadiusRange::MaxRadius>()),
            value<attr::InComplexRealKnlYStrip2d>()->getStripStartOffsetY()};
    });
    if (!strip)
        return wrongSampleType();
    if (strip->circles.empty())
        strip->circles.resize(strip->centers.size());
    const unsigned long row = strip->firstY + info.lineIndex;
    for (std::size_t i = 0; i < strip->centers.size(); ++i) {
        unsigned long column;
        const attr::Pixel2d& center = *strip->centers[i];
        if (!isOnRun(center, row, info.firstColumn, info.nbData, false, column))
            continue;
        const double re = static_cast<double>(strip->real->accessBuffer(0)[column]);
        const double im = static_cast<double>(strip->imaginary->accessBuffer(0)[column]);
        double angle = std::atan2(im, re);
        if (angle < 0)
            angle += 6.283185307179586;
        const double radius = (strip->maxRadius - strip->minRadius) * angle * 0.5 / 3.141592653589793 + strip->minRadius;
        strip->circles[i] = circleAt(center, radius);
    }
    return success();
}

}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

ORVIK_REGISTER_KERNELS(ExtractRadiusFromHoughImgLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::fd
