#pragma once

#include "frame/image/BufferType.h"

namespace orvik { namespace image {

enum eBorderType : unsigned int
{
    eBT_Value = 0,
    eBT_Min = 1,
    eBT_Max = 2,
    eBT_Nearest = 3
};

/// What a kernel reads beyond the image: a constant, the lowest or highest finite value of the sample type, or the
/// sample of the image that lies nearest. A constant outside the range of an integer type reads as the nearest value
/// within.
class BorderPolicy
{
public:
    BorderPolicy(eBorderType type = eBT_Value, double value = 0.0) : m_type(type), m_value(value) {}
    eBorderType getType() const { return m_type; }
    double getValue() const { return m_value; }

private:
    eBorderType m_type;
    double m_value;
};

class Border2dPolicy : public BorderPolicy
{
    using BorderPolicy::BorderPolicy;
};

class Border3dPolicy : public BorderPolicy
{
    using BorderPolicy::BorderPolicy;
};

// clang-format off
inline Border2dPolicy valuedBorder2d(double value) { return Border2dPolicy(eBT_Value, value); }
inline Border2dPolicy valuedMinBorder2d() { return Border2dPolicy(eBT_Min); }
inline Border2dPolicy valuedMaxBorder2d() { return Border2dPolicy(eBT_Max); }
inline Border2dPolicy nearestBorder2d() { return Border2dPolicy(eBT_Nearest); }
inline Border3dPolicy valuedBorder3d(double value) { return Border3dPolicy(eBT_Value, value); }
inline Border3dPolicy valuedMinBorder3d() { return Border3dPolicy(eBT_Min); }
inline Border3dPolicy valuedMaxBorder3d() { return Border3dPolicy(eBT_Max); }
inline Border3dPolicy nearestBorder3d() { return Border3dPolicy(eBT_Nearest); }
// clang-format on

/// Sets `n` samples of that type to what the border reads as; without effect for the nearest sample, which only the
/// image's lines can tell.
ORVIK_API void fillBorder(const BorderPolicy& policy, eDataType type, void* samples, unsigned long n);
/// In a line of `n` samples of that type, `sizeX` of which are the image's, from `first` on, sets those before to the
/// first of them and those after to the last.
ORVIK_API void repeatEdges(eDataType type, void* samples, unsigned long first, unsigned long sizeX, unsigned long n);

}}  // namespace orvik::image
