#pragma once

#include "frame/imaproc/ImageSplits.h"
#include "frame/processor/BaseProcessingAlgorithm.h"
#include "frame/processor/Dispatcher.h"

// A stage reads as the list of what a child gets:
//
//     return dispatch<CannyEdges2dImgLvl3>(priority, provider, strips<OutYStrip2d>(value<OutBinImg>()),
//                                          same<InCannyThresholds>(value<InCannyThresholds>()), ...);

namespace orvik { namespace imaproc {

/// Static for whole planes and volumes, dynamic for the strips of a Level 3 child.
template<class P>
using DispatcherOf = typename std::conditional<std::is_base_of<processor::BaseProcessingAlgorithm, P>::value,
                                               processor::DynamicProcessorDispatcher<P>,
                                               processor::StaticProcessorDispatcher<P> >::type;

template<class P, class... Parts>
processor::RetrievalResult dispatch(const core::BasePriority& priority, processor::ProviderPtr& provider,
                                    const Parts&... parts)
{
    const boost::shared_ptr<DispatcherOf<P> > dispatcher = boost::make_shared<DispatcherOf<P> >();
    std::vector<boost::shared_ptr<typename DispatcherOf<P>::Split> > splits;
    BoolResult result = success();
    (void(result = result.getValue() ? parts.template addSplit<P>(splits) : result), ...);
    if (result.getValue())
        result = dispatcher->initBase(priority, splits);
    return processor::provided(result, dispatcher, provider);
}

template<class A>
struct SameForAll
{
    typename A::StorageType value;

    template<class P>
    BoolResult addSplit(std::vector<boost::shared_ptr<processor::BaseStaticSplit> >& splits) const
    {
        splits.push_back(boost::make_shared<processor::StaticNoSplit<P, A> >(value));
        return success();
    }
    template<class P>
    BoolResult addSplit(std::vector<boost::shared_ptr<processor::BaseDynamicSplit> >& splits) const
    {
        splits.push_back(boost::make_shared<processor::DynamicNoSplit<P, A> >(value));
        return success();
    }
};

/// The same value for every child.
template<class A>
SameForAll<A> same(const typename A::StorageType& value)
{
    return {value};
}

template<class A>
struct SameForAllIfSet
{
    const A& attribute;

    template<class P, class Splits>
    BoolResult addSplit(Splits& splits) const
    {
        return attribute.hasValue() ? SameForAll<A>{attribute.getStorage()}.template addSplit<P>(splits) : success();
    }
};

/// The same value for every child where there is one: an attribute that is unset stays so.
template<class A>
SameForAllIfSet<A> sameIfSet(const boost::shared_ptr<A>& attribute)
{
    return {*attribute};
}

template<class A>
struct SubImages
{
    typename A::StorageType image;
    eSubImageSplitType splitType;
    eVolumeParsingType volume;

    template<class P>
    BoolResult addSplit(std::vector<boost::shared_ptr<processor::BaseStaticSplit> >& splits) const
    {
        const boost::shared_ptr<SubImageSplit<P, A> > split = boost::make_shared<SubImageSplit<P, A> >();
        splits.push_back(split);
        return split->initBase(splitType, volume, eCPT_Channels, eTPT_Times, image);
    }
};

/// One plane per child, for each (z, c, t).
template<class A>
SubImages<A> eachPlane(const typename A::StorageType& image)
{
    return {image, eSIST_Plane, eVPT_Slices};
}

/// One volume per child, for each (c, t).
template<class A>
SubImages<A> eachVolume(const typename A::StorageType& image)
{
    return {image, eSIST_Volume, eVPT_Whole};
}

template<class A, class Coll>
struct PlanEntries
{
    boost::shared_ptr<Coll> coll;
    unsigned long sizeZ, sizeC, sizeT;

    template<class P>
    BoolResult addSplit(std::vector<boost::shared_ptr<processor::BaseStaticSplit> >& splits) const
    {
        const boost::shared_ptr<PlanIndexedSplit<P, Coll, A> > split =
            boost::make_shared<PlanIndexedSplit<P, Coll, A> >();
        splits.push_back(split);
        return split->initBase(coll, sizeZ, sizeC, sizeT, false);
    }
};

/// The collection's entry for each plane of `image`.
template<class A, class Coll>
PlanEntries<A, Coll> entryOfEachPlane(const boost::shared_ptr<Coll>& coll, const image::BaseImage& image)
{
    return {coll, image.getSizeZ(), image.getSizeC(), image.getSizeT()};
}

/// The collection's entry for each volume of `image`.
template<class A, class Coll>
PlanEntries<A, Coll> entryOfEachVolume(const boost::shared_ptr<Coll>& coll, const image::BaseImage& image)
{
    return {coll, 1, image.getSizeC(), image.getSizeT()};
}

template<class A, class Key>
struct ResultsOf
{
    typedef typename A::Entry Result;
    boost::shared_ptr<std::map<Key, boost::shared_ptr<Result> > > results;

