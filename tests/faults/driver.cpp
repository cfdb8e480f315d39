// Makes one public call, the first one of its process, with one of its allocations failing, and then twice as it is.
//
// usage: faultDriver                          names of all calls
//        faultDriver CALL THREADS [N]         with tests/faults/preload.c before it: allocation N fails
//
// 0: as it should be. 50: as well, but the call has fewer allocations. Else, or by a signal: a fault.

#include "PublicCalls.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

extern "C" {
__attribute__((weak)) void orvikFailAllocation(long n);
__attribute__((weak)) long orvikNbFailedAllocations();
}

namespace {

using namespace orvik;
using namespace orvik::test;

int fault(const char* what)
{
    std::fprintf(stderr, "%s\n", what);
    return 1;
}

int check(const PublicCall& call, long n)
{
    std::function<Numbers()> first;
    try {
        if (n >= 0)
            orvikFailAllocation(n);
        first = call.call();
    } catch (const std::bad_alloc&) {
    } catch (const std::exception& e) {
        return fault(e.what());
    }
    if (n >= 0)
        orvikFailAllocation(-1);
    const bool failed = n >= 0 && orvikNbFailedAllocations() > 0;
    if (!failed && !first)
        return fault("the call failed without a reason");
    const Numbers again = call.call()(), expected = call.call()();
    if (again.empty() || !same(expected, again) || (first && !same(expected, first())))
        return fault("the results differ");
    return n >= 0 && !failed ? 50 : 0;
}

}  // namespace

int main(int argc, char** argv)
{
    const std::vector<PublicCall> calls = publicCalls();
    if (argc < 3) {
        for (const PublicCall& call : calls)
            std::puts(call.name.c_str());
        return 0;
    }
    const long n = argc > 3 ? std::atol(argv[3]) : -1;
    if (n >= 0 && !orvikFailAllocation)
        return fault("the library of tests/faults/preload.c is not loaded");
    alarm(60);  // a hang ends by a signal
    core::setNbThreads(static_cast<unsigned int>(std::atoi(argv[2])));
    core::setStripGrain(3);
    for (const PublicCall& call : calls)
        if (call.name == argv[1])
            return check(call, n);
    return fault("there is no such call");
}
