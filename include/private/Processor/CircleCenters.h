#pragma once

// Centres of circles and spheres, and what is made of them.

#include "frame/attr/Records.h"

#include <boost/shared_ptr.hpp>

#include <cmath>

namespace orvik { namespace imaproc { namespace fd {

/// The pixel that a coordinate lies in: the nearest one, halves up. False for what no pixel has, and for no number. Only the
/// low 32 bits count where `is32Bits`.
inline bool pixelOf(double coordinate, bool is32Bits, unsigned long& pixel)
{
    const double rounded = std::trunc(coordinate + 0.5), limit = 9223372036854775808.0;
    if (!(rounded > -limit && rounded < limit) || (rounded < 0 && !is32Bits))
        return false;
    pixel = static_cast<unsigned long>(static_cast<long>(rounded));
    if (is32Bits)
        pixel &= 0xffffffffu;
    return true;
}

/// Whether a centre lies on the run of `nbData` pixels from `firstColumn` on of line `row`, and in which of them.
inline bool isOnRun(const attr::Pixel2d& center, unsigned long row, unsigned long firstColumn, unsigned long nbData,
                    bool is32Bits, unsigned long& column)
{
    unsigned long x, y;
    if (!pixelOf(center.get<attr::Pixel2d::Y>(), is32Bits, y) || y != row
        || !pixelOf(center.get<attr::Pixel2d::X>(), is32Bits, x) || x < firstColumn || x - firstColumn >= nbData)
        return false;
    column = x - firstColumn;
    return true;
}

/// The circle of a centre.
inline boost::shared_ptr<attr::HoughCircle2dPpties> circleAt(const attr::Pixel2d& center, double radius)
{
    return attr::HoughCircle2dPpties::createNode(center.get<attr::Pixel2d::X>(), center.get<attr::Pixel2d::Y>(), radius,
                                                 center.get<attr::Pixel2d::Value>());
}

/// The sphere of a centre.
inline boost::shared_ptr<attr::HoughSphere3dPpties> sphereAt(const attr::Voxel3d& center, double radius)
{
    return attr::HoughSphere3dPpties::createNode(center.get<attr::Voxel3d::X>(), center.get<attr::Voxel3d::Y>(),
                                                 center.get<attr::Voxel3d::Z>(), radius, center.get<attr::Voxel3d::Value>());
}

}}}  // namespace orvik::imaproc::fd
