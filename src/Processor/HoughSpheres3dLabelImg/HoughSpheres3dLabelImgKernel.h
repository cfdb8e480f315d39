#pragma once

// Which sphere has each voxel, slice by slice of one strip. Compiled once per instruction set.

#include "Processor/HoughSpheres3dLabelImg/HoughSpheres3dLabelImgLvl3.h"
#include "Processor/HoughSpheres3dLabelImg/SphereSlice.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"
#include "frame/simd/Simd.h"

#include <cstring>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd {
namespace {

/// Makes room in a row for columns from `first` to `end`, in no sphere.
inline void widen(SphereSlice::Columns& drawn, unsigned long first, unsigned long end, int* labels)
{
    if (drawn.first == drawn.end)
        drawn = {first, first};
    const auto clear = [&](unsigned long from, unsigned long to) {
        for (unsigned long x = from; x < to; ++x)
            labels[x] = 0;
    };
    clear(first, drawn.first);
    clear(drawn.end, end);
    drawn = {first < drawn.first ? first : drawn.first, end > drawn.end ? end : drawn.end};
}

/// Of two spheres that a voxel lies in, whether it lies no deeper in the second one, by distance over radius.
inline bool keepsFirst(const DrawnSphere& first, const DrawnSphere& second, float x, float y, float z)
{
    const auto depthIn = [&](const DrawnSphere& sphere) {
        const float dx = x - sphere.x, dy = y - sphere.y, dz = z - sphere.z;
        return __builtin_sqrtf((dx * dx + dy * dy) + dz * dz) / sphere.radius;
    };
    return depthIn(first) <= depthIn(second);
}

/// Columns from `first` to `end`, whole vectors: what the sphere gets is told voxel by voxel, so it does not matter that there
/// are some too many.
inline void drawRow(const SphereSlice& slice, unsigned int place, float y, float z, unsigned long first, unsigned long end,
                    int* labels)
{
    typedef Lanes<float>::type F;
    typedef Lanes<int>::type I;
    constexpr unsigned long lanes = Lanes<float>::count;
    const DrawnSphere& sphere = slice.spheres[place];
    float columns[lanes];
    for (unsigned long i = 0; i < lanes; ++i)
        columns[i] = static_cast<float>(i);
    const F steps = load(columns);
    const float dy = y - sphere.y, dz = z - sphere.z, yy = dy * dy, zz = dz * dz;
    const I label = I{} + static_cast<int>(place + 1);
    for (unsigned long x = first; x < end; x += lanes) {
        const F dx = (steps + static_cast<float>(x)) - sphere.x;
        const I inside = ((dx * dx + yy) + zz) <= sphere.squareWithin, before = load(labels + x);
        const I contested = inside & (before != 0);
        store(labels + x, inside ? label : before);
        if (!anyOf(contested))
            continue;
        for (unsigned long i = 0; i < lanes; ++i)
            if (contested[i]
                && keepsFirst(slice.spheres[static_cast<unsigned int>(before[i]) - 1], sphere, static_cast<float>(x + i), y,
                              z))
                labels[x + i] = before[i];
    }
}

inline void drawSlice(SphereSlice& slice, unsigned long z)
{
    constexpr unsigned long lanes = Lanes<float>::count;
    int* const labels = static_cast<int*>(slice.labels.getDataPtr());
    for (SphereSlice::Columns& drawn : slice.drawn)
        drawn = {0, 0};
    for (const SphereSlice::Reaching& reaching : slice.reaching) {
        if (z < reaching.firstSlice || z >= reaching.endSlice)
            continue;
        const DrawnSphere& sphere = slice.spheres[reaching.place];
        const double reach = sphere.reach(), dz = static_cast<double>(z) - static_cast<double>(sphere.z);
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
            const unsigned long end = columns.first + (columns.end - columns.first + lanes - 1) / lanes * lanes;
            int* const row = labels + y * slice.rowSize;
            widen(slice.drawn[y], columns.first, end, row);
            drawRow(slice, reaching.place, static_cast<float>(y), static_cast<float>(z), columns.first, end, row);
        }
    }
}

/// Writes lines of labels. Zeros that follow one another in memory, such as lines without spheres, are written together.
template<class Sample>
class LabelWriter
{
public:
    ~LabelWriter() { writeZeros(); }

    void write(const SphereSlice::Columns& drawn, const int* labels, Sample* to, unsigned long sizeX)
    {
        const unsigned long first = drawn.first < sizeX ? drawn.first : sizeX, end = drawn.end < sizeX ? drawn.end : sizeX;
        addZeros(to, to + (first < end ? first : sizeX));
        if (first == end)
            return;
        for (unsigned long x = first; x < end; ++x)
            to[x] = static_cast<Sample>(labels[x]);
        addZeros(to + end, to + sizeX);
    }

private:
    void addZeros(Sample* from, Sample* to)
    {
        if (from != m_end) {
            writeZeros();
            m_begin = from;
        }
        m_end = to;
    }
    void writeZeros()
    {
        if (m_begin != m_end)
            std::memset(m_begin, 0, static_cast<unsigned long>(m_end - m_begin) * sizeof(Sample));
        m_begin = m_end;
    }

    Sample *m_begin = nullptr, *m_end = nullptr;
};

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult HoughSpheres3dLabelImgLvl3::genericProcessFunction(const processor::ProcessingInfo&)
{
    const image::OutputImageZStrip3d& strip = *value<attr::OutLabelZStrip3d>();
    SphereSlice& slice = *m_slice;
    LabelWriter<Sample> writer;
    for (unsigned long line = 0; line < strip.getNbLines();) {
        drawSlice(slice, strip.getStripStartOffsetZ() + line / slice.sizeY);
        const int* const labels = static_cast<const int*>(slice.labels.getDataPtr());
        for (unsigned long y = 0; y < slice.sizeY; ++y, ++line)
            writer.write(slice.drawn[y], labels + y * slice.rowSize, static_cast<Sample*>(strip.accessLine(line)),
                         slice.sizeX);
    }
    return success();
}

}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

ORVIK_REGISTER_KERNELS(HoughSpheres3dLabelImgLvl3, LabelKernelTypes)

}}}  // namespace orvik::imaproc::fd
