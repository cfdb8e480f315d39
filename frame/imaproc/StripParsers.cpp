#include "frame/imaproc/StripParsers.h"

#include <algorithm>
#include <cstring>

namespace orvik { namespace imaproc {

namespace {

/// The line or slice of an image that stands for `i` where the nearest one does.
long nearest(long i, unsigned long size)
{
    return std::max(0l, std::min(i, static_cast<long>(size) - 1));
}

}  // namespace

BaseImageParser::~BaseImageParser() = default;
BaseStripParser::~BaseStripParser() = default;
PlainStripParser::~PlainStripParser() = default;
KernelYStrip2dParser::~KernelYStrip2dParser() = default;
KernelZStrip3dParser::~KernelZStrip3dParser() = default;

BaseStripParser::BaseStripParser(eDataType dataType) : m_dataType(dataType), m_sampleSize(getDataTypeSize(dataType)) {}

PlainStripParser::PlainStripParser(eDataType dataType, bool writable, bool wholeLines)
    : BaseStripParser(dataType), m_current(nullptr), m_writable(writable), m_wholeLines(wholeLines), m_inPlace(false),
      m_granularity(1), m_line(nullptr)
{
}

void PlainStripParser::start(unsigned long granularity)
{
    const unsigned long block = 64;  // lines of the frame's images are padded to it
    const unsigned long sizeX = m_strip->getSizeX();
    if (m_wholeLines || sizeX < block)
        setRuns(0, sizeX, 0);
    else
        setRuns(0, sizeX / block * block, sizeX % block);
    m_granularity = granularity;
    m_inPlace = m_strip->hasSlack() && granularity <= block;
    if (!m_inPlace)
        m_scratch.init(processor::alignedCount(m_wholeLines || granularity > block ? sizeX : block, granularity), m_dataType);
}

void PlainStripParser::beginLine(unsigned long line)
{
    m_line = static_cast<char*>(m_strip->accessLine(line));
}

void PlainStripParser::beginRun(unsigned long firstColumn, unsigned long nbData)
{
    m_current = m_line + firstColumn * m_sampleSize;
    if (m_inPlace || nbData % m_granularity == 0)
        return;
    std::memcpy(m_scratch.getDataPtr(), m_current, nbData * m_sampleSize);
    m_current = m_scratch.getDataPtr();
}

void PlainStripParser::endRun(unsigned long firstColumn, unsigned long nbData)
{
    if (m_writable && m_current == m_scratch.getDataPtr())
        std::memcpy(m_line + firstColumn * m_sampleSize, m_current, nbData * m_sampleSize);
}

KernelYStrip2dParser::KernelYStrip2dParser(eDataType dataType)
    : BaseStripParser(dataType), m_lineSize(0), m_nextLine(nullptr)
{
}

void KernelYStrip2dParser::start(unsigned long granularity)
{
    const image::StripMargins& margins = m_strip->getMargins();
    const unsigned long sizeX = m_strip->getSizeX();
    setRuns(0, sizeX, 0);
    m_lineSize = margins.startX + processor::alignedCount(sizeX, granularity) + margins.endX + 1;
    m_lines.init(m_dataType, m_lineSize, margins.startY + 1 + margins.endY);
    for (unsigned long i = 0; i < m_lines.getNbFragments(); ++i)
        image::fillBorder(m_border, m_dataType, m_lines.getDataPtr(i), m_lineSize);
}

void KernelYStrip2dParser::load(unsigned long fragment, long y)
{
    const unsigned long sizeX = m_strip->getSizeX(), startX = m_strip->getMargins().startX;
    const bool repeats = m_border.getType() == image::eBT_Nearest;
    void* const start = m_lines.getDataPtr(fragment, startX);
    if (const void* const line = m_strip->getImageLine(repeats ? nearest(y, m_strip->getImageSizeY()) : y))
        std::memcpy(start, line, sizeX * m_sampleSize);
    else
        image::fillBorder(m_border, m_dataType, start, sizeX);
    if (repeats)
        image::repeatEdges(m_dataType, m_lines.getDataPtr(fragment), startX, sizeX, m_lineSize);
}

void KernelYStrip2dParser::beginLine(unsigned long line)
{
    const unsigned long nbLines = m_lines.getNbFragments();
    const long first = static_cast<long>(m_strip->getStripStartOffsetY() + line)
                       - static_cast<long>(m_strip->getMargins().startY);
    if (line == 0) {
        for (unsigned long i = 0; i < nbLines; ++i)
            load(i, first + static_cast<long>(i));
    } else {
        m_lines.rollUpFragments();
        load(nbLines - 1, first + static_cast<long>(nbLines - 1));
    }
    // Past the strip's last line there is none: margins that were copied end with it.
    m_nextLine = line + 1 < getNbLines() ? m_strip->getImageLine(first + static_cast<long>(nbLines)) : nullptr;
}

KernelZStrip3dParser::KernelZStrip3dParser(eDataType dataType) : BaseStripParser(dataType), m_lineSize(0), m_y(0) {}

void KernelZStrip3dParser::start(unsigned long granularity)
{
    const image::StripMargins& margins = m_strip->getMargins();
    const unsigned long sizeX = m_strip->getSizeX();
    setRuns(0, sizeX, 0);
    m_lineSize = margins.startX + processor::alignedCount(sizeX, granularity) + margins.endX + 1;
    const unsigned long sliceSize = m_lineSize * (margins.startY + m_strip->getSizeY() + margins.endY);
    m_slices.init(m_dataType, sliceSize, margins.startZ + 1 + margins.endZ);
    for (unsigned long i = 0; i < m_slices.getNbFragments(); ++i)
        image::fillBorder(m_border, m_dataType, m_slices.getDataPtr(i), sliceSize);
}

void KernelZStrip3dParser::load(unsigned long fragment, long z)
{
    const image::StripMargins& margins = m_strip->getMargins();
    const unsigned long sizeX = m_strip->getSizeX(), sizeY = m_strip->getSizeY();
    const bool repeats = m_border.getType() == image::eBT_Nearest;
    // Margin rows hold the border since `start`, unless each slice repeats its own.
    const unsigned long firstRow = repeats ? 0 : margins.startY;
    const unsigned long endRow = margins.startY + sizeY + (repeats ? margins.endY : 0);
    const long sourceZ = repeats ? nearest(z, m_strip->getImageSizeZ()) : z;
    for (unsigned long row = firstRow; row < endRow; ++row) {
        const long y = static_cast<long>(row) - static_cast<long>(margins.startY);
        void* const start = m_slices.getDataPtr(fragment, row * m_lineSize + margins.startX);
        if (const void* const line = m_strip->getImageLine(repeats ? nearest(y, sizeY) : y, sourceZ))
            std::memcpy(start, line, sizeX * m_sampleSize);
        else
            image::fillBorder(m_border, m_dataType, start, sizeX);
        if (repeats)
            image::repeatEdges(m_dataType, m_slices.getDataPtr(fragment, row * m_lineSize), margins.startX, sizeX,
                               m_lineSize);
    }
}

void KernelZStrip3dParser::beginLine(unsigned long line)
{
    const unsigned long nbSlices = m_slices.getNbFragments(), slice = line / m_strip->getSizeY();
    const long first = static_cast<long>(m_strip->getStripStartOffsetZ() + slice)
                       - static_cast<long>(m_strip->getMargins().startZ);
    m_y = line % m_strip->getSizeY();
    if (line == 0) {
        for (unsigned long i = 0; i < nbSlices; ++i)
            load(i, first + static_cast<long>(i));
    } else if (m_y == 0) {
        m_slices.rollUpFragments();
        load(nbSlices - 1, first + static_cast<long>(nbSlices - 1));
    }
}

template<class Mode, class Attr, class StorageAttr>
boost::shared_ptr<processor::BaseDataParser> StripParserInfo<Mode, Attr, StorageAttr>::createParser(
    const boost::shared_ptr<Attr>& attribute)
{
    boost::shared_ptr<processor::BaseDataParser> parser;
    image::withSampleType(image::toDataType(attribute->getImageBufferType()), [&](auto sample) {
        typedef decltype(sample) T;
        if constexpr (!std::is_same<T, double>::value) {
            const auto typed = boost::make_shared<typename StripParserClass<Mode, T, StorageAttr>::type>();
            typed->init(attribute->getStorage());
            parser = typed;
        }
    });
    return parser;
}

#define ORVIK_PARSER_INFO(Mode, Attr) template struct StripParserInfo<Mode, Attr, Attr>;
ORVIK_PARSER_INFO(RawStripParserMode, BaseInputYStrip2dAttribute)
ORVIK_PARSER_INFO(RawStripParserMode, BaseOutputYStrip2dAttribute)
ORVIK_PARSER_INFO(RawStripParserMode, BaseInputZStrip3dAttribute)
ORVIK_PARSER_INFO(RawStripParserMode, BaseOutputZStrip3dAttribute)
ORVIK_PARSER_INFO(LineStripParserMode, BaseInputYStrip2dAttribute)
ORVIK_PARSER_INFO(LineStripParserMode, BaseOutputYStrip2dAttribute)
ORVIK_PARSER_INFO(LineStripParserMode, BaseInputZStrip3dAttribute)
ORVIK_PARSER_INFO(LineStripParserMode, BaseOutputZStrip3dAttribute)
ORVIK_PARSER_INFO(LineStripParserMode, BaseInputYStrip2dWithKernelAttribute)
ORVIK_PARSER_INFO(LineStripParserMode, BaseInputZStrip3dWithKernelAttribute)

}}  // namespace orvik::imaproc
