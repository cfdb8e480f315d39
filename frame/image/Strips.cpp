#include "frame/image/Strips.h"

#include <cstring>

namespace orvik { namespace image {

BaseImageFragment::BaseImageFragment(const boost::shared_ptr<const BaseImage>& image, const PlanIndex& plan,
                                     unsigned long offset, unsigned long size)
    : m_image(image), m_plan(plan), m_offset(offset), m_size(size)
{
}

BaseImageFragment::~BaseImageFragment() = default;

void* BaseImageFragment::lineAt(unsigned long y, unsigned long z) const
{
    // Input and output strips share this; only output strips, which were made from a writable image, hand it on.
    return const_cast<void*>(m_image->getLine(y, z, m_plan.c, m_plan.t));
}

void BaseImageFragment::LineBuffer::show(const BaseImageFragment& strip)
{
    m_valueSize = getImageBufferBaseSize(strip.getBufferType());
    m_fragments.resize(strip.getNbLines());
    for (unsigned long i = 0; i < m_fragments.size(); ++i)
        m_fragments[i] = strip.accessLine(i);
}

void BaseImageFragment::initBuffer()
{
    m_buffer.show(*this);
}

SavedLines::SavedLines(const BaseImage& plane, unsigned long first, unsigned long end, unsigned long firstInImage,
                       const SavedLines* earlier)
    : m_first(first)
{
    const eDataType type = toDataType(plane.getBufferType());
    m_lines.init(type, plane.getSizeX(), end - first);
    for (unsigned long y = first; y < end; ++y) {
        const void* const from = earlier && y < firstInImage ? earlier->getLine(y) : plane.getLine(y);
        std::memcpy(m_lines.getDataPtr(y - first), from, plane.getSizeX() * getDataTypeSize(type));
    }
}

BaseImageYStrip2dWithKernel::BaseImageYStrip2dWithKernel(const boost::shared_ptr<const BaseImage>& image,
                                                         const PlanIndex& plan, unsigned long offset,
                                                         unsigned long size, const StripMargins& margins)
    : BaseImageYStrip2d(image, plan, offset, size), m_margins(margins)
{
}

BaseImageZStrip3dWithKernel::BaseImageZStrip3dWithKernel(const boost::shared_ptr<const BaseImage>& image,
                                                         const PlanIndex& plan, unsigned long offset,
                                                         unsigned long size, const StripMargins& margins)
    : BaseImageZStrip3d(image, plan, offset, size), m_margins(margins)
{
}

BaseImageYStrip2d::~BaseImageYStrip2d() = default;
BaseImageZStrip3d::~BaseImageZStrip3d() = default;
BaseImageYStrip2dWithKernel::~BaseImageYStrip2dWithKernel() = default;
BaseImageZStrip3dWithKernel::~BaseImageZStrip3dWithKernel() = default;
InputImageYStrip2d::~InputImageYStrip2d() = default;
OutputImageYStrip2d::~OutputImageYStrip2d() = default;
InputImageZStrip3d::~InputImageZStrip3d() = default;
OutputImageZStrip3d::~OutputImageZStrip3d() = default;
InputImageYStrip2dWithKernel::~InputImageYStrip2dWithKernel() = default;
InputImageZStrip3dWithKernel::~InputImageZStrip3dWithKernel() = default;

BoolResult ImageStripExtractor::check(const BaseImage* image, unsigned long z, unsigned long c, unsigned long t,
                                      unsigned long offsetY, unsigned long sizeY)
{
    if (!image)
        return failure("A strip can't be cut from a null image");
    const ImageSizes& sizes = image->getGeometry().getSizes();
    if (z >= sizes.z || c >= sizes.c || t >= sizes.t)
        return failure("A strip can't be cut from plane (" + std::to_string(z) + ", " + std::to_string(c) + ", "
                       + std::to_string(t) + ") of an image of size " + toString(sizes));
    if (sizeY < 1 || offsetY >= sizes.y || sizeY > sizes.y - offsetY)
        return failure("A strip of " + std::to_string(sizeY) + " lines from line " + std::to_string(offsetY)
                       + " lies outside an image of size " + toString(sizes));
    return success();
}

}}  // namespace orvik::image
