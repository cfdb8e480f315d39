#pragma once

// The corner response of one run, from the components of a structure tensor. Compiled once per instruction set.

#include "frame/attr/Records.h"
#include "frame/processor/AlgorithmFunctionSelector.h"
#include "frame/simd/Simd.h"

#include <type_traits>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd { namespace {

typedef Lanes<float>::type Floats;

inline Floats magnitude(Floats v)
{
    typedef Lanes<int>::type Bits;
    return reinterpret_cast<Floats>(reinterpret_cast<Bits>(v) & (Bits{} + 0x7fffffff));
}

/// The low bits of the number without its fraction; of what 64 bits do not hold, and of NaN, 0.
template<class Sample>
void wrapBlock(Sample* to, const float* from)
{
    const float limit32 = 2147483648.0f, limit64 = 9223372036854775808.0f;
    auto small = Lanes<float>::type{} == 0.0f;
    for (unsigned long i = 0; i < kBlock; i += Lanes<float>::count) {
        const Floats v = load(from + i);
        small &= (v > -limit32) & (v < limit32);
    }
    if (anyOf(~small)) {
        for (unsigned long i = 0; i < kBlock; ++i)
            to[i] = from[i] >= -limit64 && from[i] < limit64 ? static_cast<Sample>(static_cast<long>(from[i])) : Sample(0);
        return;
    }
    for (unsigned long i = 0; i < kBlock; ++i)
        to[i] = static_cast<Sample>(static_cast<int>(from[i]));
}

/// Block by block; the result may lie where a component does.
template<class Sample, class Response, unsigned long N>
void respond(const Response& response, const Sample* const (&tensor)[N], Sample* out, unsigned long n)
{
    constexpr unsigned long cacheLine = 64 / sizeof(Sample), ahead = 1024 / sizeof(Sample);
    alignas(64) float room[N][kBlock], responses[kBlock];
    for (unsigned long i = 0; i < n; i += kBlock) {
        const float* parts[N];
        for (unsigned long c = 0; c < N; ++c) {
            // The response costs what its memory costs, and the machine alone asks for it too late at each page.
            for (unsigned long j = 0; j < kBlock; j += cacheLine)
                __builtin_prefetch(tensor[c] + i + j + ahead);
            parts[c] = widened(tensor[c] + i, room[c]);
        }
        float* const to = std::is_same<Sample, float>::value ? reinterpret_cast<float*>(out + i) : responses;
        for (unsigned long j = 0; j < kBlock; j += Lanes<float>::count) {
            Floats vectors[N];
            for (unsigned long c = 0; c < N; ++c)
                vectors[c] = load(parts[c] + j);
            store(to + j, withOneNan(response(vectors)));
        }
        if constexpr (!std::is_same<Sample, float>::value)
            wrapBlock(out + i, responses);
    }
}

/// What the kernel works with on one strip: parsers of `N` components and of the result, and which of two measures is taken.
template<class Harris, class MinEigenvalue, class In, class Out, unsigned long N>
struct CornerStrip
{
    const In* tensor[N];
    const Out* out;
    bool isHarris;
    Harris harris;

    void respond(const processor::ProcessingInfo& info) const
    {
        decltype(tensor[0]->accessBuffer()) runs[N];
        for (unsigned long i = 0; i < N; ++i)
            runs[i] = tensor[i]->accessBuffer();
        if (isHarris)
            fd::respond(harris, runs, out->accessBuffer(), info.nbAlignedData);
        else
            fd::respond(MinEigenvalue(), runs, out->accessBuffer(), info.nbAlignedData);
    }
};

template<class Harris, class MinEigenvalue, class Out, class In, class... Ins>
CornerStrip<Harris, MinEigenvalue, In, Out, 1 + sizeof...(Ins)>
cornerStrip(const attr::CornerDetectionParams& params, const Out* out, const In* first, const Ins*... others)
{
    typedef attr::CornerDetectionParams Params;
    return {{first, others...},
            out,
            params.get<Params::CornerResponseType>() == attr::eCRT_Harris,
            Harris{params.get<Params::HarrisK>()}};
}

}  // namespace
}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"
