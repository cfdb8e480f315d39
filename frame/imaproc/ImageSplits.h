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
class SubImageSplit : public processor::TypedSplit<P, A, BaseSubImageSplit<typename A::StorageType::element_type>>
{
public:
    BoolResult processAttribute(processor::BaseProcessor& child, unsigned int index, const core::BaseRequestOrigin&) override
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
    BoolResult processAttribute(processor::BaseProcessor& child, unsigned int index, const core::BaseRequestOrigin&) override
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

/// The four kinds of strips, with or without margins, of lines or of slices: `Strip` tells which.
template<class Image, class Strip>
class BaseStripSplit : public BaseImageStripSplit<Image>
{
public:
    BoolResult init(const boost::shared_ptr<Image>& image, const image::StripMargins& margins)
    {
        m_margins = margins;
        return this->initImage(image);
    }
    // The same as plain and margins are told for lines, which are parsed along two axes, and for slices.
    BoolResult initBase(const boost::shared_ptr<Image>& image, const image::eStripAllocationType&,
                        const image::eStripParsingDirection&, const image::eStripParsingDirection&)
    {
        return init(image, image::StripMargins());
    }
    BoolResult initBase(const boost::shared_ptr<Image>& image, const image::eStripAllocationType&,
                        const image::eStripParsingDirection&)
    {
        return init(image, image::StripMargins());
    }
    BoolResult initBase(const boost::shared_ptr<Image>& image, unsigned long startX, unsigned long endX,
                        unsigned long startY, unsigned long endY, const image::eStripAllocationType&,
                        const image::eStripParsingDirection&, const image::eStripParsingDirection&)
    {
        return init(image, {startX, endX, startY, endY, 0, 0});
    }
    BoolResult initBase(const boost::shared_ptr<Image>& image, unsigned long startX, unsigned long endX,
                        unsigned long startY, unsigned long endY, unsigned long startZ, unsigned long endZ,
                        const image::eStripAllocationType&, const image::eStripParsingDirection&)
    {
        return init(image, {startX, endX, startY, endY, startZ, endZ});
    }
    /// For outputs that are the image itself: each strip gets copies of the elements of its margins, made before it and
    /// those after it run, when strips before it have written at most elements before it. So whatever the strips and
    /// threads, all read what the image held at first. Only strips that run at the moment keep copies.
    void setInPlace() { m_inPlace = true; }

    eImageStripSplitType getImageStripSplitType() const override
    {
        constexpr eImageStripSplitType ofLines = Strip::s_withKernel ? eISST_YStrip2dWithKernel : eISST_YStrip2d;
        constexpr eImageStripSplitType ofSlices = Strip::s_withKernel ? eISST_ZStrip3dWithKernel : eISST_ZStrip3d;
        return Strip::s_axis == image::eSA_Y ? ofLines : ofSlices;
    }
    unsigned long getNbElements() const override { return image::getNbElements(*this->m_image, Strip::s_axis); }
    unsigned long getElementSamples() const override
    {
        return this->m_image->getSizeX() * image::getNbLinesOfElement(*this->m_image, Strip::s_axis);
    }
    unsigned long getMargin() const override
    {
        return std::max(m_margins.getStart(Strip::s_axis), m_margins.getEnd(Strip::s_axis));
    }
    BoolResult processAttribute(processor::BaseProcessor& child, unsigned long start, unsigned long count,
                                const core::BaseRequestOrigin&) override
    {
        const auto strip = makeTogether<Strip>(this->m_image, PlanIndex(), start, count, m_margins);
        if (m_inPlace) {
            const boost::shared_ptr<const image::SavedElements> atEnd = saveAt(start, start + count);
            strip->setNeighbours(m_atStart, atEnd);
            m_atStart = atEnd;
        }
        return processAttribute(child, strip);
    }
    virtual BoolResult processAttribute(processor::BaseProcessor& child, const boost::shared_ptr<Strip>& strip) = 0;

private:
    /// The elements about the end of the strip that begins at `start`; null where the image ends.
    boost::shared_ptr<const image::SavedElements> saveAt(unsigned long start, unsigned long end) const
    {
        const unsigned long nbElements = getNbElements();
        if (end >= nbElements)
            return boost::shared_ptr<const image::SavedElements>();
        return boost::make_shared<image::SavedElements>(*this->m_image, Strip::s_axis,
                                                        end - std::min(end, m_margins.getStart(Strip::s_axis)),
                                                        std::min(end + m_margins.getEnd(Strip::s_axis), nbElements), start,
                                                        m_atStart.get());
    }

    image::StripMargins m_margins;
    bool m_inPlace = false;
    boost::shared_ptr<const image::SavedElements> m_atStart;  // about the border to the strip handed out last
};

template<class I, class S>
using BaseImageYStrip2dSplit = BaseStripSplit<I, S>;
template<class I, class S>
using BaseImageYStrip2dWithKernelSplit = BaseStripSplit<I, S>;
template<class I, class S>
using BaseImageZStrip3dSplit = BaseStripSplit<I, S>;
template<class I, class S>
using BaseImageZStrip3dWithKernelSplit = BaseStripSplit<I, S>;

template<class P, class I, class A>
class StripSplit : public processor::TypedSplit<P, A, BaseStripSplit<I, typename A::StorageType::element_type>>
{
    typedef processor::TypedSplit<P, A, BaseStripSplit<I, typename A::StorageType::element_type>> Base;

public:
    using Base::processAttribute;
    BoolResult processAttribute(processor::BaseProcessor& child, const typename A::StorageType& strip) override
    {
        return this->give(child, strip);
    }
};

template<class P, class I, class A>
using ImageYStrip2dSplit = StripSplit<P, I, A>;
template<class P, class I, class A>
using ImageYStrip2dWithKernelSplit = StripSplit<P, I, A>;
template<class P, class I, class A>
using ImageZStrip3dSplit = StripSplit<P, I, A>;
template<class P, class I, class A>
using ImageZStrip3dWithKernelSplit = StripSplit<P, I, A>;

}}  // namespace orvik::imaproc
