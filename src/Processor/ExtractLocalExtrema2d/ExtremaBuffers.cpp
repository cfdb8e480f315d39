#include "Processor/ExtractLocalExtrema2d/ExtremaBuffers.h"

#include "frame/image/Border.h"
#include "frame/processor/BaseDataParser.h"

namespace orvik { namespace imaproc { namespace fd {

void initLowest(image::TypedOwnBuffer& buffer, eDataType type, unsigned long size)
{
    buffer.init(size, type);
    image::fillBorder(image::valuedMinBorder2d(), type, buffer.getDataPtr(), size);
}

void initLowest(image::FragHybridBuffer& lines, eDataType type, unsigned long lineSize, unsigned long nbLines)
{
    lines.init(type, lineSize, nbLines);
    for (unsigned long i = 0; i < nbLines; ++i)
        image::fillBorder(image::valuedMinBorder2d(), type, lines.getDataPtr(i), lineSize);
}

void ExtremaScratch::init(eDataType type, unsigned long lineSize, unsigned long width)
{
    halfWidth = width;
    // Whole vectors, and as many again beyond the margins.
    const unsigned long withMargins = processor::alignedCount(lineSize, g_vectorRoom) + 2 * width + g_vectorRoom;
    initLowest(lowest, type, withMargins);
    initLowest(row, type, withMargins + g_vectorRoom);  // some of it before the line
    initLowest(side, type, withMargins + width);
}

void ExtremaBuffers::init(eDataType type, unsigned long lineSize, unsigned long height)
{
    halfHeight = height;
    const unsigned long sizeX = processor::alignedCount(lineSize, g_vectorRoom);
    initLowest(prefix, type, sizeX);
    initLowest(fold, type, sizeX);
    initLowest(lines, type, sizeX, height);
    const unsigned long wordBits = 64;
    nbWords = sizeX / wordBits;
    open.assign(nbWords * (height + 1), 0);
}

}}}  // namespace orvik::imaproc::fd
