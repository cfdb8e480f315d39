#pragma once

#include "frame/imaproc/ImageAttributes.h"
#include "frame/processor/Split.h"

namespace orvik { namespace imaproc {

enum eSubImageSplitType : unsigned int
{
    eSIST_Plane = 0,
    eSIST_Volume = 1
};

enum eVolumeParsingType : unsigned int
{
    eVPT_Slices = 0,
    eVPT_Whole = 1
};

enum eColorParsingType : unsigned int
{
    eCPT_Channels = 0
};

enum eTemporalParsingType : unsigned int
{
    eTPT_Times = 0
};

/// Cuts an image into planes, one per (z, c, t), or volumes, one per (c, t); z runs fastest, then c, then t.
/// `Image` is const or not.
template<class Image>
class ORVIK_API BaseSubImageSplit : public processor::BaseStaticSplit
{
public:
    ~BaseSubImageSplit() override;
    /// @throws ORVIKBaseProcessingException for a null image.
    BoolResult initBase(const eSubImageSplitType& splitType, const eVolumeParsingType& volume,
                        const eColorParsingType& color, const eTemporalParsingType& temporal,
                        const boost::shared_ptr<Image>& image);
    /// The view of one element; false for an index that is none.
    BoolResult getSubImage(unsigned long index, boost::shared_ptr<Image>& subImage) const;
    unsigned long getNbElements() const override { return m_nbElements; }
    processor::eSplitStaticType getSplitStaticType() const override { return processor::eSST_Data; }

private:
    boost::shared_ptr<Image> m_image;
    unsigned long m_nbElements = 0;
    unsigned long m_sizeZ = 1;  // elements along Z
};

template<class P, class A>
class SubImageSplit
    : public processor::TypedSplit<P, A, BaseSubImageSplit<typename A::StorageType::element_type> >
{
public:
    BoolResult processAttribute(processor::BaseProcessor& child, unsigned int index,
                                const core::BaseRequestOrigin&) override
    {
        typename A::StorageType subImage;
        const BoolResult result = this->getSubImage(index, subImage);
        return result.getValue() ? this->give(child, subImage) : result;
    }
};

/// The entry of a plan-indexed collection for each element of an image of these sizes. An empty collection is filled
/// with one empty entry per element first; a collection of one entry serves every element.
class ORVIK_API BasePlanIndexedSplit : public processor::BaseStaticSplit
{
public:
    ~BasePlanIndexedSplit() override;
    /// The last argument is kept for callers; entries are always shared with the collection, never copied.
    /// @throws ORVIKBaseProcessingException for a null collection.
    BoolResult initBase(const boost::shared_ptr<BasePlanIndexedColl>& coll, unsigned long sizeZ, unsigned long sizeC,
                        unsigned long sizeT, bool copy);
    unsigned long getNbElements() const override { return m_sizeZ * m_sizeC * m_sizeT; }
    processor::eSplitStaticType getSplitStaticType() const override { return processor::eSST_Data; }

protected:
    /// False with the plane when the collection has no entry for it.
    BoolResult getEntry(unsigned long index, boost::shared_ptr<BaseSerializationObject>& entry) const;

private:
    boost::shared_ptr<BasePlanIndexedColl> m_coll;
    unsigned long m_sizeZ = 0, m_sizeC = 0, m_sizeT = 0;
};

template<class P, class C, class A>
class PlanIndexedSplit : public processor::TypedSplit<P, A, BasePlanIndexedSplit>
{
public:
    BoolResult processAttribute(processor::BaseProcessor& child, unsigned int index,
                                const core::BaseRequestOrigin&) override
    {
        boost::shared_ptr<BaseSerializationObject> entry;
        const BoolResult result = this->getEntry(index, entry);
        return result.getValue() ? this->give(child, boost::static_pointer_cast<typename C::Entry>(entry)) : result;
    }
};

enum eImageStripSplitType : unsigned int
{
    eISST_YStrip2d = 1,
    eISST_YStrip2dWithKernel = 3,
    eISST_ZStrip3d = 8,
    eISST_ZStrip3dWithKernel = 10,
    eISST_Custom = 14
};

/// Ranges of lines of a plane, or of slices of a volume. The image is a single plane or a single volume.
template<class Image>
class ORVIK_API BaseImageStripSplit : public processor::BaseDynamicSplit
{
public:
    ~BaseImageStripSplit() override;
    processor::eSplitDynamicType getSplitDynamicType() const override { return processor::eSDT_ImageStrip; }
    virtual eImageStripSplitType getImageStripSplitType() const = 0;

protected:
    /// False for more than one plane, or more than one volume where slices are cut.
    /// @throws ORVIKBaseProcessingException for a null image.
    BoolResult initImage(const boost::shared_ptr<Image>& image);

