#pragma once

#include "frame/imaproc/ImageAttributes.h"
#include "frame/processor/BaseRule.h"
#include "frame/processor/Processor.h"

#include <type_traits>

namespace orvik { namespace imaproc {

/// Two images of a processor that may be the very same samples, since each is read before the other one is written there, in
/// all planes.
template<class A, class B>
struct MayBeSame
{
};
template<class A, class B>
constexpr MayBeSame<A, B> mayBeSame{};

/// The attributes do not hold images that share samples.
ORVIK_API processor::RulePtr noInSitu(const WeakImage& a, const WeakImage& b);

namespace details {

/// Sets of pairs of images, by the places of these in a list: a bit for each pair.
typedef unsigned long PairSet;
constexpr unsigned int g_maxImagesApart = 11;
constexpr PairSet pairOf(unsigned int a, unsigned int b)
{
    return a < b ? PairSet(1) << (b * (b - 1) / 2 + a) : pairOf(b, a);
}

/// One rule for the `compared` pairs of some images, which are taken from the array; those of `same` may be the same samples.
ORVIK_API processor::RulePtr makeImagesApartRule(WeakImage* images, unsigned int nbImages, PairSet compared, PairSet same);

/// Those of a processor's attributes that are images.
template<class... A>
struct ImagesOf
{
    static constexpr unsigned int s_count = (0u + ... + std::is_base_of<BaseImageAttribute, A>::value);
    static_assert(s_count <= g_maxImagesApart, "pairs have a bit each");

    template<class T>
    static constexpr unsigned int place()
    {
        static_assert((std::is_same<T, A>::value || ...), "an image of the processor");
        unsigned int before = 0;
        bool isFound = false;
        (void((isFound = isFound || std::is_same<T, A>::value) || (before += std::is_base_of<BaseImageAttribute, A>::value)),
         ...);
        return before;
    }
    template<class T, class U>
    static constexpr PairSet pair(MayBeSame<T, U>)
    {
        return pairOf(place<T>(), place<U>());
    }
    /// The pairs of which at least one is written.
    static constexpr PairSet writtenPairs()
    {
        PairSet pairs = 0;
        unsigned int nb = 0;
        bool written[sizeof...(A)] = {};
        (void(std::is_base_of<BaseImageAttribute, A>::value && (written[nb++] = A::g_bOutput, true)), ...);
        for (unsigned int j = 1; j < nb; ++j)
            for (unsigned int i = 0; i < j; ++i)
                if (written[i] || written[j])
                    pairs |= pairOf(i, j);
        return pairs;
    }
};

}  // namespace details

/// No image of the processor that is written shares samples with another one of its images; but pairs that are named may be
/// the very same samples. Images that are only read may lie as they like. All attributes take part, later ones by themselves.
template<class D, class B, class... A, class... Pairs>
processor::RulePtr imagesApart(const processor::Processor<D, B, A...>& processor, const Pairs&... same)
{
    typedef details::ImagesOf<A...> Images;
    WeakImage images[Images::s_count];
    unsigned int nb = 0;
    processor.forEachAttribute([&](const auto& attribute) {
        if constexpr (std::is_convertible<decltype(attribute), WeakImage>::value)
            images[nb++] = attribute;
    });
    constexpr details::PairSet compared = Images::writtenPairs(), none = 0;
    return details::makeImagesApartRule(images, nb, compared, (none | ... | Images::pair(same)));
}

}}  // namespace orvik::imaproc
