#include "Processor/PlaceRecords.h"

#include <unistd.h>

namespace orvik { namespace imaproc { namespace fd {

BoolResult checkMemory(const std::string& what, double bytes, bool isCountable)
{
    const double memory = static_cast<double>(sysconf(_SC_PHYS_PAGES)) * static_cast<double>(sysconf(_SC_PAGE_SIZE));
    if (isCountable && bytes < memory)
        return success();
    const double most = 18446744073709549568.0;  // that is told in digits
    return failure(what + " take " + (bytes < most ? std::to_string(static_cast<unsigned long>(bytes)) : "2^64 or more")
                   + " bytes, more than can be held");
}

}}}  // namespace orvik::imaproc::fd
