#pragma once

// What the detectors of edges and of surfaces are compared with: squared magnitudes with the wrap of their type, and what
// hangs together with strong samples.

#include "FamilyShapes.h"

namespace orvik::test {

inline boost::shared_ptr<const CannyThresholds> thresholds(double low, double high)
{
    return CannyThresholds::createNode(low, high);
}

/// Gradients of which many are equal, so that ties are met in every sector; up to `spread` on each side of 0.
inline ImagePtr tiedImage(eImageBufferType type, const ImageSizes& sizes, int spread, unsigned int seed)
{
    std::vector<double> values;
    for (int value = isSigned(type) ? -spread : 0; value <= spread; ++value)
        values.push_back(value);
    return drawnImage(type, sizes, values, seed);
}

/// Images of the components of a gradient, 0 outside.
class GradientSamples
{
public:
    GradientSamples(std::vector<ImagePtr> components) : m_components(std::move(components)) {}

    double at(std::size_t axis, long x, long y, long z) const
    {
        const BaseImage& image = *m_components[axis];
        const auto [column, line, slice] = std::array<unsigned long, 3>{0ul + x, 0ul + y, 0ul + z};
        const bool inside = column < image.getSizeX() && line < image.getSizeY() && slice < image.getSizeZ();
        return inside ? sampleAt(image, column, line, slice) : 0.0;
    }
    /// Squares of whole numbers below 2^32 need 64 bits.
    double squaredMagnitude(long x, long y, long z) const
    {
        const eDataType type = toDataType(m_components[0]->getBufferType());
        volatile double sum = 0;
        unsigned long whole = 0;
        for (std::size_t axis = 0; axis < m_components.size(); ++axis) {
            const double g = at(axis, x, y, z);
            const volatile double square = g * g;
            sum = sum + square;
            if (type != eDT_Real32)
                whole += static_cast<unsigned long>(static_cast<long>(g)) * static_cast<unsigned long>(static_cast<long>(g));
        }
        if (type == eDT_Real32)
            return sum;
        return static_cast<double>(whole & (type == eDT_Int8 || type == eDT_UInt8 ? 0xFFFF : 0xFFFFFFFF));
    }

private:
    std::vector<ImagePtr> m_components;
};

/// 1 on what is 2 and on what is 1 and joined to it by steps of one sample, diagonal ones included; of slices where
/// `reachZ` is 1.
inline ImagePtr joinedToStrong(const ImagePtr& classes, long reachZ)
{
    const ImagePtr joined = createImageLike(*classes, eIBT_Binary);
    const GradientSamples inside({classes});
    forEachSample(classes->getGeometry().getSizes(), [&](long startX, long startY, long startZ, auto...) {
        if (sampleAt(*classes, startX, startY, startZ) != 2)
            return;
        std::vector<std::array<long, 3>> open = {{startX, startY, startZ}};
        while (!open.empty()) {
            const auto [x, y, z] = open.back();
            open.pop_back();
            if (inside.at(0, x, y, z) == 0 || sampleAt(*joined, x, y, z) == 1)
                continue;
            setSample(*joined, 1, x, y, z);
            for (long dz = -reachZ; dz <= reachZ; ++dz)
                for (long i = 0; i < 9; ++i)
                    open.push_back({x + i % 3 - 1, y + i / 3 - 1, z + dz});
        }
    });
    return joined;
}

}  // namespace orvik::test
