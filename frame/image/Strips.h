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

/// Margins around the lines that a strip owns, in samples before and after them on each axis.
struct StripMargins
{
    unsigned long startX = 0, endX = 0, startY = 0, endY = 0, startZ = 0, endZ = 0;
};

/// Whole lines of an image that one element of a split works on: slices `offset` to `offset + size - 1` of a volume, or
/// lines of a plane. A view; it keeps the image alive.
class ORVIK_API BaseImageFragment
{
public:
    virtual ~BaseImageFragment();

    const boost::shared_ptr<const BaseImage>& getImage() const { return m_image; }
    const eImageBufferType& getBufferType() const { return m_image->getBufferType(); }
    unsigned long getSizeX() const { return m_image->getSizeX(); }
    unsigned long getZPlanIdx() const { return m_plan.z; }
    unsigned long getCPlanIdx() const { return m_plan.c; }
    unsigned long getTPlanIdx() const { return m_plan.t; }
    bool hasSlack() const { return m_image->hasSlack(); }

    /// Prepares the access by `accessBuffer`.
    void initBuffer();
    /// The strip's own lines as fragments, after `initBuffer`.
    BaseFragBuffer& accessBuffer() { return m_buffer; }

    /// Lines that the strip owns: of a volume, those of all its slices, slice by slice.
    virtual unsigned long getNbLines() const = 0;
    /// Line `i` of the strip's own. Writable only where the strip is an output.
    virtual void* accessLine(unsigned long i) const = 0;

protected:
    BaseImageFragment(const boost::shared_ptr<const BaseImage>& image, const PlanIndex& plan, unsigned long offset,
                      unsigned long size);

    /// A line of the channel and time that the strip lies in.
    void* lineAt(unsigned long y, unsigned long z) const;

    boost::shared_ptr<const BaseImage> m_image;
    PlanIndex m_plan;
    unsigned long m_offset;
    unsigned long m_size;

private:
    struct LineBuffer : BaseFragBuffer
    {
        void show(const BaseImageFragment& strip);
    };
    LineBuffer m_buffer;
};

/// Lines `getStripStartOffsetY()` and on of one plane.
class ORVIK_API BaseImageYStrip2d : public BaseImageFragment
{
public:
    ~BaseImageYStrip2d() override;
    unsigned long getImageSizeY() const { return m_image->getSizeY(); }
    unsigned long getStripStartOffsetY() const { return m_offset; }
    unsigned long getNbLines() const override { return m_size; }
    void* accessLine(unsigned long i) const override { return lineAt(m_offset + i, m_plan.z); }

protected:
    using BaseImageFragment::BaseImageFragment;
};

/// Slices `getStripStartOffsetZ()` and on of one volume.
class ORVIK_API BaseImageZStrip3d : public BaseImageFragment
{
public:
    ~BaseImageZStrip3d() override;
    unsigned long getSizeY() const { return m_image->getSizeY(); }
    unsigned long getImageSizeZ() const { return m_image->getSizeZ(); }
    unsigned long getStripStartOffsetZ() const { return m_offset; }
    unsigned long getNbLines() const override { return m_size * getSizeY(); }
    void* accessLine(unsigned long i) const override { return lineAt(i % getSizeY(), m_offset + i / getSizeY()); }

protected:
    using BaseImageFragment::BaseImageFragment;
};

/// Read-only and writable forms; `StripImage` is what the strip is cut from.
#define ORVIK_STRIP(Name, BaseName, ImageType) \
    class ORVIK_API Name : public BaseName \
    { \
    public: \
        typedef ImageType StripImage; \
        Name(const boost::shared_ptr<ImageType>& image, const PlanIndex& plan, unsigned long offset, unsigned long size) \
            : BaseName(image, plan, offset, size) \
        { \
        } \
        ~Name() override; \
    }

ORVIK_STRIP(InputImageYStrip2d, BaseImageYStrip2d, const BaseImage);
ORVIK_STRIP(OutputImageYStrip2d, BaseImageYStrip2d, BaseImage);
ORVIK_STRIP(InputImageZStrip3d, BaseImageZStrip3d, const BaseImage);
ORVIK_STRIP(OutputImageZStrip3d, BaseImageZStrip3d, BaseImage);

