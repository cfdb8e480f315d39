#include "frame/image/Strips.h"

#include <cstring>

namespace orvik { namespace image {

BaseImageFragment::BaseImageFragment(eStripAxis axis, const boost::shared_ptr<const BaseImage>& image, const PlanIndex& plan,
                                     unsigned long offset, unsigned long size, const StripMargins& margins)
    : m_image(image), m_plan(plan), m_offset(offset), m_size(size), m_axis(axis), m_margins(margins)
{
}

BaseImageFragment::~BaseImageFragment() = default;
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

const void* BaseImageFragment::getImageLine(long element, long row) const
{
    if (element < 0 || element >= static_cast<long>(getImageNbElements()) || row < 0
        || row >= static_cast<long>(getNbLinesOfElement()))
        return nullptr;
    const unsigned long at = static_cast<unsigned long>(element), line = static_cast<unsigned long>(row);
    if (m_before && at < m_offset)
        return m_before->getLine(at, line);
    if (m_after && at >= m_offset + m_size)
        return m_after->getLine(at, line);
    return m_axis == eSA_Y ? lineAt(at, m_plan.z) : lineAt(line, at);
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

SavedElements::SavedElements(const BaseImage& image, eStripAxis axis, unsigned long first, unsigned long end,
                             unsigned long firstInImage, const SavedElements* earlier)
    : m_first(first), m_nbRows(getNbLinesOfElement(image, axis))
{
    const eDataType type = toDataType(image.getBufferType());
    m_lines.init(type, image.getSizeX(), (end - first) * m_nbRows);
    for (unsigned long element = first; element < end; ++element)
        for (unsigned long row = 0; row < m_nbRows; ++row) {
            const void* const inImage = axis == eSA_Y ? image.getLine(element) : image.getLine(row, element);
            const void* const from = earlier && element < firstInImage ? earlier->getLine(element, row) : inImage;
            std::memcpy(m_lines.getDataPtr((element - first) * m_nbRows + row), from,
                        image.getSizeX() * getDataTypeSize(type));
        }
}

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
