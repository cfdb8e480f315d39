#include "Processor/HoughLines2dImg/HoughLinesRowsMutexColl.h"

namespace orvik { namespace imaproc { namespace fd {

void HoughLinesRowsMutexColl::lock(unsigned long row)
{
    m_mutexes[row].lock();
}

void HoughLinesRowsMutexColl::unlock(unsigned long row)
{
    m_mutexes[row].unlock();
}

}}}  // namespace orvik::imaproc::fd
