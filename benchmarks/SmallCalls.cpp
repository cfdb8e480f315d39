// What a call costs that has next to nothing to compute: heap allocations and time on an image of 16 x 16 samples, by
// one thread.
//
//     build/benchmarks/bin/SmallCalls

#include "ORVIKIPLFeatureDetection.h"
#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl1.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
}

namespace {
unsigned long g_nbAllocations = 0;
}

// In place of the C library's, which all allocations of the process go through; visible, since only then they do.
extern "C" __attribute__((visibility("default"))) void* malloc(std::size_t size)
{
    ++g_nbAllocations;
    return __libc_malloc(size);
}
extern "C" __attribute__((visibility("default"))) void* calloc(std::size_t n, std::size_t size)
{
    ++g_nbAllocations;
    return __libc_calloc(n, size);
}
extern "C" __attribute__((visibility("default"))) void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    ++g_nbAllocations;
    return __libc_memalign(alignment, size);
}

namespace {

using namespace orvik;
using namespace orvik::imaproc;

struct SmallCall
{
    const char* name;
    std::function<void()> run;
};

double medianMicroseconds(const std::function<void()>& run)
{
    const int nbRounds = 41, nbCalls = 50;
    std::vector<double> taken;
    for (int round = 0; round < nbRounds; ++round) {
        const auto begin = std::chrono::steady_clock::now();
        for (int i = 0; i < nbCalls; ++i)
            run();
        const std::chrono::duration<double, std::micro> all = std::chrono::steady_clock::now() - begin;
        taken.push_back(all.count() / nbCalls);
    }
    std::sort(taken.begin(), taken.end());
    return taken[taken.size() / 2];
}

}  // namespace

int main()
{
    core::setNbThreads(1);
    std::vector<float> samples(256), others(256);
    std::vector<unsigned char> edges(256);
    for (unsigned long i = 0; i < 256; ++i) {
        samples[i] = static_cast<float>(i * 7 % 31);
        others[i] = static_cast<float>(i * 5 % 23);
        edges[i] = i % 17 == 0;
    }
    const auto wrap = [](const void* data, image::eImageBufferType type) { return image::wrapBuffer(data, type, {16, 16}); };
    const auto gx = wrap(samples.data(), image::eIBT_Real32), gy = wrap(others.data(), image::eIBT_Real32);
    const auto binary = wrap(edges.data(), image::eIBT_Binary);
    const auto thresholds = attr::CannyThresholds::createNode(3.0, 7.0);
    const SmallCall calls[] = {
        {"maxL2Norm2Msr", [&] { fd::maxL2Norm2Msr(gx, gy); }},
        {"cannyEdges2dImg", [&] { fd::cannyEdges2dImg(gx, gy, thresholds); }},
        {"gaussianGradient2dImg", [&] { filter::gaussianGradient2dImg(gx, 1.0f); }},
        {"harrisCorner2dImg", [&] { fd::harrisCorner2dImg(gx); }},
        {"harrisCorner2d", [&] { fd::harrisCorner2d(gx, 10, 3); }},
        {"extractLocalExtrema2d", [&] { fd::extractLocalExtrema2d(gx, 3, 3); }},
        {"houghLines2dImg", [&] { fd::houghLines2dImg(binary); }},
        {"houghLines2d", [&] { fd::houghLines2d(binary); }},
    };
    for (const SmallCall& call : calls) {
        call.run();  // what is made once per process
        const unsigned long before = g_nbAllocations;
        call.run();
        const unsigned long nbAllocations = g_nbAllocations - before;
        std::printf("%-22s %5lu allocations %8.1f us\n", call.name, nbAllocations, medianMicroseconds(call.run));
    }
}
