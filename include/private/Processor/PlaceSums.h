#pragma once

// What the pixels of a line gather from the places about them: those of rings in planes, of shells in volumes. Compiled once
// per instruction set.

#include "Processor/GradientCone.h"

#include "frame/simd/Simd.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <type_traits>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd { namespace {

typedef Lanes<float>::type PlaceVector;

inline PlaceVector all(float value)
{
    return PlaceVector{} + value;
}

/// What of a gradient's share along the radius, `d`, counts. The two accumulators part where it is no number: that of real
/// values takes nothing, that of complex ones all.
template<unsigned int NbWeights, class Vector>
Vector keptOf(Vector d, Vector cosine)
{
    if constexpr (NbWeights == 1)
        return d > cosine ? d : Vector{};
    else
        return d <= cosine ? Vector{} : d;
}

/// A gradient's share along the radius, summed axis by axis.
template<unsigned int Dims, class Vector, class Unit, class Radius>
Vector shareAlong(const Unit& unit, const Radius& radius)
{
    Vector d = unit(0) * radius(0);
    for (unsigned int axis = 1; axis < Dims; ++axis)
        d += unit(axis) * radius(axis);
    return d;
}

/// The sums of up to 256 pixels, which stay in the nearest cache with the gradients of a row.
template<class Element, bool IsBoth>
class PlaceSums
{
public:
    static constexpr unsigned int s_dims = std::extent<decltype(Element::units)>::value;
    static constexpr unsigned int s_nbWeights = std::extent<decltype(Element::weights)>::value;
    static constexpr unsigned long s_size = 256;

    /// For `n` pixels from `begin` of the line on. Directions along the axes and magnitudes lie `pitch` apart.
    PlaceSums(const GradientCone& cone, unsigned long pitch, unsigned long begin, unsigned long n)
        : m_sign(cone.isInward ? -1.0f : 1.0f), m_cosine(cone.cosine), m_pitch(pitch), m_begin(begin), m_n(n)
    {
        std::memset(m_sums, 0, sizeof m_sums);
    }
    PlaceSums(const PlaceSums&) = delete;
    PlaceSums& operator=(const PlaceSums&) = delete;

    /// Adds what `n` elements, in this order, give. `placeOf(i)` points to the directions along the first axis of the
    /// gradients that element `i` looks at.
    template<class PlaceOf>
    void add(const Element* first, std::size_t n, const PlaceOf& placeOf)
    {
        std::size_t i = 0;
        for (; i + 4 <= n; i += 4)
            addSome<4>(first + i, [&](std::size_t u) { return placeOf(i + u); });
        for (; i < n; ++i)
            addSome<1>(first + i, [&](std::size_t u) { return placeOf(i + u); });
    }
    void handOver(float* const (&out)[s_nbWeights]) const
    {
        for (unsigned int i = 0; i < s_nbWeights; ++i)
            for (unsigned long x = 0; x < m_n; x += Lanes<float>::count)
                store(out[i] + m_begin + x, withOneNan(load(m_sums[i] + x)));
    }

private:
    template<int U, class PlaceOf>
    void addSome(const Element* first, const PlaceOf& placeOf)
    {
        PlaceVector units[U][s_dims], weights[U][s_nbWeights];
        const float* place[U];
        for (int u = 0; u < U; ++u) {
            for (unsigned int axis = 0; axis < s_dims; ++axis)
                units[u][axis] = all(m_sign * first[u].units[axis]);
            for (unsigned int i = 0; i < s_nbWeights; ++i)
                weights[u][i] = all(first[u].weights[i]);
            place[u] = placeOf(static_cast<std::size_t>(u)) + m_begin;
        }
        const PlaceVector least = all(m_cosine);
        for (unsigned long x = 0; x < m_n; x += Lanes<float>::count) {
            PlaceVector sum[s_nbWeights];
            for (unsigned int i = 0; i < s_nbWeights; ++i)
                sum[i] = load(m_sums[i] + x);
            for (int u = 0; u < U; ++u) {
                PlaceVector d =
                    shareAlong<s_dims, PlaceVector>([&](unsigned int axis) { return load(place[u] + axis * m_pitch + x); },
                                                    [&](unsigned int axis) { return units[u][axis]; });
                if constexpr (IsBoth)
                    d = d < PlaceVector{} ? -d : d;
                const PlaceVector share = keptOf<s_nbWeights>(d, least) * load(place[u] + s_dims * m_pitch + x);
                for (unsigned int i = 0; i < s_nbWeights; ++i)
                    sum[i] += share * weights[u][i];
            }
            for (unsigned int i = 0; i < s_nbWeights; ++i)
                store(m_sums[i] + x, sum[i]);
        }
    }

    const float m_sign, m_cosine;
    const unsigned long m_pitch, m_begin, m_n;
    alignas(64) float m_sums[s_nbWeights][s_size];
};

/// One line of an accumulator of `Element`, a part of it at a time: `addAll(sums)` adds all elements to a PlaceSums, or
/// returns false to end early.
template<class Element, bool IsBoth, class AddAll, unsigned int NbWeights>
bool gatherLineOf(const GradientCone& cone, unsigned long pitch, unsigned long n, const AddAll& addAll,
                  float* const (&out)[NbWeights])
{
    for (unsigned long x = 0; x < n; x += PlaceSums<Element, IsBoth>::s_size) {
        PlaceSums<Element, IsBoth> sums(cone, pitch, x, std::min(+PlaceSums<Element, IsBoth>::s_size, n - x));
        if (!addAll(sums))
            return false;
        sums.handOver(out);
    }
    return true;
}
template<class Element, class AddAll, unsigned int NbWeights>
bool gatherLine(const GradientCone& cone, unsigned long pitch, unsigned long n, const AddAll& addAll,
                float* const (&out)[NbWeights])
{
    return cone.isBoth ? gatherLineOf<Element, true>(cone, pitch, n, addAll, out)
                       : gatherLineOf<Element, false>(cone, pitch, n, addAll, out);
}

}  // namespace
}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"
