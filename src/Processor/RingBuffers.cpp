#include "Processor/RingBuffers.h"

#include "frame/processor/BaseDataParser.h"

#include <algorithm>

namespace orvik { namespace imaproc { namespace fd {

// Votes end within a vector of the widest set of where rings do.
static const unsigned long g_sideRoom = 16;

void RingBuffers::initGather(unsigned long nbAligned, long radius)
{
    const unsigned long reach = 2 * static_cast<unsigned long>(radius) + 1, block = 64;
    gradientsPitch = processor::alignedCount(nbAligned + reach, block) + block;
    gradients.init(eDT_Real32, 3 * gradientsPitch, reach);
}

unsigned long RingBuffers::votesPitch(unsigned long nbAligned, long radius)
{
    const unsigned long pitch =
        processor::alignedCount(nbAligned + 2 * static_cast<unsigned long>(radius) + 2 * g_sideRoom, g_sideRoom);
    const unsigned long page = 4096 / sizeof(float);  // lines at the same place of their pages would crowd each other out
    return pitch % page == 0 ? pitch + g_sideRoom : pitch;
}

void RingBuffers::initVotes(unsigned long nbAligned, long radius, unsigned int nbWeights)
{
    const unsigned long reach = 2 * static_cast<unsigned long>(radius) + 1, block = 64;
    pitch = votesPitch(nbAligned, radius);
    nbRows = 2 * reach;
    planeSize = nbRows * pitch;
    votes.assign(planeSize * nbWeights, 0.0f);
    firstRow = 1 - static_cast<long>(reach);
    line.assign(3 * processor::alignedCount(nbAligned, block), 0.0f);
    sources.reserve(2 * nbAligned);
}

}}}  // namespace orvik::imaproc::fd
