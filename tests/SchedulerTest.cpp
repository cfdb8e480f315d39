// Runs on several threads, in the background, cancelled, failing.

#include "HookRuns.h"
#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl1.h"
#include "TestImages.h"
#include "TestRuns.h"
#include "TinyProcessor.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace orvik::test { namespace {

using namespace imaproc;
using namespace imaproc::tiny;
using namespace processor;
using image::ImageSizes;

void waitFor(const std::atomic<bool>& happened)
{
    while (!happened)
        std::this_thread::sleep_for(std::chrono::microseconds(100));
}

/// Holds up lines until it is opened.
struct Gate
{
    BoolResult pass()
    {
        hasArrived = true;
        waitFor(isOpen);
        return success();
    }
    std::atomic<bool> hasArrived{false}, isOpen{false};
};

struct OddFailure : std::runtime_error
{
    explicit OddFailure(unsigned long y) : std::runtime_error("odd failure of line " + std::to_string(y)) {}
};

/// Runs f(i) on each of so many threads.
template<class F>
void onThreads(unsigned int number, const F& f)
{
    std::vector<std::thread> threads;
    for (unsigned int i = 0; i < number; ++i)
        threads.emplace_back(f, i);
    for (std::thread& thread : threads)
        thread.join();
}

/// What a line does whose run is to end early: it takes so long that a thread which is held up on its way to telling the
/// end finds most lines left.
BoolResult takeTime()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return success();
}

// --- threads

TEST(Threads, AsManyAsAskedForWorkOnTheLinesOfOnePlane)
{
    const int nbThreads = 3;
    const WithThreads threads(nbThreads);
    const WithGrain fine(1);
    for (const bool inBackground : {false, true}) {  // where the caller is not one of them
        std::mutex mutex;
        std::condition_variable changed;
        int nbInside = 0;
        bool met = false;
        const OnLine onLine([&](unsigned long) {
            std::unique_lock<std::mutex> lock(mutex);
            met = ++nbInside == nbThreads || met;
            changed.notify_all();
            changed.wait_for(lock, std::chrono::seconds(5), [&] { return met; });
            --nbInside;
            return success();
        });
        const auto hook = hookOn(blank(2, 20));
        if (inBackground)
            listsOf(startInBackground(hook));
        else
            executeSyncRun(hook);
        EXPECT_TRUE(met) << (inBackground ? "in the background" : "at once");
    }
}

TEST(Threads, OneThreadRunsEverythingInOrderOnTheCallersOwn)
{
    const WithThreads one(1);
    const WithGrain fine(1);
    std::vector<unsigned long> lines;
    const std::thread::id caller = std::this_thread::get_id();
    const OnLine onLine([&](unsigned long y) {
        EXPECT_EQ(caller, std::this_thread::get_id());
        lines.push_back(y);
        return success();
    });
    executeSyncRun(hookOn(blank(2, 5)));
    EXPECT_EQ((std::vector<unsigned long>{0, 1, 2, 3, 4}), lines);
}

TEST(Threads, AFailureStopsTheHandingOutAndItsTextArrives)
{
    const WithGrain fine(1);
    for (const unsigned int nbThreads : {1, 4}) {
        const WithThreads threads(nbThreads);
        std::atomic<unsigned int> nbLines{0};
        const OnLine onLine([&](unsigned long y) {
            ++nbLines;
            return y == 3 ? failure("line 3 is bad") : takeTime();
        });
        const auto hook = hookOn(blank(2, 20000));
        EXPECT_EQ("line 3 is bad", runRefusal(hook));
        if (nbThreads == 1) {
            EXPECT_EQ(4u, nbLines);
        } else {
            EXPECT_LT(nbLines, 20000u);
        }
    }
}

TEST(Threads, AnExceptionOfAnyThreadArrivesUnchanged)
{
    const WithGrain fine(1);
    const auto hook = hookOn(blank(2, 40, 2));
    for (const unsigned int nbThreads : {1, 2, 4})
        for (unsigned long bad = 0; bad < 40; bad += 3) {
            const WithThreads threads(nbThreads);
            const OnLine onLine([&](unsigned long y) -> BoolResult {
                if (y == bad)
                    throw OddFailure(y);
                return success();
            });
            EXPECT_EQ("odd failure of line " + std::to_string(bad), thrownText<OddFailure>([&] { executeSyncRun(hook); }));
        }
}