    template<class P>
    BoolResult addSplit(std::vector<boost::shared_ptr<processor::BaseStaticSplit> >& splits) const
    {
        const auto split = boost::make_shared<processor::StaticResultSplit<P, A> >();
        split->init(results, boost::make_shared<Result>());
        splits.push_back(split);
        return success();
    }
    template<class P>
    BoolResult addSplit(std::vector<boost::shared_ptr<processor::BaseDynamicSplit> >& splits) const
    {
        const auto split = boost::make_shared<processor::DynamicByCreationResultSplit<P, A> >();
        split->init(results);
        splits.push_back(split);
        return success();
    }
};

/// A result of its own for each child, kept in the parent's map: by index for planes, by range for strips.
template<class A, class Key>
ResultsOf<A, Key> resultOfEach(const boost::shared_ptr<std::map<Key, boost::shared_ptr<typename A::Entry> > >& results)
{
    return {results};
}

/// Which split cuts the strips of a kind of attribute.
template<class StripBase>
struct StripSplitOf;
template<>
struct StripSplitOf<BaseInputYStrip2dAttribute>
{
    template<class P, class A>
    using Split = ImageYStrip2dSplit<P, const image::BaseImage, A>;
};
template<>
struct StripSplitOf<BaseOutputYStrip2dAttribute>
{
    template<class P, class A>
    using Split = ImageYStrip2dSplit<P, image::BaseImage, A>;
};
template<>
struct StripSplitOf<BaseInputZStrip3dAttribute>
{
    template<class P, class A>
    using Split = ImageZStrip3dSplit<P, const image::BaseImage, A>;
};
template<>
struct StripSplitOf<BaseOutputZStrip3dAttribute>
{
    template<class P, class A>
    using Split = ImageZStrip3dSplit<P, image::BaseImage, A>;
};
template<>
struct StripSplitOf<BaseInputYStrip2dWithKernelAttribute>
{
    template<class P, class A>
    using Split = ImageYStrip2dWithKernelSplit<P, const image::BaseImage, A>;
};
template<>
struct StripSplitOf<BaseInputZStrip3dWithKernelAttribute>
{
    template<class P, class A>
    using Split = ImageZStrip3dWithKernelSplit<P, const image::BaseImage, A>;
};

template<class A>
struct StripsOf
{
    boost::shared_ptr<typename A::StorageType::element_type::StripImage> image;
    image::StripMargins margins;

    template<class P>
    BoolResult addSplit(std::vector<boost::shared_ptr<processor::BaseDynamicSplit> >& splits) const
    {
        typedef typename StripSplitOf<typename A::StripBase>::template Split<P, A> Split;
        const boost::shared_ptr<Split> split = boost::make_shared<Split>();
        splits.push_back(split);
        return init(*split, image::eSAT_View, image::eSPD_Forward);
    }

private:
    template<class I, class S>
    BoolResult init(BaseImageYStrip2dSplit<I, S>& split, image::eStripAllocationType allocation,
                    image::eStripParsingDirection direction) const
    {
        return split.initBase(image, allocation, direction, direction);
    }
    template<class I, class S>
    BoolResult init(BaseImageZStrip3dSplit<I, S>& split, image::eStripAllocationType allocation,
                    image::eStripParsingDirection direction) const
    {
        return split.initBase(image, allocation, direction);
    }
    template<class I, class S>
    BoolResult init(BaseImageYStrip2dWithKernelSplit<I, S>& split, image::eStripAllocationType allocation,
                    image::eStripParsingDirection direction) const
    {
        return split.initBase(image, margins.startX, margins.endX, margins.startY, margins.endY, allocation, direction,
                              direction);
    }
    template<class I, class S>
    BoolResult init(BaseImageZStrip3dWithKernelSplit<I, S>& split, image::eStripAllocationType allocation,
                    image::eStripParsingDirection direction) const
    {
        return split.initBase(image, margins.startX, margins.endX, margins.startY, margins.endY, margins.startZ,
                              margins.endZ, allocation, direction);
    }
};

/// Lines of a plane, or slices of a volume, as the attribute says.
template<class A>
StripsOf<A> strips(const boost::shared_ptr<typename A::StorageType::element_type::StripImage>& image)
{
    return {image, image::StripMargins()};
}

/// Strips whose children also read neighbours of their lines.
template<class A>
StripsOf<A> stripsWithMargins(const boost::shared_ptr<const image::BaseImage>& image, const image::StripMargins& margins)
{
    return {image, margins};
}

/// The same with that many samples on both sides.
template<class A>
StripsOf<A> stripsWithMargins(const boost::shared_ptr<const image::BaseImage>& image, unsigned long marginX,
                              unsigned long marginY, unsigned long marginZ = 0)
{
    return stripsWithMargins<A>(image, {marginX, marginX, marginY, marginY, marginZ, marginZ});
}

template<class A>
struct StripsInPlaceOf
{
    boost::shared_ptr<const image::BaseImage> image;
    image::StripMargins margins;

    template<class P>
    BoolResult addSplit(std::vector<boost::shared_ptr<processor::BaseDynamicSplit> >& splits) const
    {
        typedef ImageYStrip2dInPlaceSplit<P, const image::BaseImage, A> Split;
        const boost::shared_ptr<Split> split = boost::make_shared<Split>();
        splits.push_back(split);
        return split->initBase(image, margins.startX, margins.endX, margins.startY, margins.endY, image::eSAT_View,
                               image::eSPD_Forward, image::eSPD_Forward);
    }
};

/// Strips whose children read neighbours of their lines though an output may be the image itself.
template<class A>
StripsInPlaceOf<A> stripsInPlace(const boost::shared_ptr<const image::BaseImage>& image,
                                 const image::StripMargins& margins)
{
    return {image, margins};
}

template<class Part>
struct PartIfImage
{
    Part part;

    template<class P, class Splits>
    BoolResult addSplit(Splits& splits) const
    {
        return part.image ? part.template addSplit<P>(splits) : success();
    }
};

/// Sub-images or strips of an image that may be unset: the children's attribute then stays unset, too.
template<class Part>
PartIfImage<Part> ifSet(const Part& part)
{
    return {part};
}

}}  // namespace orvik::imaproc
