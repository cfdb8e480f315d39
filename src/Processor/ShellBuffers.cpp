#include "Processor/ShellBuffers.h"

#include "frame/processor/BaseDataParser.h"

#include <algorithm>

namespace orvik { namespace imaproc { namespace fd {

// Groups of votes end within as much of where shells do.
static const unsigned long g_sideRoom = 16;
static const unsigned long g_page = 4096 / sizeof(float);  // lines at the same place of their pages crowd each other out

void ShellBuffers::initGather(unsigned long nbAligned, unsigned long nbRows, unsigned long nbSlices, long radius)
{
    const unsigned long reach = 2 * static_cast<unsigned long>(radius) + 1, block = 64;
    pitch = processor::alignedCount(nbAligned + reach, block);
    slices.init(eDT_Real32, 4 * pitch * nbRows, std::min(reach, nbSlices));
    outside.init(4 * pitch + block, eDT_Real32);
    std::fill_n(static_cast<float*>(outside.getDataPtr()) + 3 * pitch, pitch, 1.0f);
}

unsigned long ShellBuffers::linePitchFor(unsigned long nbAligned, long radius)
{
    return processor::alignedCount(nbAligned + 2 * static_cast<unsigned long>(radius) + 2 * g_sideRoom, g_sideRoom);
}

unsigned long ShellBuffers::slicePitchFor(unsigned long nbAligned, unsigned long nbRows, long radius)
{
    const unsigned long size = linePitchFor(nbAligned, radius) * (nbRows + 2 * static_cast<unsigned long>(radius));
    return size % g_page < g_sideRoom ? size + 2 * g_sideRoom : size;
}

void ShellBuffers::initVotes(unsigned long nbAligned, unsigned long nbRows, long radius)
{
    const unsigned long reach = 2 * static_cast<unsigned long>(radius) + 1, block = 64;
    linePitch = linePitchFor(nbAligned, radius);
    slicePitch = slicePitchFor(nbAligned, nbRows, radius);
    nbVoteSlices = reach + (reach + 7) / 8;  // some more, so that they seldom move
    votes.assign(nbVoteSlices * slicePitch, 0.0f);
    line.assign(4 * processor::alignedCount(nbAligned, block), 0.0f);
    sources.reserve(nbAligned);
}

}}}  // namespace orvik::imaproc::fd
