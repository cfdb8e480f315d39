// The end of a process in the middle of its work, for tests/endsAndForks.py.
//
// usage: endDriver exit MILLISECONDS     threads make calls; `exit` after that time, by 7
//        endDriver fork                  after each call a process made by fork repeats it and ends by `exit`, by 7

#include "PublicCalls.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace orvik;
using namespace orvik::test;

void startThreads()
{
    for (int i = 0; i < 4; ++i)
        std::thread([i] {
            const std::vector<PublicCall> calls = publicCalls();
            for (std::size_t k = static_cast<std::size_t>(i);; ++k)
                try {
                    calls[k % calls.size()].call();
                    core::setNbThreads(static_cast<unsigned int>(k / 7 % 5));
                    imaproc::fd::maxL2Norm2Msr(nullptr, nullptr);
                } catch (const std::exception&) {
                }
        }).detach();
}

int forkAndCall(const std::vector<PublicCall>& calls)
{
    for (const PublicCall& call : calls) {
        const Numbers expected = call.call()();
        if (fork() == 0) {
            alarm(60);  // a hang ends by a signal
            std::exit(same(expected, call.call()()) ? 7 : 1);
        }
        int status = 0;
        wait(&status);
        if (status != 7 << 8) {
            std::fprintf(stderr, "%s: the other process ended by status %d\n", call.name.c_str(), status);
            return 1;
        }
    }
    return 7;
}

}  // namespace

int main(int argc, char** argv)
{
    alarm(120);
    core::setStripGrain(3);
    if (argc == 3 && std::strcmp(argv[1], "exit") == 0) {
        startThreads();
        std::this_thread::sleep_for(std::chrono::milliseconds(std::atoi(argv[2])));
        std::exit(7);
    }
    if (argc != 2 || std::strcmp(argv[1], "fork") != 0)
        return 2;
    return forkAndCall(publicCalls());
}