TEST(Threads, SeveralCallersAtOnceGetTheirOwnResults)
{
    for (const unsigned int nbThreads : {1, 3}) {
        const WithThreads threads(nbThreads);
        const WithGrain fine(4);
        std::atomic<int> nbWrong{0};
        onThreads(6, [&](unsigned int seed) {
            const ImagePtr image = randomImage(image::eIBT_Int8, ImageSizes(5, 30, 2), seed);
            const double largest = fd::maxL2Norm2Msr(image, image);
            const auto hook = hookOn(image);
            for (int i = 0; i < 20; ++i) {
                executeSyncRun(hook);
                nbWrong += linesOf(*hook->getStorage<OutPIMarks>()) != expectedLines(*image);
                nbWrong += fd::maxL2Norm2Msr(image, image) != largest;
                nbWrong += fd::getAsyncProcessorOutput(fd::maxL2Norm2Msr_async(image, image)) != largest;
            }
        });
        EXPECT_EQ(0, nbWrong);
    }
}

TEST(Threads, ARunMayStartAnotherFromItsOwnLines)
{
    const WithThreads threads(3);
    const WithGrain fine(1);
    const ImagePtr image = randomImage(image::eIBT_UInt8, ImageSizes(70, 9));
    const ImagePtr zero = blank(70, 9);
    const double expected = fd::maxL2Norm2Msr(image, zero);
    std::atomic<int> nbRight{0};
    const OnLine onLine([&](unsigned long) {
        nbRight += fd::maxL2Norm2Msr(image, zero) == expected;
        return success();
    });
    executeSyncRun(hookOn(image));
    EXPECT_EQ(9, nbRight);
}

// --- background

TEST(Background, ARunReturnsAtOnceAndCanBeWaitedForButNotStartedAgain)
{
    for (const unsigned int nbThreads : {1, 3}) {
        const WithThreads threads(nbThreads);
        Gate gate;
        const OnLine onLine([&](unsigned long) { return gate.pass(); });
        const ImagePtr image = randomImage(image::eIBT_UInt8, ImageSizes(2, 6));
        const auto hook = hookOn(image);
        EXPECT_FALSE(hook->isRunning());
        hook->waitForEnd();
        ASSERT_TRUE(hook->run(core::eST_Asynchronous).getValue());
        waitFor(gate.hasArrived);
        EXPECT_TRUE(hook->isRunning());
        EXPECT_FALSE(hook->waitForEnd(1));
        EXPECT_FALSE(hook->hasFailed());
        const std::string text = "orvik::imaproc::tiny::HookLvl1 is running already";
        EXPECT_EQ(text, hook->run(core::eST_Asynchronous).getMessage());
        EXPECT_EQ(text, hook->run(core::eST_Synchronous).getMessage());
        EXPECT_EQ(text, runRefusal(hook));
        gate.isOpen = true;
        EXPECT_TRUE(hook->waitForEnd(std::numeric_limits<unsigned long>::max()));
        EXPECT_EQ(expectedLines(*image), linesOf(*listsOf(hook)));
        EXPECT_FALSE(hook->isRunning());
        EXPECT_EQ("", hook->getErrorMessage());
        EXPECT_TRUE(hook->run(core::eST_Synchronous).getValue()) << "once ended it runs again";
    }
}

TEST(Background, OneProcessorThatSeveralThreadsRunTellsEachOfItsFailure)
{
    const auto hook = hookOn(nullptr);
    std::atomic<int> nbLost{0};
    onThreads(3, [&](unsigned int) {
        for (int k = 0; k < 20000; ++k)
            try {
                executeSyncRun(hook);
                ++nbLost;
            } catch (const std::exception&) {
            }
    });
    EXPECT_EQ(0, nbLost);
}

TEST(Background, OnlyAProcessorThatASharedPointerHoldsCanBeStarted)
{
    HookLvl1 hook;
    EXPECT_EQ("orvik::imaproc::tiny::HookLvl1 can't run in the background: no shared pointer holds it",
              hook.run(core::eST_Asynchronous).getMessage());
    EXPECT_FALSE(hook.isRunning());
}

TEST(Background, AFailureIsKeptForWhoeverAsks)
{
    const auto hook = hookOn(blank(2, 3));
    {
        const OnLine onLine([](unsigned long) -> BoolResult { throw OddFailure(0); });
        ASSERT_TRUE(hook->run(core::eST_Asynchronous).getValue());
        EXPECT_EQ("odd failure of line 0", thrownText<OddFailure>([&] { listsOf(hook); }));
    }
    EXPECT_TRUE(hook->hasFailed());
    EXPECT_EQ("odd failure of line 0", hook->getErrorMessage());
    EXPECT_EQ("odd failure of line 0", thrownText<OddFailure>([&] { hook->rethrowFailure(); }));
    EXPECT_TRUE(hook->run(core::eST_Synchronous).getValue());
    EXPECT_FALSE(hook->hasFailed());

    hook->set<InTinyImg>(nullptr);
    ASSERT_TRUE(hook->run(core::eST_Asynchronous).getValue()) << "the rule is part of the run";
    hook->waitForEnd();
    EXPECT_EQ("HookLvl1 refuses to run: mandatory attribute InTinyImg has no value (unset or null)",
              hook->getErrorMessage());
}

