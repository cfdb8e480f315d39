#include "Processor/ExtractLocalExtrema3d/VolumeExtremaBuffers.h"

#include "frame/processor/BaseDataParser.h"

namespace orvik { namespace imaproc { namespace fd {

void SliceExtremaBuffers::init(eDataType type, unsigned long lineSize, unsigned long width, unsigned long height)
{
    halfHeight = height;
    const unsigned long sizeX = processor::alignedCount(lineSize, g_vectorRoom);
    const unsigned long withMargins = sizeX + 2 * width + 2 * g_vectorRoom;  // as of ExtremaScratch
    initLowest(rows, type, withMargins, height + 1);
    initLowest(sides, type, withMargins + width, height + 1);
    initLowest(lines, type, sizeX, height);
    initLowest(prefix, type, sizeX);
    initLowest(folds, type, sizeX, height + 2);
    haveNan.assign(height + 1, 0);
}

}}}  // namespace orvik::imaproc::fd
