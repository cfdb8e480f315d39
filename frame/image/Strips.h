#pragma once

#include "frame/image/BaseImage.h"
#include "frame/image/Buffers.h"
#include "frame/util/ProcessingResult.h"

#include <boost/smart_ptr/make_shared_object.hpp>

namespace orvik { namespace image {

enum eStripAllocationType : unsigned int
{
    eSAT_View = 0  ///< the strip shows the image's own lines
};

enum eStripParsingDirection : unsigned int
{
    eSPD_Forward = 0
};

/// The axis that an image is cut along: a plane into strips of lines, a volume into strips of slices. What holds for both
/// is said of the elements of the axis: a line, or a slice with all its lines.
enum eStripAxis : unsigned int
{
    eSA_Y = 0,
    eSA_Z = 1
};

inline unsigned long getNbElements(const BaseImage& image, eStripAxis axis)
{
    return axis == eSA_Y ? image.getSizeY() : image.getSizeZ();
}

inline unsigned long getNbLinesOfElement(const BaseImage& image, eStripAxis axis)
{
    return axis == eSA_Y ? 1 : image.getSizeY();
}

/// Margins around the lines that a strip owns, in samples before and after them on each axis.
struct StripMargins
{
    unsigned long startX = 0, endX = 0, startY = 0, endY = 0, startZ = 0, endZ = 0;

    /// Elements before and after those of a strip along `axis`.
    unsigned long getStart(eStripAxis axis) const { return axis == eSA_Y ? startY : startZ; }
    unsigned long getEnd(eStripAxis axis) const { return axis == eSA_Y ? endY : endZ; }
    /// Lines before and after those of the image in each element.
    unsigned long getRowStart(eStripAxis axis) const { return axis == eSA_Y ? 0 : startY; }
    unsigned long getRowEnd(eStripAxis axis) const { return axis == eSA_Y ? 0 : endY; }
    /// Whether samples on all sides of a plane are these many.
    bool areAllAround(unsigned long size) const { return startX == size && endX == size && startY == size && endY == size; }
};

/// Copies of elements of a plane or volume, for strips that read them when their image may have been overwritten.
class ORVIK_API SavedElements
{
public:
    /// Elements `first` to `end - 1` of one plane or volume; those below `firstInImage` as they are in `earlier`, which may
    /// be null when there is none.
    SavedElements(const BaseImage& image, eStripAxis axis, unsigned long first, unsigned long end,
                  unsigned long firstInImage, const SavedElements* earlier);
    const void* getLine(unsigned long element, unsigned long row) const
    {
        return m_lines.getDataPtr((element - m_first) * m_nbRows + row);
    }

private:
    unsigned long m_first, m_nbRows;
    FragHybridBuffer m_lines;
};

/// Elements of a plane or volume that one element of a split works on, `offset` to `offset + size - 1`, and the margins
/// that its kernel reads around them. A view; it keeps the image alive.
class ORVIK_API BaseImageFragment
{
public:
    virtual ~BaseImageFragment();

    const boost::shared_ptr<const BaseImage>& getImage() const { return m_image; }
    const eImageBufferType& getBufferType() const { return m_image->getBufferType(); }
    eStripAxis getAxis() const { return m_axis; }
    unsigned long getSizeX() const { return m_image->getSizeX(); }
    unsigned long getZPlanIdx() const { return m_plan.z; }
    unsigned long getCPlanIdx() const { return m_plan.c; }
    unsigned long getTPlanIdx() const { return m_plan.t; }
    bool hasSlack() const { return m_image->hasSlack(); }
    const StripMargins& getMargins() const { return m_margins; }

    /// Prepares the access by `accessBuffer`.
    void initBuffer();
    /// The strip's own lines as fragments, after `initBuffer`.
    BaseFragBuffer& accessBuffer() { return m_buffer; }

    /// First element of the strip's own, and how many there are in the image.
    unsigned long getStripStartOffset() const { return m_offset; }
    unsigned long getImageNbElements() const { return image::getNbElements(*m_image, m_axis); }
    unsigned long getNbElements() const { return m_size; }
    unsigned long getNbLinesOfElement() const { return image::getNbLinesOfElement(*m_image, m_axis); }

    /// Lines that the strip owns: of a volume, those of all its slices, slice by slice.
    unsigned long getNbLines() const { return m_size * getNbLinesOfElement(); }
    /// Line `i` of the strip's own. Writable only where the strip is an output.
    void* accessLine(unsigned long i) const
    {
        return m_axis == eSA_Y ? lineAt(m_offset + i, m_plan.z)
                               : lineAt(i % m_image->getSizeY(), m_offset + i / m_image->getSizeY());
    }
    /// A line of any element of the image, of which the strip's own are only a part; null outside the image.
    const void* getImageLine(long element, long row) const;
    /// Elements before and after the strip's own are read from these copies, which hold those of the margins; null for
    /// the image itself.
    void setNeighbours(const boost::shared_ptr<const SavedElements>& before,
                       const boost::shared_ptr<const SavedElements>& after)
    {
        m_before = before;
        m_after = after;
    }

protected:
    BaseImageFragment(eStripAxis axis, const boost::shared_ptr<const BaseImage>& image, const PlanIndex& plan,
                      unsigned long offset, unsigned long size, const StripMargins& margins = StripMargins());

