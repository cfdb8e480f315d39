#include "siblings/Filtering/FilteringMessages.h"

namespace orvik { namespace imaproc { namespace filter {

LogMessageManager& getORVIKIPLFilteringLogMessageManager()
{
    typedef eFilteringRuleMessage E;
    static LogMessageManager& manager = []() -> LogMessageManager& {
        LogMessageManager& filled = LogMessageManager::getInstance("ORVIKIPLFiltering");
        filled.addMessage(E::eFiniteAboveZero, "%s is a finite number above 0");
        filled.addMessage(E::eNotFiniteAboveZero, "%s is %s, it must be a finite number above 0");
        filled.addMessage(E::eKernelFits, "half-size of the kernel of %s and %s is at most %s");
        filled.addMessage(E::eKernelSize,
                          "%s is %s and %s is %s, which makes a kernel of half-size %s, it must be at most %s");
        filled.addMessage(E::eNoOutput, "outX and outY are both null");
        filled.addMessage(E::eNoOutputOfThree, "outX, outY and outZ are all null");
        return filled;
    }();
    return manager;
}

}}}  // namespace orvik::imaproc::filter
