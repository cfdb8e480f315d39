// Runs that run out of memory, at each of their allocations in turn.

#include "HookRuns.h"
#include "PublicCalls.h"
#include "TestImages.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <thread>

// Memory of this whole program: the allocation that `g_failAfter` counts down to fails.
namespace {
std::atomic<long> g_failAfter{-1};
std::atomic<bool> g_failed{false};

bool mayAllocate()
{
    if (g_failAfter.load(std::memory_order_relaxed) < 0 || g_failAfter.fetch_sub(1) != 0)
        return true;
    g_failed = true;
    return false;
}
}  // namespace

// Not inlined: the compiler would see memory of malloc in one place and delete in another, and warn.
__attribute__((noinline)) void* operator new(std::size_t size)
{
    void* const block = mayAllocate() ? std::malloc(size ? size : 1) : nullptr;
    if (!block)
        throw std::bad_alloc();
    return block;
}

__attribute__((noinline)) void operator delete(void* block) noexcept
{
    std::free(block);
}

__attribute__((noinline)) void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // they need their own before this one could run
/// Where the frame has the memory of images from.
extern "C" __attribute__((visibility("default"))) void* calloc(std::size_t count, std::size_t size)
{
    // Not by malloc: the compiler would make a call of calloc of malloc and memset, and this one never end.
    void* block = nullptr;
    const bool given = mayAllocate() && posix_memalign(&block, alignof(std::max_align_t), count * size) == 0;
    return given ? std::memset(block, 0, count * size) : nullptr;
}
#endif

/// And that of lines.
extern "C" __attribute__((visibility("default"))) void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    void* block = nullptr;
    return mayAllocate() && posix_memalign(&block, alignment, size) == 0 ? block : nullptr;
}

namespace orvik::test { namespace {

using namespace imaproc;
using namespace processor;
using image::ImageSizes;

/// Runs `f` with its allocation number `n` failing; what it threw. `failed`: whether that many were asked for.
template<class F>
std::exception_ptr failAllocation(long n, bool& failed, F&& f)
{
    std::exception_ptr thrown;
    g_failed = false;
    g_failAfter = n;
    try {
        f();
    } catch (...) {
        thrown = std::current_exception();
    }
    g_failAfter = -1;
    failed = g_failed;
    return thrown;
}

TEST(Memory, ThatRunsOutInAPublicCallIsToldAndTheNextCallIsWhole)
{
#ifdef __SANITIZE_ADDRESS__
    const long stride = 7;  // each allocation takes minutes there
#else
    const long stride = 1;
#endif
    const WithGrain fine(3);
    for (const PublicCall& call : publicCalls())
        for (const unsigned int nbThreads : {1, 3}) {
            const WithThreads threads(nbThreads);
            const Numbers expected = call.call()();
            long n = 0;
            for (bool failed = true; failed; n += stride) {
                std::function<Numbers()> result;
                const std::exception_ptr thrown = failAllocation(n, failed, [&] { result = call.call(); });
                ASSERT_EQ(failed, thrown != nullptr) << call.name << ", allocation " << n << ", " << nbThreads << " threads";
                if (thrown) {
                    EXPECT_THROW(std::rethrow_exception(thrown), std::bad_alloc) << call.name << ", allocation " << n;
                    result = call.call();
                }
                ASSERT_TRUE(same(expected, result())) << call.name << ", allocation " << n;
            }
            EXPECT_GT(n, 20) << call.name;
        }
}

TEST(Memory, ThatRunsOutWhileAFailureIsToldLeavesAFailure)
{
    const WithThreads one(1);
    const std::string text = "a text that is too long for a string to hold without memory of its own";
    const OnLine onLine([&](unsigned long) { return failure(text); });
    const auto hook = hookOn(blank(2, 3));
    long n = 0;
    for (bool failed = true; failed; ++n) {
        const std::exception_ptr thrown = failAllocation(n, failed, [&] { executeSyncRun(hook); });
        try {
            ASSERT_TRUE(thrown) << "allocation " << n;
            std::rethrow_exception(thrown);
        } catch (const std::bad_alloc&) {
        } catch (const std::exception& e) {
            EXPECT_EQ(text, e.what()) << "allocation " << n;
        }
    }
}

TEST(Memory, ThatRunsOutWhileARunIsStartedLeavesItNotRunning)
{
    const WithThreads threads(2);
    const auto hook = hookOn(blank(2, 3));
    hook->run(core::eST_Asynchronous);  // makes the threads; what comes of that is another test's
    hook->waitForEnd();
    for (long n = 0; n < 40; ++n) {
        bool failed = false;
        const std::exception_ptr refused = failAllocation(n, failed, [&] {
            hook->run(core::eST_Asynchronous);
            for (int i = 0; i < 5000 && hook->isRunning(); ++i)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
        });
        ASSERT_FALSE(hook->isRunning()) << "allocation " << n;
        if (refused) {
            EXPECT_THROW(std::rethrow_exception(refused), std::bad_alloc) << "allocation " << n;
        }
        EXPECT_EQ(failed, refused || hook->hasFailed()) << "allocation " << n;
        EXPECT_TRUE(hook->run(core::eST_Synchronous).getValue()) << "after allocation " << n;
    }
}

}  // namespace
}  // namespace orvik::test
