#pragma once

// What tests of runs share: the text of an expected exception, settings that end with their scope.

#include "frame/core/Scheduler.h"
#include "frame/processor/BaseProcessor.h"
#include "frame/util/BaseException.h"

#include <gtest/gtest.h>

#include <string>

namespace orvik::test {

/// The text of the exception of exactly type `E` that `f` must raise.
template<class E, class F>
std::string thrownText(F&& f)
{
    try {
        f();
    } catch (const std::exception& e) {
        EXPECT_EQ(std::string(typeid(E).name()), typeid(e).name()) << e.what();
        return e.what();
    }
    ADD_FAILURE() << "nothing was thrown";
    return std::string();
}

/// The text with which a split, a rule or a run refuses.
template<class F>
std::string refusalOf(F&& f)
{
    return thrownText<processor::ORVIKBaseProcessingException>(f);
}

template<class P>
std::string runRefusal(const boost::shared_ptr<P>& processor)
{
    return refusalOf([&] { processor::executeSyncRun(processor); });
}

struct WithThreads
{
    explicit WithThreads(unsigned int nbThreads) { core::setNbThreads(nbThreads); }
    ~WithThreads() { core::setNbThreads(0); }
};

struct WithGrain
{
    explicit WithGrain(unsigned long nbLines) { core::setStripGrain(nbLines); }
    ~WithGrain() { core::setStripGrain(0); }
};

}  // namespace orvik::test
