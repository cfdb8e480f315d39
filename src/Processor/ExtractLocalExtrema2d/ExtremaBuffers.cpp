#include "Processor/ExtractLocalExtrema2d/ExtremaBuffers.h"

#include "frame/image/Border.h"
#include "frame/processor/BaseDataParser.h"

namespace orvik { namespace imaproc { namespace fd {

void ExtremaBuffers::init(eDataType type, unsigned long lineSize, unsigned long width, unsigned long height)
{
    halfWidth = width;
    halfHeight = height;
    // Whole vectors of any set, and as many again beyond the margins.
    const unsigned long vectors = 256, sizeX = processor::alignedCount(lineSize, vectors);
    const unsigned long withMargins = sizeX + 2 * width + vectors;
    const auto initLowest = [type](image::TypedOwnBuffer& buffer, unsigned long size) {
        buffer.init(size, type);
        image::fillBorder(image::valuedMinBorder2d(), type, buffer.getDataPtr(), size);
    };
    initLowest(lowest, withMargins);
    initLowest(row, withMargins + vectors);  // some of it before the line
    initLowest(side, withMargins + width);
    initLowest(prefix, sizeX);
    initLowest(fold, sizeX);
    lines.init(type, sizeX, height);
    for (unsigned long i = 0; i < height; ++i)
        image::fillBorder(image::valuedMinBorder2d(), type, lines.getDataPtr(i), sizeX);
    const unsigned long wordBits = 64;
    nbWords = sizeX / wordBits;
    open.assign(nbWords * (height + 1), 0);
}

}}}  // namespace orvik::imaproc::fd
