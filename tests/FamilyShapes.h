#pragma once

// What every family is tested for, whatever it computes: that all its calls give the same for any strips and threads, that
// it refuses in words and leaves the caller's images as they were, and what becomes of images that share memory.

#include "TestImages.h"
#include "TestRuns.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/core/ActionProvider.h"
#include "frame/processor/Processor.h"
#include "frame/serialization/DataItem.h"
#include "frame/serialization/PlanIndexedColl.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <utility>

namespace orvik::test {

using namespace image;
using namespace imaproc::attr;

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

/// A whole plane as one strip.
inline boost::shared_ptr<InputImageYStrip2d> stripOf(const ImagePtr& plane)
{
    return boost::make_shared<InputImageYStrip2d>(plane, PlanIndex(), 0, plane->getSizeY());
}
inline boost::shared_ptr<OutputImageYStrip2d> outStripOf(const ImagePtr& plane)
{
    return boost::make_shared<OutputImageYStrip2d>(plane, PlanIndex(), 0, plane->getSizeY());
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

/// Calls f(name, value) for each leaf that it visits.
template<class F>
struct EachLeaf : BaseLeafVisitor
{
    explicit EachLeaf(const F& f) : m_f(f) {}
    void visit(const char* name, bool& value) override { m_f(name, value); }
    void visit(const char* name, int& value) override { m_f(name, value); }
    void visit(const char* name, long& value) override { m_f(name, value); }
    void visit(const char* name, unsigned int& value) override { m_f(name, value); }
    void visit(const char* name, unsigned long& value) override { m_f(name, value); }
    void visit(const char* name, float& value) override { m_f(name, value); }
    void visit(const char* name, double& value) override { m_f(name, value); }
    const F m_f;
};

/// The leaves of a record; of a list its size and those of its records, NaN for empty places.
inline Numbers numbersOf(const BaseDataItemNode& record)
{
    Numbers numbers;
    EachLeaf leaves([&](auto&, const auto& value) { numbers.push_back(static_cast<double>(value)); });
    BaseDataItemNode& visited = const_cast<BaseDataItemNode&>(record);  // which may be written by archives, not here
    const BaseDataItemNodeColl* const list = visited.accessList();
    if (!list)
        visited.visitLeaves(leaves);
    else
        numbers.push_back(static_cast<double>(list->size()));
    for (std::size_t i = 0; list && i < list->size(); ++i)
        if (list->hasNode(i))
            const_cast<BaseDataItemNode&>(list->getNode(i)).visitLeaves(leaves);
        else
            numbers.push_back(kNan);
    return numbers;
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

template<class... T>
Numbers numbersOf(const std::tuple<T...>& results)
{
    Numbers all;
    std::apply([&](const auto&... each) { (append(all, numbersOf(each)), ...); }, results);
    return all;
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

/// `f` gives that for any strips and threads.
template<class F>
void expectForStripsAndThreads(const Numbers& expected, const F& f)
{
    for (const unsigned int nbThreads : {1u, 3u})
        for (const unsigned long grain : {0ul, 1ul, 7ul, 13ul, 1000ul}) {
            const WithThreads threads(nbThreads);
            const WithGrain lines(grain);
            EXPECT_TRUE(same(expected, numbersOf(f()))) << nbThreads << " threads, " << grain << " lines per strip";
        }
}

/// A call that must be refused, and what the text must say.
struct Refusal
{
    std::string part;
    std::function<void()> call;
};

/// Nothing is written to `images` meanwhile. `by`: the class that must refuse, where a stage of it would, too, but later.
inline void expectRefusals(const std::vector<ImagePtr>& images, const std::vector<Refusal>& refusals,
                           const std::string& by = "")
{
    std::vector<Numbers> before;
    before.reserve(images.size());
    for (const ImagePtr& image : images)
        before.push_back(numbersOf(image));
    for (const Refusal& refusal : refusals) {
        const std::string text = thrownText<processor::ORVIKBaseProcessingException>(refusal.call);
        EXPECT_NE(std::string::npos, text.find(refusal.part)) << refusal.part << "\nis not in\n" << text;
        EXPECT_EQ(by, text.substr(0, by.size())) << refusal.part;
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

/// An attribute that is an image, and what it holds: nothing, where the type is 0.
struct ImageRole
{
    std::string name;
    bool isWritten;
    image::eImageBufferType type;
    image::ImageSizes sizes;
};
typedef std::vector<std::pair<image::eImageBufferType, image::ImageSizes>> TypesAndSizes;

/// A class as its images are seen. `run` takes one for each role and tells the results.
struct ImagesOfClass
{
    std::string name;
    std::vector<ImageRole> roles;                           // in the order of the attributes
    std::vector<std::pair<std::string, std::string>> same;  // pairs that may be the very same samples
    std::function<Numbers(const std::vector<ImagePtr>&)> run;
};

/// A row of the table: class `X` with `Images`, all attributes of it that are images. `prepare` sets the others, `resultsOf`
/// tells what the class is run for.
template<class X, class... Images, class Prepare, class ResultsOf>
ImagesOfClass imagesOf(const TypesAndSizes& images, const std::vector<std::pair<std::string, std::string>>& same,
                       const Prepare& prepare, const ResultsOf& resultsOf)
{
    ImagesOfClass row{X::getObjectNameStr(), {}, same, {}};
    (row.roles.push_back({Images::s_name, Images::g_bOutput, images.at(row.roles.size()).first,
                          images.at(row.roles.size()).second}),
     ...);
    row.run = [=](const std::vector<ImagePtr>& values) {
        const boost::shared_ptr<X> made = processor::createInitialised<X>();
        std::size_t i = 0;
        (made->template set<Images>(values.at(i++)), ...);
        prepare(*made);
        processor::executeSyncRun(made);
        return numbersOf(resultsOf(*made));
    };
    return row;
}

/// Two of a class's images in one piece of memory, the second one that many bytes after the first, lines `pitch` apart.
/// They are refused before anything is written, or served as images in memory of their own; `mustShare` says whether they
/// have bytes in common.
inline void expectPair(const ImagesOfClass& row, std::size_t first, std::size_t second, long distance, unsigned long pitch,
                       bool mustShare)
{
    const std::size_t places[] = {first, second};
    const auto bytesOf = [&](const ImageRole& role) { return pitch * role.sizes.y * role.sizes.z; };
    const ImageRole &a = row.roles[first], &b = row.roles[second];
    std::vector<unsigned char> memory(2 * (bytesOf(a) + bytesOf(b)), 7);
    std::vector<ImagePtr> images;
    for (const ImageRole& role : row.roles)
        images.push_back(role.type == 0 ? nullptr : image::createImage(role.type, role.sizes));
    for (const std::size_t place : places) {
        const ImageRole& role = row.roles[place];
        const long line = static_cast<long>(pitch), plane = line * static_cast<long>(role.sizes.y);
        images[place] = image::wrapBuffer(static_cast<void*>(memory.data() + bytesOf(b) + (place == second ? distance : 0)),
                                          role.type, role.sizes, image::ImageStrides(line, plane, plane * 3, plane * 3));
    }
    for (const bool isWritten : {true, false})  // inputs last: they hold what is read
        for (std::size_t i = 0; i < images.size(); ++i)
            if (images[i] && row.roles[i].isWritten == isWritten)
                fillRandom(*images[i], 80 + static_cast<unsigned int>(i));
    std::vector<ImagePtr> apart;
    for (const ImagePtr& image : images)
        apart.push_back(image ? copyOf(*image) : nullptr);

    const bool isSame = distance == 0
                        && std::find(row.same.begin(), row.same.end(), std::make_pair(a.name, b.name)) != row.same.end();
    if (!mustShare || isSame || (!a.isWritten && !b.isWritten)) {
        const Numbers expected = row.run(apart);
        EXPECT_TRUE(same(expected, row.run(images)));
        return;
    }
    const std::vector<unsigned char> before = memory;
    const std::string text = thrownText<processor::ORVIKBaseProcessingException>([&] { row.run(images); });
    const std::string begins = distance == 0 ? "begins where it does"
                                             : "begins " + std::to_string(std::labs(distance)) + " bytes "
                                                   + (distance < 0 ? "before it" : "after it");
    EXPECT_EQ(0u, text.find(row.name + " refuses to run:")) << text;
    EXPECT_NE(std::string::npos, text.find("failed: memory of " + a.name + " (" + toString(a.sizes))) << text;
    EXPECT_NE(std::string::npos, text.find(": " + b.name + " shares memory with " + a.name + " and " + begins)) << text;
    EXPECT_EQ(before, memory) << "written though refused";
}

/// Each pair of the class's images overlaps partly, is the same, or lies apart: behind one another, or woven.
inline void expectEveryPairRefusedOrServed(const ImagesOfClass& row)
{
    for (std::size_t j = 1; j < row.roles.size(); ++j)
        for (std::size_t i = 0; i < j; ++i) {
            const ImageRole &a = row.roles[i], &b = row.roles[j];
            if (a.type == 0 || b.type == 0)
                continue;
            const auto lineOf = [](const ImageRole& role) { return role.sizes.x * getImageBufferBaseSize(role.type); };
            SCOPED_TRACE(row.name + ": " + a.name + " and " + b.name);
            const unsigned long pitch = std::max(lineOf(a), lineOf(b));
            const long line = static_cast<long>(pitch), plane = line * static_cast<long>(a.sizes.y);
            const long endOfA = plane * static_cast<long>(a.sizes.z);
            const long startOfB = -line * static_cast<long>(b.sizes.y * b.sizes.z);
            const long nextPlane = a.sizes.z > 1 ? plane : 2 * line;
            for (const long distance : {0l, 4l, line, nextPlane, endOfA - line, -4l, -line, startOfB + line})
                expectPair(row, i, j, distance, pitch, true);
            for (const long distance : {endOfA, startOfB})
                expectPair(row, i, j, distance, pitch, false);
            if (a.sizes.y != b.sizes.y)
                continue;  // woven images of unlike strides are taken for sharing
            expectPair(row, i, j, line, 2 * pitch, false);
            expectPair(row, i, j, -3 * line, 2 * pitch, false);
            expectPair(row, i, j, 2 * line, 2 * pitch, true);
        }
}

}  // namespace orvik::test
