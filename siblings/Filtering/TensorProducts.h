#pragma once

// The products of gradients and the passes of their smoothing along y and x. Compiled once per instruction set.

#include "siblings/Filtering/SeparableFilter.h"
#include "siblings/Filtering/TensorBuffers.h"

#include "frame/imaproc/StripParsers.h"
#include "frame/simd/Simd.h"

#include <type_traits>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace filter { namespace {

/// What products of gradients of a type are formed and summed in.
template<class Sample>
using SumOf = typename std::conditional<std::is_same<Sample, float>::value, float, double>::type;

/// What the kernel works with on one strip: gradients of `N` axes, and those of their products that are wanted.
template<class In, class Sum, unsigned long N>
class TensorStrip
{
public:
    template<class... Gradients>
    explicit TensorStrip(const Gradients*... gradients) : m_gradients{gradients...}
    {
    }
    /// The product of two gradients; null is not wanted.
    void add(unsigned long a, unsigned long b, const PlainStripParser* out, image::eImageBufferType type)
    {
        if (out)
            m_products[m_nbProducts++] = {a, b, out, lineFilterFor<false, Sum>(type)};
    }
    const In& getGradient(unsigned long i) const { return *m_gradients[i]; }

    /// Line `y` of `sizeY` of a plane or slice. Lines of a product that is a gradient are overwritten here: those of the kernel
    /// were copied before. `row(gradient, line)` is one of them.
    template<class Row>
    void smooth(TensorBuffers& buffers, unsigned long y, unsigned long sizeY, const processor::ProcessingInfo& info,
                const Row& row) const
    {
        const TensorWeights<Sum>& weights = buffers.weights<Sum>();
        Combination combinations[TensorBuffers::s_maxNbProducts];
        for (unsigned long p = 0; p < m_nbProducts; ++p)
            combinations[p] = {&buffers.combined[p], nullptr};
        alignas(64) Sum rooms[N][kBlock];
        combineLines(
            y, sizeY, info, weights.y, weights.x.halfSize(), static_cast<Sum*>(buffers.tile.getDataPtr()),
            [&](unsigned long line, unsigned long x, Sum* to, unsigned long distance) {
                const Sum* gradients[N];
                for (unsigned long i = 0; i < N; ++i)
                    gradients[i] = widened(row(i, line) + x, rooms[i]);
                for (unsigned long p = 0; p < m_nbProducts; ++p) {
                    const Sum* const a = gradients[m_products[p].a];
                    const Sum* const b = gradients[m_products[p].b];
                    for (unsigned long i = 0; i < kBlock; i += Lanes<Sum>::count)
                        store(to + p * distance + i, load(a + i) * load(b + i));
                }
            },
            combinations, m_nbProducts);
        for (unsigned long p = 0; p < m_nbProducts; ++p)
            m_products[p].write(buffers.combined[p].template get<Sum>(y % g_nbLinesAtOnce), 1, info.nbAlignedData, weights.x,
                                m_products[p].out->accessSamples());
    }

private:
    struct Product
    {
        unsigned long a, b;  // of the gradients
        const PlainStripParser* out;
        LineFilter<Sum> write;
    };

    const In* m_gradients[N];
    Product m_products[TensorBuffers::s_maxNbProducts];
    unsigned long m_nbProducts = 0;
};

}  // namespace
}}}  // namespace orvik::imaproc::filter

#include "frame/simd/CloseSet.h"