TEST(Background, WhoHasWaitedForTheEndHoldsTheLastPointer)
{
    const auto hook = hookOn(blank(2, 1));
    int nbHeldElsewhere = 0;
    for (int i = 0; i < 5000; ++i) {
        hook->run(core::eST_Asynchronous);
        hook->waitForEnd();
        nbHeldElsewhere += hook.use_count() != 1;
    }
    EXPECT_EQ(0, nbHeldElsewhere) << "a library that is unloaded now would be missed";
}

/// A run of which each line takes a millisecond: uncancelled it would take more than an hour.
boost::shared_ptr<HookLvl1> endlessHook(std::atomic<bool>& started)
{
    Hook::s_onLine = [&](unsigned long) {
        started = true;
        return takeTime();
    };
    return hookOn(blank(1, 4000000));
}

/// Ends the process by 7 where the runs of other threads, and in the background, have ended when `exit` comes to what was registered before the first
/// run, and others are refused from then on.
[[noreturn]] void endWhileAnotherThreadRuns(unsigned int nbThreads)
{
    static std::atomic<bool> started(false);
    static std::atomic<bool> ended(false);
    static const ImagePtr image = blank(3, 3);
    static const auto inBackground = hookOn(blank(1, 4000000));
    std::atexit([] {
        const std::string text = "No run can be started any more: the process is ending";
        const bool refused = runRefusal(hookOn(image)) == text && refusalOf([] { fd::maxL2Norm2Msr(image, image); }) == text
                             && refusalOf([] { fd::getAsyncProcessorOutput(fd::maxL2Norm2Msr_async(image, image)); })
                                    == text;
        _exit(ended && refused && !inBackground->isRunning() ? 7 : 8);
    });
    core::setNbThreads(nbThreads);
    const auto hook = endlessHook(started);
    std::thread([hook] {
        try {
            executeSyncRun(hook);
        } catch (const std::exception&) {
            ended = true;
        }
        for (;;)
            pause();
    }).detach();
    waitFor(started);
    inBackground->run(core::eST_Asynchronous);
    std::exit(1);
}

[[noreturn]] void endInACallback(core::eSynchroType synchro, unsigned int nbThreads)
{
    core::setNbThreads(nbThreads);
    core::setStripGrain(1);
    const auto hook = hookOn(blank(2, 50));
    hook->setProgressCallback([](double) { std::exit(7); });
    hook->run(synchro);
    for (;;)
        pause();
}

TEST(ProcessEnd, WaitsForTheRunsOfOtherThreadsThenRefusesThemAndMayBeginInACallback)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    for (const unsigned int nbThreads : {1, 3}) {
        EXPECT_EXIT(endWhileAnotherThreadRuns(nbThreads), ::testing::ExitedWithCode(7), "");
        EXPECT_EXIT(endInACallback(core::eST_Synchronous, nbThreads), ::testing::ExitedWithCode(7), "");
        EXPECT_EXIT(endInACallback(core::eST_Asynchronous, nbThreads), ::testing::ExitedWithCode(7), "");
    }
}

// --- cancellation and progress

TEST(Cancellation, EndsTheRunInTheMiddleAndSaysSo)
{
    for (const unsigned long grain : {1, 0})
        for (const unsigned int nbThreads : {1, 3}) {
            const WithThreads threads(nbThreads);
            const WithGrain strips(grain);
            const auto hook = hookOn(blank(2, 5000));
            std::atomic<int> nbLines{0};
            Gate requested;
            const OnLine onLine([&](unsigned long) {
                const int nb = ++nbLines;
                if (nb == 10) {
                    hook->requestCancellation();
                    requested.isOpen = true;
                } else if (nb > 10) {
                    requested.pass();
                }
                return success();
            });
            hook->requestCancellation();  // of a run that is not yet
            ASSERT_TRUE(hook->run(core::eST_Asynchronous).getValue());
            hook->waitForEnd();
            EXPECT_GE(nbLines, 10);
            EXPECT_EQ("The run was cancelled on request", hook->getErrorMessage());
            EXPECT_LT(nbLines, 10 + static_cast<int>(nbThreads)) << "each other thread ended the line in its hand";
            hook->requestCancellation();
            EXPECT_TRUE(hook->run(core::eST_Synchronous).getValue()) << "a cancellation ends with its run";
        }
}