/// Copies of lines of a plane, for strips that read them when their image may have been overwritten.
class ORVIK_API SavedLines
{
public:
    /// Lines `first` to `end - 1` of a plane; those below `firstInImage` as they are in `earlier`, which may be null when
    /// there is none.
    SavedLines(const BaseImage& plane, unsigned long first, unsigned long end, unsigned long firstInImage,
               const SavedLines* earlier);
    const void* getLine(unsigned long y) const { return m_lines.getDataPtr(y - m_first); }

private:
    unsigned long m_first;
    FragHybridBuffer m_lines;
};

/// Strips whose kernel reads neighbours: besides its own lines, any line of the plane or volume can be reached.
class ORVIK_API BaseImageYStrip2dWithKernel : public BaseImageYStrip2d
{
public:
    ~BaseImageYStrip2dWithKernel() override;
    const StripMargins& getMargins() const { return m_margins; }
    /// Line `y` of the plane; null outside the image.
    const void* getImageLine(long y) const
    {
        if (y < 0 || y >= static_cast<long>(getImageSizeY()))
            return nullptr;
        const unsigned long line = static_cast<unsigned long>(y);
        if (m_above && line < m_offset)
            return m_above->getLine(line);
        if (m_below && line >= m_offset + m_size)
            return m_below->getLine(line);
        return lineAt(line, m_plan.z);
    }
    /// Lines above and below the strip's own are read from these copies, which hold those of the margins; null for the
    /// image itself.
    void setNeighbours(const boost::shared_ptr<const SavedLines>& above, const boost::shared_ptr<const SavedLines>& below)
    {
        m_above = above;
        m_below = below;
    }

protected:
    BaseImageYStrip2dWithKernel(const boost::shared_ptr<const BaseImage>& image, const PlanIndex& plan,
                                unsigned long offset, unsigned long size, const StripMargins& margins);
    StripMargins m_margins;

private:
    boost::shared_ptr<const SavedLines> m_above, m_below;
};

class ORVIK_API BaseImageZStrip3dWithKernel : public BaseImageZStrip3d
{
public:
    ~BaseImageZStrip3dWithKernel() override;
    const StripMargins& getMargins() const { return m_margins; }
    /// Line `y` of slice `z`; null outside the image.
    const void* getImageLine(long y, long z) const
    {
        return y >= 0 && y < static_cast<long>(getSizeY()) && z >= 0 && z < static_cast<long>(getImageSizeZ())
                   ? lineAt(static_cast<unsigned long>(y), static_cast<unsigned long>(z))
                   : nullptr;
    }

protected:
    BaseImageZStrip3dWithKernel(const boost::shared_ptr<const BaseImage>& image, const PlanIndex& plan,
                                unsigned long offset, unsigned long size, const StripMargins& margins);
    StripMargins m_margins;
};

#define ORVIK_STRIP_WITH_KERNEL(Name, BaseName) \
    class ORVIK_API Name : public BaseName \
    { \
    public: \
        typedef const BaseImage StripImage; \
        Name(const boost::shared_ptr<const BaseImage>& image, const PlanIndex& plan, unsigned long offset, \
             unsigned long size, const StripMargins& margins) \
            : BaseName(image, plan, offset, size, margins) \
        { \
        } \
        ~Name() override; \
    }

ORVIK_STRIP_WITH_KERNEL(InputImageYStrip2dWithKernel, BaseImageYStrip2dWithKernel);
ORVIK_STRIP_WITH_KERNEL(InputImageZStrip3dWithKernel, BaseImageZStrip3dWithKernel);

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
        if (result.getValue())
            strip = boost::make_shared<TStrip>(image, PlanIndex(z, c, t), offsetY, sizeY);
        return result;
    }

private:
    static BoolResult check(const BaseImage* image, unsigned long z, unsigned long c, unsigned long t,
                            unsigned long offsetY, unsigned long sizeY);
};

}}  // namespace orvik::image
