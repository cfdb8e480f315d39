#include "Interruption.h"

#include <csignal>

namespace orvik::examples {

namespace {

volatile std::sig_atomic_t g_signal = 0;

extern "C" void noteSignal(int signal)
{
    g_signal = signal;
}

}  // namespace

void noteInterruptions()
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action = {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler == SIG_IGN)
            continue;
        action = {};
        action.sa_handler = noteSignal;
        action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
        sigaction(signal, &action, nullptr);
    }
}

void throwIfInterrupted()
{
    if (g_signal != 0)
        throw Interrupted();
}

void endByInterruption()
{
    std::signal(g_signal, SIG_DFL);
    std::raise(g_signal);
}

}  // namespace orvik::examples
