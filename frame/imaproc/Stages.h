#pragma once

#include "frame/imaproc/ImageSplits.h"
#include "frame/processor/BaseProcessingAlgorithm.h"
#include "frame/processor/Dispatcher.h"

// A stage reads as the list of what its children, or its one sub-processor, get:
//
//     return dispatch<CannyEdges2dImgLvl3>(priority, provider, strips<OutYStrip2d>(value<OutBinImg>()),
//                                          same(attribute<InCannyThresholds>()), ...);
//     return delegate<EraseImgLvl2>(priority, provider, same<OutSubImg2d>(value<OutImg>()));

namespace orvik { namespace imaproc {

/// Static for whole planes and volumes, dynamic for the strips of a Level 3 child.
template<class P>
using DispatcherOf =
    typename std::conditional<std::is_base_of<processor::BaseProcessingAlgorithm, P>::value,
                              processor::DynamicProcessorDispatcher<P>, processor::StaticProcessorDispatcher<P>>::type;

/// A stage of one child of class `P` per plane, volume or strip; `parts` tell what each gets, and into how many there are.
template<class P, class... Parts>
processor::RetrievalResult dispatch(const core::BasePriority& priority, processor::ProviderPtr& provider,
                                    const Parts&... parts)
{
    const ArenaScope together;
    const boost::shared_ptr<DispatcherOf<P>> dispatcher = makeTogether<DispatcherOf<P>>();
    std::vector<boost::shared_ptr<typename DispatcherOf<P>::Split>> splits;
    splits.reserve(sizeof...(Parts));
    BoolResult result = success();
    (void(result = result ? parts.template addSplit<P>(splits) : result), ...);
    if (result)
        result = dispatcher->initBase(priority, std::move(splits));
    return processor::provided(result, dispatcher, provider);
}

/// A stage of one sub-processor of class `P`, which `parts` prepare.
template<class P, class... Parts>
processor::RetrievalResult delegate(const core::BasePriority& priority, processor::ProviderPtr& provider,
                                    const Parts&... parts)
{
    const boost::shared_ptr<P> child = processor::createInitialised<P>();
    (void(parts.give(child)), ...);
    return processor::provideProcessor(child, priority, provider);
}

template<class A>
struct SameForAll
{
    typename A::StorageType value;

    template<class P>
    BoolResult addSplit(std::vector<boost::shared_ptr<processor::BaseStaticSplit>>& splits) const
    {
        splits.push_back(makeTogether<processor::StaticNoSplit<P, A>>(value));
        return success();
    }
    template<class P>
    BoolResult addSplit(std::vector<boost::shared_ptr<processor::BaseDynamicSplit>>& splits) const
    {
        splits.push_back(makeTogether<processor::DynamicNoSplit<P, A>>(value));
        return success();
    }
    template<class P>
    void give(const boost::shared_ptr<P>& child) const
    {
        child->template set<A>(value);
    }
};

/// The same value for every child.
template<class A>
SameForAll<A> same(const typename A::StorageType& value)
{
    return {value};
}

/// The value of the parent's attribute for that of the same name of every child; of an optional one that is unset, its
/// default.
template<class A>
SameForAll<A> same(const boost::shared_ptr<A>& attribute)
{
    return {attribute->getStorage()};
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
    template<class P>
    void give(const boost::shared_ptr<P>& child) const
    {
        if (attribute.hasValue())
            child->template set<A>(attribute.getStorage());
    }
};

/// The same value for every child where there is one: an attribute that is unset stays so.
template<class A>
SameForAllIfSet<A> sameIfSet(const boost::shared_ptr<A>& attribute)
{
    return {*attribute};
}

template<class P>
struct KeptIn
{
    boost::shared_ptr<P>& place;

    void give(const boost::shared_ptr<P>& child) const { place = child; }
};

/// Of a single sub-processor: kept by its parent, which asks it for results later.
template<class P>
KeptIn<P> keptIn(boost::shared_ptr<P>& place)
{
    return {place};
}

template<class A>
struct SubImages
{
    typename A::StorageType image;
    eSubImageSplitType splitType;
    eVolumeParsingType volume;