    boost::shared_ptr<const BaseImage> m_image;
    PlanIndex m_plan;
    unsigned long m_offset;
    unsigned long m_size;

private:
    struct LineBuffer : BaseFragBuffer
    {
        void show(const BaseImageFragment& strip);
    };

    /// A line of the channel and time that the strip lies in.
    void* lineAt(unsigned long y, unsigned long z) const
    {
        // Input and output strips share this; only output strips, which were made from a writable image, hand it on.
        return const_cast<void*>(m_image->getLine(y, z, m_plan.c, m_plan.t));
    }

    const eStripAxis m_axis;
    const StripMargins m_margins;
    boost::shared_ptr<const SavedElements> m_before, m_after;
    LineBuffer m_buffer;
};

/// Lines `getStripStartOffsetY()` and on of one plane.
class ORVIK_API BaseImageYStrip2d : public BaseImageFragment
{
public:
    static constexpr eStripAxis s_axis = eSA_Y;
    ~BaseImageYStrip2d() override;
    unsigned long getImageSizeY() const { return getImageNbElements(); }
    unsigned long getStripStartOffsetY() const { return getStripStartOffset(); }

protected:
    template<class... Where>
    explicit BaseImageYStrip2d(const Where&... where) : BaseImageFragment(s_axis, where...)
    {
    }
};

/// Slices `getStripStartOffsetZ()` and on of one volume.
class ORVIK_API BaseImageZStrip3d : public BaseImageFragment
{
public:
    static constexpr eStripAxis s_axis = eSA_Z;
    ~BaseImageZStrip3d() override;
    unsigned long getSizeY() const { return m_image->getSizeY(); }
    unsigned long getImageSizeZ() const { return getImageNbElements(); }
    unsigned long getStripStartOffsetZ() const { return getStripStartOffset(); }

protected:
    template<class... Where>
    explicit BaseImageZStrip3d(const Where&... where) : BaseImageFragment(s_axis, where...)
    {
    }
};

/// Strips whose kernel reads neighbours: besides its own lines, any line of the plane or volume can be reached.
class ORVIK_API BaseImageYStrip2dWithKernel : public BaseImageYStrip2d
{
public:
    ~BaseImageYStrip2dWithKernel() override;

protected:
    using BaseImageYStrip2d::BaseImageYStrip2d;
};

class ORVIK_API BaseImageZStrip3dWithKernel : public BaseImageZStrip3d
{
public:
    ~BaseImageZStrip3dWithKernel() override;

protected:
    using BaseImageZStrip3d::BaseImageZStrip3d;
};

/// Read-only and writable forms, with and without margins; `StripImage` is what the strip is cut from.
#define ORVIK_STRIP(Name, BaseName, ImageType, WithKernel) \
    class ORVIK_API Name : public BaseName \
    { \
    public: \
        typedef ImageType StripImage; \
        static constexpr bool s_withKernel = WithKernel; \
        Name(const boost::shared_ptr<ImageType>& image, const PlanIndex& plan, unsigned long offset, unsigned long size, \
             const StripMargins& margins = StripMargins()) \
            : BaseName(image, plan, offset, size, margins) \
        { \
        } \
        ~Name() override; \
    }

ORVIK_STRIP(InputImageYStrip2d, BaseImageYStrip2d, const BaseImage, false);
ORVIK_STRIP(OutputImageYStrip2d, BaseImageYStrip2d, BaseImage, false);
ORVIK_STRIP(InputImageZStrip3d, BaseImageZStrip3d, const BaseImage, false);
ORVIK_STRIP(OutputImageZStrip3d, BaseImageZStrip3d, BaseImage, false);
ORVIK_STRIP(InputImageYStrip2dWithKernel, BaseImageYStrip2dWithKernel, const BaseImage, true);
ORVIK_STRIP(InputImageZStrip3dWithKernel, BaseImageZStrip3dWithKernel, const BaseImage, true);

/// Makes strips by hand.
class ORVIK_API ImageStripExtractor
{
public:
    /// Lines offsetY to offsetY + sizeY - 1 of plane (z, c, t). Follow it by `strip->initBuffer()`.
    /// False when the plane or the lines lie outside the image.
    template<class TStrip>
    static BoolResult extractYStrip2d(unsigned long z, unsigned long c, unsigned long t, unsigned long offsetY,
                                      unsigned long sizeY, const eStripAllocationType&, const eStripParsingDirection&,
                                      const boost::shared_ptr<typename TStrip::StripImage>& image,
                                      boost::shared_ptr<TStrip>& strip)
    {
        const BoolResult result = check(image.get(), z, c, t, offsetY, sizeY);
        if (result)
            strip = boost::make_shared<TStrip>(image, PlanIndex(z, c, t), offsetY, sizeY);
        return result;
    }

private:
    static BoolResult check(const BaseImage* image, unsigned long z, unsigned long c, unsigned long t, unsigned long offsetY,
                            unsigned long sizeY);
};

}}  // namespace orvik::image
