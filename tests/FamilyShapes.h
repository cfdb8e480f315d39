#pragma once

// What every family is tested for, whatever it computes: that all its calls give the same for any strips and threads, that
// it refuses in words and leaves the caller's images as they were, and what becomes of a result that lies over an input.

#include "TestImages.h"
#include "TestRuns.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/core/ActionProvider.h"
#include "frame/processor/Processor.h"
#include "frame/serialization/DataItem.h"
#include "frame/serialization/PlanIndexedColl.h"

#include <functional>

namespace orvik::test {

const double kPi = 3.141592653589793, kNan = std::numeric_limits<double>::quiet_NaN();
const double kInfinity = std::numeric_limits<double>::infinity();

/// A new processor with values of these attributes: processorWith<X, InImg, OutImg>(in, out).
template<class X, class... Attributes, class... Values>
boost::shared_ptr<X> processorWith(const Values&... values)
{
    const boost::shared_ptr<X> made = processor::createInitialised<X>();
    (made->template set<Attributes>(values), ...);
    return made;
}

/// The same, run.
template<class X, class... Attributes, class... Values>
boost::shared_ptr<X> ran(const Values&... values)
{
    const boost::shared_ptr<X> made = processorWith<X, Attributes...>(values...);
    processor::executeSyncRun(made);
    return made;
}

/// A result of any kind as numbers that tell all of it.
typedef std::vector<double> Numbers;

inline Numbers numbersOf(double value)
{
    return {value};
}
inline Numbers numbersOf(const Numbers& numbers)
{
    return numbers;
}

/// Plane by plane: type, sizes, samples.
inline Numbers numbersOf(const image::BaseImage& image)
{
    Numbers numbers;
    forEachSample(image.getGeometry().getSizes(), [&](auto x, auto y, auto... plane) {
        if (x == 0 && y == 0)
            for (const unsigned long each : {image.getBufferType() + 0ul, image.getSizeX(), image.getSizeY()})
                numbers.push_back(static_cast<double>(each));
        numbers.push_back(sampleAt(image, x, y, plane...));
    });
    return numbers;
}

/// The leaves of a record; of a list its size and those of its records.
inline Numbers numbersOf(const BaseDataItemNode& record)
{
    struct Leaves : BaseLeafVisitor
    {
        Numbers numbers;
        void visit(const char*, bool& value) override { numbers.push_back(value); }
        void visit(const char*, int& value) override { numbers.push_back(value); }
        void visit(const char*, long& value) override { numbers.push_back(static_cast<double>(value)); }
        void visit(const char*, unsigned int& value) override { numbers.push_back(value); }
        void visit(const char*, unsigned long& value) override { numbers.push_back(static_cast<double>(value)); }
        void visit(const char*, float& value) override { numbers.push_back(static_cast<double>(value)); }
        void visit(const char*, double& value) override { numbers.push_back(value); }
    } leaves;
    BaseDataItemNode& visited = const_cast<BaseDataItemNode&>(record);  // which may be written by archives, not here
    const BaseDataItemNodeColl* const list = visited.accessList();
    if (!list)
        visited.visitLeaves(leaves);
    else
        leaves.numbers.push_back(static_cast<double>(list->size()));
    for (std::size_t i = 0; list && i < list->size(); ++i)
        const_cast<BaseDataItemNode&>(list->getNode(i)).visitLeaves(leaves);
    return leaves.numbers;
}

inline Numbers& append(Numbers& all, const Numbers& numbers)
{
    all.insert(all.end(), numbers.begin(), numbers.end());
    return all;
}

inline Numbers numbersOf(const BasePlanIndexedColl& entries)
{
    Numbers all;
    for (const PlanIndex& plan : entries.getPlans())
        append(all, numbersOf(dynamic_cast<const BaseDataItemNode&>(*entries.getStorage(plan))));
    return all;
}

template<class T>
Numbers numbersOf(const boost::shared_ptr<T>& result);

template<class A, class B>
Numbers numbersOf(const std::pair<A, B>& results)
{
    Numbers all = numbersOf(results.first);
    return append(all, numbersOf(results.second));
}

/// Of a processor that was started: what its reader gives.
template<class T>
Numbers numbersOf(const boost::shared_ptr<T>& result)
{
    if constexpr (std::is_base_of<processor::BaseProcessor, T>::value)
        return numbersOf(getAsyncProcessorOutput(result));
    else
        return numbersOf(*result);
}

/// What `f` gives of each plane, one after the other: what it must give of the whole image.
template<class F>
Numbers planeByPlane(const ImagePtr& image, F&& f)
{
    Numbers all;
    forEachSample({1, 1, image->getSizeZ(), image->getSizeC(), image->getSizeT()},
                  [&](auto, auto, auto... plane) { append(all, numbersOf(f(image->getView(PlanIndex(plane...), 1)))); });
    return all;
}

/// Equal bit by bit.
inline ::testing::AssertionResult same(const Numbers& expected, const Numbers& found)
{
    for (std::size_t i = 0; i < std::min(expected.size(), found.size()); ++i)
        // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): two zeros are two values, and a NaN is itself
        if (std::memcmp(&expected[i], &found[i], sizeof expected[i]) != 0)
            return ::testing::AssertionFailure() << "number " << i << " is " << found[i] << " instead of " << expected[i];
    if (expected.size() != found.size())
        return ::testing::AssertionFailure() << found.size() << " numbers instead of " << expected.size();
    return ::testing::AssertionSuccess();
}

/// A call that was made, and what it must give.
struct Call
{
    template<class Result>
    Call(const Numbers& mustGive, const Result& result) : expected(mustGive), found(numbersOf(result))
    {
    }
    Numbers expected, found;
};

/// `calls` makes all calls of a family: a vector of them. They give the same for any strips and threads.
template<class Calls>
void expectSameForStripsAndThreads(const Calls& calls)
{
    for (const unsigned int nbThreads : {1u, 3u})
        for (const unsigned long grain : {0ul, 1ul, 7ul, 13ul, 1000ul}) {
            const WithThreads threads(nbThreads);
            const WithGrain lines(grain);
            int i = 0;
            for (const Call& call : std::vector<Call>(calls())) {
                EXPECT_TRUE(same(call.expected, call.found)) << "call " << i << ", " << nbThreads << " threads, " << grain;
                ++i;
            }
        }
}

/// A call that must be refused, and what the text must say.
struct Refusal
{
    std::string part;
    std::function<void()> call;
};

/// Nothing is written to `images` meanwhile.
inline void expectRefusals(const std::vector<ImagePtr>& images, const std::vector<Refusal>& refusals)
{
    std::vector<Numbers> before;
    before.reserve(images.size());
    for (const ImagePtr& image : images)
        before.push_back(numbersOf(image));
    for (const Refusal& refusal : refusals) {
        const std::string text = thrownText<processor::ORVIKBaseProcessingException>(refusal.call);
        EXPECT_NE(std::string::npos, text.find(refusal.part)) << refusal.part << "\nis not in\n" << text;
        for (std::size_t i = 0; i < images.size(); ++i)
            EXPECT_TRUE(same(before[i], numbersOf(images[i]))) << "image " << i << " was written, though " << text;
    }
}

/// The iteration after the last one is refused.
template<class X>
void expectLastIteration(unsigned int last, X& repeated)
{
    processor::ProviderPtr provider;
    const processor::RetrievalResult beyond = repeated.retrieveProvider(core::BasePriority(), last + 1, provider);
    EXPECT_TRUE(beyond.getValue() == processor::eRRT_RetrievalFailed && !provider);
    EXPECT_EQ("Invalid iteration number (cannot be greater than " + std::to_string(last) + ")", beyond.getMessage());
}

/// A result of the type of its input, which lies over all of it or over some lines. `part` names the input.
enum class InSitu
{
    refused,
    served
};
inline void expectInSitu(InSitu whole, image::eImageBufferType type, const std::string& part,
                         const std::function<void(const ImagePtr& in, const ImagePtr& out)>& call)
{
    const unsigned long n = 24;
    const ImagePtr tall = randomImage(type, {70, 3 * n}, 51), in = linesOf(tall, n, n), out = createImageLike(*in, type);
    std::vector<Refusal> refusals;
    for (const unsigned long first : {n, n + 1, 2 * n - 1, n - 1, 1ul})
        if (first != n || whole == InSitu::refused)
            refusals.push_back({"failed: memory of " + part, [=] { call(in, linesOf(tall, first, n)); }});
    expectRefusals({tall}, refusals);
    call(in, out);
    const ImagePtr next = linesOf(tall, 2 * n, n);
    call(in, next);
    EXPECT_TRUE(sameSamples(*out, *next)) << "into lines that follow the input";
    if (whole == InSitu::refused)
        return;
    call(in, in);
    EXPECT_TRUE(sameSamples(*out, *in)) << "over the input";
}

}  // namespace orvik::test