    template<class P>
    BoolResult addSplit(std::vector<boost::shared_ptr<processor::BaseStaticSplit>>& splits) const
    {
        const boost::shared_ptr<SubImageSplit<P, A>> split = makeTogether<SubImageSplit<P, A>>();
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

/// The same of the parent's attribute of that name.
template<class A>
SubImages<A> eachPlane(const boost::shared_ptr<A>& attribute)
{
    return {attribute->getStorage(), eSIST_Plane, eVPT_Slices};
}

/// One volume per child, for each (c, t).
template<class A>
SubImages<A> eachVolume(const typename A::StorageType& image)
{
    return {image, eSIST_Volume, eVPT_Whole};
}

/// The same of the parent's attribute of that name.
template<class A>
SubImages<A> eachVolume(const boost::shared_ptr<A>& attribute)
{
    return {attribute->getStorage(), eSIST_Volume, eVPT_Whole};
}

template<class A, class Coll>
struct PlanEntries
{
    boost::shared_ptr<Coll> coll;
    unsigned long sizeZ, sizeC, sizeT;

    template<class P>
    BoolResult addSplit(std::vector<boost::shared_ptr<processor::BaseStaticSplit>>& splits) const
    {
        const boost::shared_ptr<PlanIndexedSplit<P, Coll, A>> split = makeTogether<PlanIndexedSplit<P, Coll, A>>();
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

/// The planes of an image that a collection has lists for: all of them, or the first one, where there is a single list. So
/// functions of one plane treat the first one of an image of several.
template<class Image>
boost::shared_ptr<Image> planesOf(const BasePlanIndexedColl& coll, const boost::shared_ptr<Image>& image)
{
    return image && coll.getNbPlans() == 1 ? image->getView(PlanIndex(), 1) : image;
}

/// The same for volumes.
template<class Image>
boost::shared_ptr<Image> volumesOf(const BasePlanIndexedColl& coll, const boost::shared_ptr<Image>& image)
{
    return image && coll.getNbPlans() == 1 ? image->getView(PlanIndex(), image->getSizeZ()) : image;
}

template<class A, class Key>
struct ResultsOf
{
    typedef typename A::Entry Result;
    boost::shared_ptr<std::map<Key, boost::shared_ptr<Result>>> results;

    template<class P>
    BoolResult addSplit(std::vector<boost::shared_ptr<processor::BaseStaticSplit>>& splits) const
    {
        const auto split = makeTogether<processor::StaticResultSplit<P, A>>();
        split->init(results, boost::make_shared<Result>());
        splits.push_back(split);
        return success();
    }
    template<class P>
    BoolResult addSplit(std::vector<boost::shared_ptr<processor::BaseDynamicSplit>>& splits) const
    {
        const auto split = makeTogether<processor::DynamicByCreationResultSplit<P, A>>();
        split->init(results);
        splits.push_back(split);
        return success();
    }
};

/// A result of its own for each child, kept in the parent's map: by index for planes, by range for strips.
template<class A, class Key>
ResultsOf<A, Key> resultOfEach(const boost::shared_ptr<std::map<Key, boost::shared_ptr<typename A::Entry>>>& results)
{
    return {results};
}

template<class A, class Key>
struct RecordsOf
{
    typedef typename A::Entry List;
    boost::shared_ptr<const List> records;
    const processor::RecordsOfStrips<List>& ofStrips;

    template<class P>
    BoolResult addSplit(std::vector<boost::shared_ptr<processor::BaseDynamicSplit>>& splits) const
    {
        const auto split = makeTogether<processor::DynamicByRangeDataSplit<P, A, typename List::Coll, Key>>();
        split->init(records, ofStrips.lists, ofStrips.indices);
        splits.push_back(split);
        return success();
    }
};

/// For each strip those records of a list whose leaf `Key` lies in it.
template<class A, class Key>
RecordsOf<A, Key> recordsOfEach(const boost::shared_ptr<const typename A::Entry>& records,
                                const processor::RecordsOfStrips<typename A::Entry>& ofStrips)
{
    return {records, ofStrips};
}

template<class P, class T>
struct PassedOn
{
    void (P::*set)(const T&);
    T value;

    template<class Child>
    BoolResult addSplit(std::vector<boost::shared_ptr<processor::BaseDynamicSplit>>& splits) const
    {
        splits.push_back(makeTogether<processor::DynamicSetterSplit<Child, T>>(set, value));
        return success();
    }
};

/// What is no attribute, for every child, by a function of its class.
template<class P, class T>
PassedOn<P, T> passedOn(void (P::*set)(const T&), const T& value)
{
    return {set, value};
}

template<class A>
struct StripsOf
{
    typedef typename A::Strip::StripImage StripImage;

    boost::shared_ptr<StripImage> image;
    image::StripMargins margins;
    bool inPlace = false;

    template<class P>
    BoolResult addSplit(std::vector<boost::shared_ptr<processor::BaseDynamicSplit>>& splits) const
    {
        const auto split = makeTogether<StripSplit<P, StripImage, A>>();
        splits.push_back(split);
        if (inPlace)
            split->setInPlace();
        return split->init(image, margins);
    }
};

/// Lines of a plane, or slices of a volume, as the attribute says.
template<class A>
StripsOf<A> strips(const boost::shared_ptr<typename A::Strip::StripImage>& image)
{
    return {image, image::StripMargins(), false};
}

/// Strips whose children also read neighbours of their lines.
template<class A>
StripsOf<A> stripsWithMargins(const boost::shared_ptr<const image::BaseImage>& image, const image::StripMargins& margins)
{
    return {image, margins, false};
}

/// The same with that many samples on both sides.
template<class A>
StripsOf<A> stripsWithMargins(const boost::shared_ptr<const image::BaseImage>& image, unsigned long marginX,
                              unsigned long marginY, unsigned long marginZ = 0)
{
    return stripsWithMargins<A>(image, {marginX, marginX, marginY, marginY, marginZ, marginZ});
}

/// Strips whose children read neighbours of their lines though an output may be the image itself.
template<class A>
StripsOf<A> stripsInPlace(const boost::shared_ptr<const image::BaseImage>& image, const image::StripMargins& margins)
{
    return {image, margins, true};
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
