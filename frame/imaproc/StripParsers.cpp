#include "frame/imaproc/StripParsers.h"

#include "frame/util/Arena.h"

#include <algorithm>
#include <cstring>

namespace orvik { namespace imaproc {

namespace {

/// The element or line of an image that stands for `i` where the nearest one does.
long nearest(long i, unsigned long size)
{
    return std::max(0l, std::min(i, static_cast<long>(size) - 1));
}

}  // namespace

BaseImageParser::~BaseImageParser() = default;
BaseStripParser::~BaseStripParser() = default;
PlainStripParser::~PlainStripParser() = default;
KernelStripParser::~KernelStripParser() = default;

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
        m_scratch.init(processor::alignedCount(m_wholeLines || granularity > block ? sizeX : block, granularity),
                       m_dataType);
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

KernelStripParser::KernelStripParser(eDataType dataType)
    : BaseStripParser(dataType), m_onDemand(false), m_lineSize(0), m_firstElement(0), m_row(0), m_nextLine(nullptr)
{
}

void KernelStripParser::start(unsigned long granularity)
{
    const image::StripMargins& margins = m_strip->getMargins();
    const image::eStripAxis axis = m_strip->getAxis();
    const unsigned long sizeX = m_strip->getSizeX();
    setRuns(0, sizeX, 0);
    m_lineSize = margins.startX + processor::alignedCount(sizeX, granularity) + margins.endX + 1;
    const unsigned long nbRows =
        m_onDemand ? 1 : margins.getRowStart(axis) + m_strip->getNbLinesOfElement() + margins.getRowEnd(axis);
    m_elements.init(m_dataType, nbRows * m_lineSize, m_onDemand ? 1 : margins.getStart(axis) + 1 + margins.getEnd(axis));
    for (unsigned long i = 0; i < m_elements.getNbFragments(); ++i)
        image::fillBorder(m_border, m_dataType, m_elements.getDataPtr(i), nbRows * m_lineSize);
}

void KernelStripParser::copyLine(long element, long line, void* to) const
{
    const unsigned long sizeX = m_strip->getSizeX(), startX = m_strip->getMargins().startX;
    const bool repeats = m_border.getType() == image::eBT_Nearest;
    void* const start = static_cast<char*>(to) + startX * m_sampleSize;
    if (const void* const from = m_strip->getImageLine(repeats ? nearest(element, m_strip->getImageNbElements()) : element,
                                                       repeats ? nearest(line, m_strip->getNbLinesOfElement()) : line))
        std::memcpy(start, from, sizeX * m_sampleSize);
    else
        image::fillBorder(m_border, m_dataType, start, sizeX);
    if (repeats)
        image::repeatEdges(m_dataType, to, startX, sizeX, m_lineSize);
}

void* KernelStripParser::readLine(unsigned long element, unsigned long row) const
{
    void* const to = m_elements.getDataPtr(0);
    copyLine(m_firstElement + static_cast<long>(element),
             static_cast<long>(m_row + row) - static_cast<long>(m_strip->getMargins().getRowStart(m_strip->getAxis())), to);
    return to;
}

void KernelStripParser::load(unsigned long fragment, long element)
{
    const image::StripMargins& margins = m_strip->getMargins();
    const image::eStripAxis axis = m_strip->getAxis();
    const unsigned long nbLines = m_strip->getNbLinesOfElement(), rowStart = margins.getRowStart(axis);
    const bool repeats = m_border.getType() == image::eBT_Nearest;
    // Margin rows hold the border since `start`, unless each element repeats its own.
    const unsigned long firstRow = repeats ? 0 : rowStart;
    const unsigned long endRow = rowStart + nbLines + (repeats ? margins.getRowEnd(axis) : 0);
    for (unsigned long row = firstRow; row < endRow; ++row)
        copyLine(element, static_cast<long>(row) - static_cast<long>(rowStart),
                 m_elements.getDataPtr(fragment, row * m_lineSize));
}

void KernelStripParser::beginLine(unsigned long line)
{
    const image::StripMargins& margins = m_strip->getMargins();
    const image::eStripAxis axis = m_strip->getAxis();
    const unsigned long nbElements = margins.getStart(axis) + 1 + margins.getEnd(axis);
    const unsigned long nbLines = m_strip->getNbLinesOfElement(), element = line / nbLines;
    m_firstElement = static_cast<long>(m_strip->getStripStartOffset() + element) - static_cast<long>(margins.getStart(axis));
    m_row = line % nbLines;
    const long last = m_firstElement + static_cast<long>(nbElements) - 1;
    if (m_onDemand) {
        m_nextLine = m_strip->getImageLine(last, static_cast<long>(m_row + margins.getRowEnd(axis) + 1));
        return;
    }
    if (line == 0) {
        for (unsigned long i = 0; i < nbElements; ++i)
            load(i, m_firstElement + static_cast<long>(i));
    } else if (m_row == 0) {
        m_elements.rollUpFragments();
        load(nbElements - 1, last);
    }
    // Past the strip's last element there is none: margins that were copied end with it.
    const bool isLast = element + 1 == m_strip->getNbElements();
    m_nextLine = isLast ? nullptr : m_strip->getImageLine(last + 1, static_cast<long>(m_row));
}

template<class Mode, class Attr, class StorageAttr>
boost::shared_ptr<processor::BaseDataParser>
StripParserInfo<Mode, Attr, StorageAttr>::createParser(const boost::shared_ptr<Attr>& attribute)
{
    boost::shared_ptr<processor::BaseDataParser> parser;
    image::withSampleType(image::toDataType(attribute->getImageBufferType()), [&](auto sample) {
        typedef decltype(sample) T;
        if constexpr (!std::is_same<T, double>::value) {
            const auto typed = makeTogether<typename StripParserClass<Mode, T, StorageAttr>::type>();
            typed->init(attribute->getStorage());
            parser = typed;
        }
    });
    return parser;
}

#define ORVIK_PARSER_INFO(Mode, Attr) template struct StripParserInfo<Mode, Attr, Attr>;
#define ORVIK_PLAIN_PARSER_INFO(Attr) \
    ORVIK_PARSER_INFO(RawStripParserMode, Attr) \
    ORVIK_PARSER_INFO(LineStripParserMode, Attr)
ORVIK_PLAIN_PARSER_INFO(BaseInputYStrip2dAttribute)
ORVIK_PLAIN_PARSER_INFO(BaseOutputYStrip2dAttribute)
ORVIK_PLAIN_PARSER_INFO(BaseInputZStrip3dAttribute)
ORVIK_PLAIN_PARSER_INFO(BaseOutputZStrip3dAttribute)
ORVIK_PARSER_INFO(LineStripParserMode, BaseInputYStrip2dWithKernelAttribute)
ORVIK_PARSER_INFO(LineStripParserMode, BaseInputZStrip3dWithKernelAttribute)

}}  // namespace orvik::imaproc
