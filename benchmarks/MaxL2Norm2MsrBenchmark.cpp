// The global measure against a loop that only reads both images, and 8-bit samples against the plain kernel.

#include "Ratios.h"

#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl1.h"
#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl3.h"

#include "frame/core/Scheduler.h"
#include "frame/image/BaseImage.h"

#include <cstring>

using namespace orvik;

namespace {

typedef boost::shared_ptr<image::BaseImage> ImagePtr;

ImagePtr noise(image::eImageBufferType type, unsigned long size, unsigned int seed)
{
    const ImagePtr image = image::createImage(type, {size, size});
    image::withSampleType(image::toDataType(type), [&](auto zero) {
        typedef decltype(zero) Sample;
        for (unsigned long y = 0; y < size; ++y) {
            Sample* const line = static_cast<Sample*>(image->accessLine(y));
            for (unsigned long x = 0; x < size; ++x) {
                seed = seed * 1664525u + 1013904223u;
                line[x] = static_cast<Sample>(seed >> 24);
            }
        }
    });
    return image;
}

/// Reads every byte of both images and keeps the loads from being left out; as wide as the machine's vectors.
__attribute__((target_clones("avx512f", "avx2", "default"))) unsigned long readBoth(const image::BaseImage& a,
                                                                                    const image::BaseImage& b)
{
    typedef unsigned long V __attribute__((vector_size(64)));
    const unsigned long lineBytes = a.getSizeX() * image::getImageBufferBaseSize(a.getBufferType());
    V any[2] = {};
    for (unsigned long y = 0; y < a.getSizeY(); ++y) {
        const char* const lineA = static_cast<const char*>(a.getLine(y));
        const char* const lineB = static_cast<const char*>(b.getLine(y));
        for (unsigned long i = 0; i + 64 <= lineBytes; i += 64) {
            V v[2];
            std::memcpy(v, lineA + i, 64);
            std::memcpy(v + 1, lineB + i, 64);
            any[0] |= v[0];
            any[1] |= v[1];
        }
    }
    const V all = any[0] | any[1];
    unsigned long result = 0;
    for (int k = 0; k < 8; ++k)
        result |= all[k];
    return result;
}

void registerSize(unsigned long size)
{
    const ImagePtr a = noise(image::eIBT_Real32, size, 1), b = noise(image::eIBT_Real32, size, 2);
    benchmark::RegisterBenchmark(("read_float_" + std::to_string(size)).c_str(), [a, b](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(readBoth(*a, *b));
    })->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("measure_float_" + std::to_string(size)).c_str(), [a, b](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(imaproc::fd::maxL2Norm2Msr(a, b));
    })->Unit(benchmark::kMillisecond);
}

}  // namespace

int main(int argc, char** argv)
{
    core::setNbThreads(1);
    registerSize(4096);
    registerSize(4000);
    const ImagePtr a = noise(image::eIBT_UInt8, 4096, 3), b = noise(image::eIBT_UInt8, 4096, 4);
    const auto measure = [a, b](benchmark::State& state, bool plain) {
        core::InstructionSetsIdentifier generic;
        generic.init(core::eIS_Generic);
        if (plain)
            imaproc::fd::MaxL2Norm2MsrLvl3::forceInstructionSets(generic);
        for (auto _ : state)
            benchmark::DoNotOptimize(imaproc::fd::maxL2Norm2Msr(a, b));
        imaproc::fd::MaxL2Norm2MsrLvl3::releaseForcedInstructionSets();
    };
    benchmark::RegisterBenchmark("measure_uint8", measure, false)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("measure_uint8_plain", measure, true)->Unit(benchmark::kMillisecond);
    const ImagePtr small = noise(image::eIBT_Real32, 16, 5);
    benchmark::RegisterBenchmark("call_16x16", [small](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(imaproc::fd::maxL2Norm2Msr(small, small));
    })->Unit(benchmark::kMicrosecond);
    return bench::runBenchmarks(
        argc, argv,
        {{"measure, float, 4096 x 4096, over a loop that only reads", "measure_float_4096", "read_float_4096",
          "at most 1.3"},
         {"measure, float, 4000 x 4000, over a loop that only reads", "measure_float_4000", "read_float_4000",
          "at most 1.3"},
         {"plain kernel over the best one, 8 bits", "measure_uint8_plain", "measure_uint8", "at least 6"}});
}
