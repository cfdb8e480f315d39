#include "frame/core/Scheduler.h"

#include "frame/core/Environment.h"
#include "frame/core/ThreadPool.h"

#include <atomic>
#include <cstdlib>
#include <string>

namespace orvik { namespace core {

namespace {

std::atomic<unsigned int> g_requestedThreads(0);
std::atomic<unsigned long> g_stripGrain(0);

unsigned int defaultNbThreads()
{
    static const unsigned int nb = [] {
        const char* const variable = "ORVIK_NUM_THREADS";
        const std::string text = readEnvironment(variable);
        char* end = nullptr;
        const long asked = std::strtol(text.c_str(), &end, 10);
        const bool isNumber = *end == '\0' && asked >= 0 && asked <= 1024;  // 0 or nothing stands for the processors
        if (!isNumber)
            warnOfEnvironment(variable, text, "1 to 1024");
        return isNumber && asked > 0 ? static_cast<unsigned int>(asked) : getNbProcessors();
    }();
    return nb;
}

}  // namespace

void setNbThreads(unsigned int nbThreads)
{
    g_requestedThreads = nbThreads;
}

unsigned int getNbThreads()
{
    const unsigned int requested = g_requestedThreads;
    return requested ? requested : defaultNbThreads();
}

void setStripGrain(unsigned long nbLines)
{
    g_stripGrain = nbLines;
}

unsigned long getStripGrain()
{
    return g_stripGrain;
}

const char* getCancelledText()
{
    return "The run was cancelled on request";
}

}}  // namespace orvik::core