    boost::shared_ptr<Image> m_image;
};

/// What the four kinds of strips share: `Strip` cut along Y or Z, with or without margins.
template<class Image, class Strip, bool AlongZ, bool WithKernel>
class BaseStripSplit : public BaseImageStripSplit<Image>
{
public:
    eImageStripSplitType getImageStripSplitType() const override
    {
        return AlongZ ? (WithKernel ? eISST_ZStrip3dWithKernel : eISST_ZStrip3d)
                      : (WithKernel ? eISST_YStrip2dWithKernel : eISST_YStrip2d);
    }
    unsigned long getNbElements() const override { return AlongZ ? this->m_image->getSizeZ() : this->m_image->getSizeY(); }
    unsigned long getElementSamples() const override
    {
        return AlongZ ? this->m_image->getSizeX() * this->m_image->getSizeY() : this->m_image->getSizeX();
    }
    unsigned long getMargin() const override
    {
        return AlongZ ? std::max(m_margins.startZ, m_margins.endZ) : std::max(m_margins.startY, m_margins.endY);
    }
    BoolResult processAttribute(processor::BaseProcessor& child, unsigned long start, unsigned long count,
                                const core::BaseRequestOrigin&) override
    {
        if constexpr (WithKernel)
            return processAttribute(child, boost::make_shared<Strip>(this->m_image, PlanIndex(), start, count, m_margins));
        else
            return processAttribute(child, boost::make_shared<Strip>(this->m_image, PlanIndex(), start, count));
    }
    virtual BoolResult processAttribute(processor::BaseProcessor& child, const boost::shared_ptr<Strip>& strip) = 0;

protected:
    image::StripMargins m_margins;
};

template<class I, class S>
class BaseImageYStrip2dSplit : public BaseStripSplit<I, S, false, false>
{
public:
    BoolResult initBase(const boost::shared_ptr<I>& image, const image::eStripAllocationType&,
                        const image::eStripParsingDirection&, const image::eStripParsingDirection&)
    {
        return this->initImage(image);
    }
};

template<class I, class S>
class BaseImageYStrip2dWithKernelSplit : public BaseStripSplit<I, S, false, true>
{
public:
    BoolResult initBase(const boost::shared_ptr<I>& image, unsigned long startX, unsigned long endX,
                        unsigned long startY, unsigned long endY, const image::eStripAllocationType&,
                        const image::eStripParsingDirection&, const image::eStripParsingDirection&)
    {
        this->m_margins = {startX, endX, startY, endY, 0, 0};
        return this->initImage(image);
    }
};

/// The same for outputs that are the image itself: each strip gets copies of the lines of its margins, made before it and
/// those after it run, when strips before it have written at most lines above it. So whatever the strips and threads, all
/// read what the image held at first. Only strips that run at the moment keep copies.
template<class I, class S>
class BaseImageYStrip2dInPlaceSplit : public BaseImageYStrip2dWithKernelSplit<I, S>
{
public:
    using BaseImageYStrip2dWithKernelSplit<I, S>::processAttribute;
    BoolResult processAttribute(processor::BaseProcessor& child, unsigned long start, unsigned long count,
                                const core::BaseRequestOrigin&) override
    {
        const boost::shared_ptr<S> strip =
            boost::make_shared<S>(this->m_image, PlanIndex(), start, count, this->m_margins);
        const unsigned long end = start + count, sizeY = this->m_image->getSizeY();
        boost::shared_ptr<const image::SavedLines> atEnd;
        if (end < sizeY)
            atEnd = boost::make_shared<image::SavedLines>(
                *this->m_image, end - std::min(end, this->m_margins.startY),
                std::min(end + this->m_margins.endY, sizeY), start, m_atStart.get());
        strip->setNeighbours(m_atStart, atEnd);
        m_atStart = atEnd;
        return processAttribute(child, strip);
    }

private:
    boost::shared_ptr<const image::SavedLines> m_atStart;  // the lines about the border to the strip handed out last
};

template<class I, class S>
class BaseImageZStrip3dSplit : public BaseStripSplit<I, S, true, false>
{
public:
    BoolResult initBase(const boost::shared_ptr<I>& image, const image::eStripAllocationType&,
                        const image::eStripParsingDirection&)
    {
        return this->initImage(image);
    }
};

template<class I, class S>
class BaseImageZStrip3dWithKernelSplit : public BaseStripSplit<I, S, true, true>
{
public:
    BoolResult initBase(const boost::shared_ptr<I>& image, unsigned long startX, unsigned long endX,
                        unsigned long startY, unsigned long endY, unsigned long startZ, unsigned long endZ,
                        const image::eStripAllocationType&, const image::eStripParsingDirection&)
    {
        this->m_margins = {startX, endX, startY, endY, startZ, endZ};
        return this->initImage(image);
    }
};

#define ORVIK_STRIP_SPLIT(Name) \
    template<class P, class I, class A> \
    class Name : public processor::TypedSplit<P, A, Base##Name<I, typename A::StorageType::element_type> > \
    { \
        typedef processor::TypedSplit<P, A, Base##Name<I, typename A::StorageType::element_type> > Base; \
\
    public: \
        using Base::processAttribute; \
        BoolResult processAttribute(processor::BaseProcessor& child, \
                                    const boost::shared_ptr<typename A::StorageType::element_type>& strip) override \
        { \
            return this->give(child, strip); \
        } \
    }
ORVIK_STRIP_SPLIT(ImageYStrip2dSplit);
ORVIK_STRIP_SPLIT(ImageYStrip2dWithKernelSplit);
ORVIK_STRIP_SPLIT(ImageYStrip2dInPlaceSplit);
ORVIK_STRIP_SPLIT(ImageZStrip3dSplit);
ORVIK_STRIP_SPLIT(ImageZStrip3dWithKernelSplit);
#undef ORVIK_STRIP_SPLIT

}}  // namespace orvik::imaproc
