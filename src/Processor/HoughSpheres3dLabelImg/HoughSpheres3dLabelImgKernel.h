#pragma once

// Which sphere has each voxel of a slice, and the lines of labels. Compiled once per instruction set.

#include "Processor/HoughSpheres3dLabelImg/HoughSpheres3dLabelImgLvl3.h"
#include "Processor/HoughSpheres3dLabelImg/SphereSlice.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"
#include "frame/simd/Simd.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd {
namespace {

/// What the kernel works with on one strip.
template<class Out>
struct LabelStrip
{
    const Out* out;
    unsigned long firstZ;  // of the strip, in the volume
};

template<class O>
LabelStrip(const O*, unsigned long) -> LabelStrip<O>;

/// Columns from `first` on, up to `end` or a little beyond, of a row: what the sphere gets is told voxel by voxel, so it does not
/// matter how many are looked at.
inline void drawRow(const DrawnSphere& sphere, float y, float z, unsigned long first, unsigned long end, float* depths,
                    int* labels)
{
    typedef Lanes<float>::type F;
    typedef Lanes<int>::type I;
    constexpr unsigned long lanes = Lanes<float>::count;
    float columns[lanes];
    for (unsigned long i = 0; i < lanes; ++i)
        columns[i] = static_cast<float>(i);
    const F steps = load(columns);
    const float dy = y - sphere.y, dz = z - sphere.z, yy = dy * dy, zz = dz * dz;
    const I label = I{} + static_cast<int>(sphere.label);
    for (unsigned long x = first - first % lanes; x < end; x += lanes) {
        const F dx = (steps + static_cast<float>(x)) - sphere.x;
        const F distance = squareRoot((dx * dx + yy) + zz), depth = distance / sphere.radius, before = load(depths + x);
        // Outside of all spheres a voxel is infinitely deep: so is nothing within one.
        const I taken = (distance <= sphere.radius) & ~(before <= depth);
        store(depths + x, taken ? depth : before);
        store(labels + x, taken ? label : load(labels + x));
    }
}

inline void drawSlice(SphereSlice& slice, unsigned long z)
{
    float* const depths = static_cast<float*>(slice.depths.getDataPtr());
    int* const labels = static_cast<int*>(slice.labels.getDataPtr());
    std::fill(slice.isDrawn.begin(), slice.isDrawn.end(), static_cast<unsigned char>(0));
    for (const DrawnSphere& sphere : slice.spheres) {
        if (z < sphere.firstSlice || z >= sphere.endSlice)
            continue;
        const double reach = reachOf(sphere), dz = static_cast<double>(z) - static_cast<double>(sphere.z);
        const double inSlice = reach * reach - dz * dz;
        if (inSlice < 0)
            continue;
        const Reach rows(static_cast<double>(sphere.y), __builtin_sqrt(inSlice), slice.sizeY);
        for (unsigned long y = rows.first; y < rows.end; ++y) {
            const double dy = static_cast<double>(y) - static_cast<double>(sphere.y), inRow = inSlice - dy * dy;
            if (inRow < 0)
                continue;
            const Reach columns(static_cast<double>(sphere.x), __builtin_sqrt(inRow), slice.sizeX);
            if (columns.first >= columns.end)
                continue;
            float* const rowDepths = depths + y * slice.rowSize;
            int* const rowLabels = labels + y * slice.rowSize;
            if (!slice.isDrawn[y]) {
                slice.isDrawn[y] = 1;
                std::fill_n(rowDepths, slice.rowSize, std::numeric_limits<float>::infinity());
                std::fill_n(rowLabels, slice.rowSize, 0);
            }
            drawRow(sphere, static_cast<float>(y), static_cast<float>(z), columns.first, columns.end, rowDepths, rowLabels);
        }
    }
}

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult HoughSpheres3dLabelImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    const auto* const strip = onceAStrip(info, [&] {
        return LabelStrip{parser<attr::OutLabelZStrip3d, Sample>(), value<attr::OutLabelZStrip3d>()->getStripStartOffsetZ()};
    });
    if (!strip)
        return wrongSampleType();
    SphereSlice& slice = *m_slice;
    const unsigned long y = info.lineIndex % slice.sizeY;
    if (y == 0)
        drawSlice(slice, strip->firstZ + info.lineIndex / slice.sizeY);
    Sample* const to = strip->out->accessBuffer();
    if (!slice.isDrawn[y]) {
        std::memset(to, 0, info.nbData * sizeof(Sample));
        return success();
    }
    const int* const labels = static_cast<const int*>(slice.labels.getDataPtr()) + y * slice.rowSize;
    for (unsigned long x = 0; x < info.nbData; ++x)
        to[x] = static_cast<Sample>(labels[x]);
    return success();
}

}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

ORVIK_REGISTER_KERNELS(HoughSpheres3dLabelImgLvl3, LabelKernelTypes)

}}}  // namespace orvik::imaproc::fd
