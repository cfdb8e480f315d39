#include "Processor/ShellBuffers.h"

#include "frame/processor/BaseDataParser.h"

#include <algorithm>

namespace orvik { namespace imaproc { namespace fd {

void ShellBuffers::initGather(unsigned long nbAligned, unsigned long nbRows, unsigned long nbSlices, long radius)
{
    const unsigned long reach = 2 * static_cast<unsigned long>(radius) + 1, block = 64;
    pitch = processor::alignedCount(nbAligned + reach, block);
    slices.init(eDT_Real32, 4 * pitch * nbRows, std::min(reach, nbSlices));
    outside.init(4 * pitch + block, eDT_Real32);
    std::fill_n(static_cast<float*>(outside.getDataPtr()) + 3 * pitch, pitch, 1.0f);
}

}}}  // namespace orvik::imaproc::fd