TEST(Progress, AnExceptionOfTheCallbackEndsTheRun)
{
    const WithGrain fine(1);
    for (const unsigned int nbThreads : {1, 3}) {
        const WithThreads threads(nbThreads);
        const auto hook = hookOn(blank(2, 2000));
        int nbThrown = 0;
        hook->setProgressCallback([&](double fraction) {
            if (fraction > 0.005) {
                ++nbThrown;
                std::this_thread::sleep_for(std::chrono::milliseconds(5));  // the others end their lines meanwhile
                throw OddFailure(0);
            }
        });
        std::atomic<int> nbLines{0};
        {
            const OnLine onLine([&](unsigned long) {
                ++nbLines;
                return takeTime();
            });
            EXPECT_EQ("odd failure of line 0", thrownText<OddFailure>([&] { executeSyncRun(hook); }));
        }
        EXPECT_LT(nbLines, 2000);
        EXPECT_EQ(1, nbThrown) << "a callback that threw is not called again";
        hook->setProgressCallback(nullptr);
        EXPECT_NO_THROW(executeSyncRun(hook));
    }
}

TEST(Progress, ACallbackMayReplaceItselfAndLivesUntilItReturns)
{
    const WithGrain fine(1);
    for (const unsigned int nbThreads : {1, 3}) {
        const WithThreads threads(nbThreads);
        const auto hook = hookOn(blank(2, 20));
        int nbCalls = 0, nbCallsOfNext = 0;
        const auto held = std::make_shared<int>(5);
        hook->setProgressCallback([&, held](double) {
            hook->setProgressCallback([&](double) { ++nbCallsOfNext; });
            EXPECT_EQ(2, held.use_count()) << "what it holds has gone";
            ++nbCalls;
        });
        executeSyncRun(hook);
        EXPECT_EQ(1, nbCalls);
        EXPECT_GE(nbCallsOfNext, 19);
        EXPECT_EQ(1, held.use_count());
    }
}

TEST(Progress, ACallbackMaySetAnotherWhenItIsDestroyed)
{
    const WithGrain fine(1);
    auto hook = hookOn(blank(2, 20));
    int nbGone = 0;
    const auto setCallback = [&] {
        const auto setAnother = [&nbGone, &held = *hook](void*) {
            held.setProgressCallback(nullptr);
            ++nbGone;
        };
        hook->setProgressCallback([holds = boost::shared_ptr<void>(nullptr, setAnother)](double) {});
    };
    setCallback();
    hook->setProgressCallback(nullptr);
    EXPECT_EQ(1, nbGone);
    setCallback();
    hook.reset();
    EXPECT_EQ(2, nbGone);
    hook = hookOn(blank(2, 20));
    setCallback();
    const OnLine onLine([&](unsigned long y) {
        if (y == 10)
            hook->setProgressCallback(nullptr);
        return success();
    });
    executeSyncRun(hook);
    EXPECT_EQ(3, nbGone);
}

TEST(Progress, ACallbackThatWasReplacedFromOutsideIsNotRunningAnyMore)
{
    const WithGrain fine(1);
    const WithThreads threads(2);
    const OnLine onLine([](unsigned long) { return takeTime(); });
    const auto hook = hookOn(blank(2, 200));
    for (int i = 0; i < 20; ++i) {
        const auto inside = std::make_shared<std::atomic<bool>>(false);
        hook->setProgressCallback([inside](double) {
            *inside = true;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            *inside = false;
        });
        if (!hook->isRunning())
            hook->run(core::eST_Asynchronous);
        for (int k = 0; k < 1000 && !*inside; ++k)
            std::this_thread::yield();
        hook->setProgressCallback(nullptr);
        EXPECT_FALSE(*inside);
    }
    hook->waitForEnd();
}

TEST(Progress, ACallbackMayRunAndAskButNotWait)
{
    const WithGrain fine(1);
    for (const core::eSynchroType synchro : {core::eST_Synchronous, core::eST_Asynchronous})
        for (const unsigned int nbThreads : {1, 3}) {
            const WithThreads threads(nbThreads);
            const auto hook = hookOn(blank(2, 20)), other = hookOn(blank(2, 20));
            hook->setProgressCallback([&](double) {
                EXPECT_TRUE(hook->isRunning() && !hook->hasFailed() && !hook->waitForEnd(1));
                EXPECT_EQ("orvik::imaproc::tiny::HookLvl1 is running already", hook->run(synchro).getMessage());
                EXPECT_TRUE(other->run(core::eST_Synchronous).getValue());
                hook->waitForEnd();
                ADD_FAILURE() << "it would wait for itself";
            });
            hook->run(synchro);
            hook->waitForEnd();
            EXPECT_EQ("orvik::imaproc::tiny::HookLvl1 is running: a progress callback can't wait for the end of a run, "
                      "which may need its thread",
                      hook->getErrorMessage());
        }
}

}  // namespace
}  // namespace orvik::test
