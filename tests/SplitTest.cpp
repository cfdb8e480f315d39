// Splits, strips, parsers and runs: every child gets the samples that are its own, and nothing outside is touched.

#include "TestImages.h"
#include "TestRuns.h"
#include "TinyProcessor.h"

#include <algorithm>
#include <array>
#include <map>

namespace orvik::test { namespace {

using namespace imaproc;
using namespace imaproc::tiny;
using image::ImageSizes;
using processor::ElementsRange;

const core::BaseRequestOrigin g_origin;

/// Calls `processAttribute` and gives back what the child then holds.
template<class A, class Split, class... Element>
typename A::StorageType given(Split& split, Element... element)
{
    struct Child : HookLvl3
    {
        typename A::StorageType get() const { return value<A>(); }
    };
    const boost::shared_ptr<Child> child = boost::make_shared<Child>();
    child->init(processor::ePRP_WithRules);
    const BoolResult result = split.processAttribute(*child, element..., g_origin);
    EXPECT_TRUE(result.getValue()) << result.getMessage();
    return child->get();
}

// --- planes and volumes

TEST(SubImageSplit, PlanesRunZFastestThenCThenTVolumesCThenT)
{
    const boost::shared_ptr<const image::BaseImage> whole = randomImage(image::eIBT_UInt16, ImageSizes(3, 2, 2, 3, 2));
    SubImageSplit<HookLvl2, InTinyImg> split;
    boost::shared_ptr<const image::BaseImage> element;
    for (const bool planes : {true, false}) {
        ASSERT_TRUE(split
                        .initBase(planes ? eSIST_Plane : eSIST_Volume, planes ? eVPT_Slices : eVPT_Whole, eCPT_Channels,
                                  eTPT_Times, whole)
                        .getValue());
        ASSERT_EQ(planes ? 12u : 6u, split.getNbElements());
        unsigned long index = 0;
        for (unsigned long t = 0; t < 2; ++t)
            for (unsigned long c = 0; c < 3; ++c)
                for (unsigned long z = 0; z < (planes ? 2 : 1); ++z, ++index) {
                    ASSERT_TRUE(split.getSubImage(index, element).getValue());
                    EXPECT_TRUE(element->getGeometry().getSizes() == ImageSizes(3, 2, planes ? 1 : 2));
                    EXPECT_EQ(whole->getLine(1, planes ? z : 1, c, t), element->getLine(1, planes ? 0 : 1));
                }
    }
    EXPECT_EQ("There is no sub-image 6 among 6", split.getSubImage(6, element).getMessage());
    EXPECT_FALSE(split.initBase(eSIST_Volume, eVPT_Slices, eCPT_Channels, eTPT_Times, whole).getValue());
}

TEST(Splits, ANullImageListOrMapIsRefused)
{
    const std::string text = "A split was given a null image, list or map";
    SubImageSplit<HookLvl2, InTinyImg> images;
    EXPECT_EQ(text, refusalOf([&] { images.initBase(eSIST_Plane, eVPT_Slices, eCPT_Channels, eTPT_Times, nullptr); }));
    ImageYStrip2dSplit<HookLvl3, const image::BaseImage, InTinyYStrip> lines;
    EXPECT_EQ(text, refusalOf([&] { lines.initBase(nullptr, image::eSAT_View, image::eSPD_Forward, image::eSPD_Forward); }));
    PlanIndexedSplit<HookLvl3, PlanIndexedMarks, OutMarks> lists;
    EXPECT_EQ(text, refusalOf([&] { lists.initBase(nullptr, 1, 1, 1, false); }));
    processor::StaticResultSplit<HookLvl3, OutMarks> results;
    EXPECT_EQ(text, refusalOf([&] { results.init(nullptr, Marks::createNode()); }));
    processor::DynamicByCreationResultSplit<HookLvl3, OutMarks> created;
    EXPECT_EQ(text, refusalOf([&] { created.init(nullptr); }));
}

TEST(Splits, EachTellsItsKindItsAttributeAndItsChild)
{
    ImageYStrip2dSplit<HookLvl3, const image::BaseImage, InTinyYStrip> lines;
    EXPECT_EQ("InTinyYStrip: strip", lines.getAttributeName() + ": " + lines.getAttributeToolTip());
    EXPECT_TRUE(lines.checkProcessorType(HookLvl3()));
    EXPECT_FALSE(lines.checkProcessorType(HookLvl2()));
    const std::vector<unsigned int> kinds = {
        lines.getSplitBaseType(),
        lines.getSplitDynamicType(),
        lines.getImageStripSplitType(),
        ImageYStrip2dWithKernelSplit<HashYLvl3, const image::BaseImage, InTinyKnlYStrip>().getImageStripSplitType(),
        ImageZStrip3dSplit<CopyRawZ, const image::BaseImage, InTinyZStrip>().getImageStripSplitType(),
        ImageZStrip3dWithKernelSplit<HashZLvl3, const image::BaseImage, InTinyKnlZStrip>().getImageStripSplitType(),
        processor::StaticNoSplit<HookLvl3, OutMarks>(nullptr).getSplitStaticType(),
        processor::StaticResultSplit<HookLvl3, OutMarks>().getSplitStaticType(),
        PlanIndexedSplit<HookLvl3, PlanIndexedMarks, OutMarks>().getSplitStaticType(),
        SubImageSplit<HookLvl2, InTinyImg>().getSplitStaticType(),
        processor::DynamicNoSplit<HookLvl3, OutMarks>(nullptr).getSplitDynamicType(),
        processor::DynamicByCreationResultSplit<HookLvl3, OutMarks>().getSplitDynamicType()};
    EXPECT_EQ((std::vector<unsigned int>{1, 4, 1, 3, 8, 10, 0, 1, 3, 3, 0, 2}), kinds);
}

TEST(Splits, StripsAreCutFromOnePlaneOrOneVolumeOnly)
{
    const ImagePtr channels = image::createImage(image::eIBT_UInt8, ImageSizes(4, 4, 1, 2));
    const ImagePtr volume = image::createImage(image::eIBT_UInt8, ImageSizes(4, 4, 2));
    ImageYStrip2dSplit<HookLvl3, const image::BaseImage, InTinyYStrip> lines;
    ImageZStrip3dSplit<CopyRawZ, const image::BaseImage, InTinyZStrip> slices;
    EXPECT_EQ("Strips are cut from one plane or one volume, not from an image of size 4 x 4 x 2 x 1 x 1",
              lines.initBase(volume, image::eSAT_View, image::eSPD_Forward, image::eSPD_Forward).getMessage());
    EXPECT_TRUE(slices.initBase(volume, image::eSAT_View, image::eSPD_Forward).getValue());
    EXPECT_FALSE(slices.initBase(channels, image::eSAT_View, image::eSPD_Forward).getValue());
}

// --- lists and results

TEST(PlanIndexedSplit, GivesTheEntryOfThePlaneOrTheOnlyOneOrFailsWithThePlane)
{
    const boost::shared_ptr<PlanIndexedMarks> coll = PlanIndexedMarks::createColl();
    PlanIndexedSplit<HookLvl3, PlanIndexedMarks, OutMarks> split;

    coll->insert(PlanIndex(), Marks::createNode());
    ASSERT_TRUE(split.initBase(coll, 2, 3, 2, false).getValue());
    EXPECT_EQ(1u, coll->getNbPlans());
    EXPECT_EQ(coll->getEntry(PlanIndex()), given<OutMarks>(split, 7u));

    coll->clear();
    ASSERT_TRUE(split.initBase(coll, 2, 3, 2, false).getValue());
    EXPECT_EQ(12u, coll->getNbPlans());
    EXPECT_EQ(coll->getEntry(PlanIndex(1, 0, 0)), given<OutMarks>(split, 1u));
    EXPECT_EQ(coll->getEntry(PlanIndex(0, 1, 0)), given<OutMarks>(split, 2u));
    EXPECT_EQ(coll->getEntry(PlanIndex(1, 2, 1)), given<OutMarks>(split, 11u));

    coll->clear();
    coll->insert(PlanIndex(0, 0, 0), Marks::createNode());
    coll->insert(PlanIndex(0, 1, 0), Marks::createNode());
    ASSERT_TRUE(split.initBase(coll, 2, 2, 1, false).getValue());
    HookLvl3 child;
    child.init(processor::ePRP_WithRules);
    EXPECT_EQ("The plan-indexed collection has no entry for plane (1, 0, 0)",
              split.processAttribute(child, 1, g_origin).getMessage());
}

TEST(ResultSplits, EachChildGetsAResultOfItsOwnAndOldResultsAreDropped)
{
    typedef processor::StaticResultSplit<HookLvl3, OutMarks> ByIndex;
    const boost::shared_ptr<ByIndex::ResultMap> byIndex = boost::make_shared<ByIndex::ResultMap>();
    (*byIndex)[99] = Marks::createNode();
    const boost::shared_ptr<Marks> prototype = Marks::createNode();
    prototype->access<Marks::Coll>().push_back(Mark::createNode(1, 2, 3));
    ByIndex split;
    split.init(byIndex, prototype);
    EXPECT_TRUE(byIndex->empty());
    const boost::shared_ptr<Marks> first = given<OutMarks>(split, 4u);
    EXPECT_EQ((*byIndex)[4], first);
    EXPECT_NE(prototype, first);
    ASSERT_EQ(1u, first->size());
    EXPECT_EQ(3, (*first)[0].get<Mark::Id>());
    EXPECT_NE(first, given<OutMarks>(split, 4u));

    typedef processor::DynamicByCreationResultSplit<HookLvl3, OutMarks> ByRange;
    const boost::shared_ptr<ByRange::ResultMap> byRange = boost::make_shared<ByRange::ResultMap>();
    ByRange ranges;
    ranges.init(byRange);
    const boost::shared_ptr<Marks> made = given<OutMarks>(ranges, 10ul, 5ul);
    EXPECT_EQ(made, byRange->at(ElementsRange(10, 5)));
    ranges.init(byRange, ByRange::CreationFunction());
    HookLvl3 child;
    child.init(processor::ePRP_WithRules);
    EXPECT_EQ("call to empty boost::function", thrownText<boost::wrapexcept<boost::bad_function_call>>([&] {
                  ranges.processAttribute(child, 0, 1, g_origin);
              }));
}

TEST(ByRangeSplit, FilesEachRecordOnceUnderTheRowNearestToItsKey)
{
    typedef processor::DynamicByRangeDataSplit<HookLvl3, OutMarks, Marks::Coll, Mark::Y> Split;
    // 2.5 belongs to row 3; -0.4 to row 0; 9.5 to row 10, past the last one.
    const double keys[] = {2.5, 0.0, -0.4, 2.49, 4.0, 9.5, 3.0, 0.25, 9.49};
    const boost::shared_ptr<Marks> source = Marks::createNode();
    for (const double key : keys)
        source->access<Marks::Coll>().push_back(Mark::createNode(0, key, static_cast<long>(source->size())));
    const auto rowsOf = [&](const std::vector<ElementsRange>& ranges) {
        const auto lists = boost::make_shared<Split::ListMap>();
        const auto indices = boost::make_shared<Split::IndexMap>();
        Split split;
        split.init(source, lists, indices);
        std::map<unsigned long, unsigned long> startOf;
        for (const ElementsRange& range : ranges) {
            const boost::shared_ptr<Marks> list = given<OutMarks>(split, range.getStart(), range.getCount());
            EXPECT_EQ(list, lists->at(range));
            const std::vector<unsigned long>& places = indices->at(range);
            EXPECT_EQ(places.size(), list->size());
            for (std::size_t i = 0; i < places.size(); ++i) {
                EXPECT_EQ(static_cast<long>(places[i]), (*list)[i].get<Mark::Id>());
                EXPECT_TRUE(startOf.emplace(places[i], range.getStart()).second) << "record " << places[i] << " twice";
            }
        }
        return startOf;
    };
    typedef std::map<unsigned long, unsigned long> Rows;
    EXPECT_EQ((Rows{{0, 3}, {1, 0}, {2, 0}, {3, 0}, {4, 3}, {6, 3}, {7, 0}, {8, 3}}), rowsOf({{0, 3}, {3, 7}}));
    EXPECT_EQ((Rows{{0, 3}, {1, 0}, {2, 0}, {3, 2}, {4, 4}, {6, 3}, {7, 0}, {8, 9}}),
              rowsOf({{0, 1}, {1, 1}, {2, 1}, {3, 1}, {4, 1}, {5, 1}, {6, 1}, {7, 1}, {8, 1}, {9, 1}}));
}

// --- strips with margins, sample by sample

Hash expectedHash(const image::BaseImage& in, const Reach& reach, bool volumes, long x, long y, long z, unsigned long c,
                  unsigned long t)
{
    const image::StripMargins m = marginsOf(reach);
    const long sizeX = in.getSizeX(), sizeY = in.getSizeY(), sizeZ = in.getSizeZ(), startX = m.startX, startY = m.startY,
               endX = m.endX, endY = m.endY, startZ = volumes ? m.startZ : 0, endZ = volumes ? m.endZ : 0;
    const unsigned int type = reach.get<Reach::Border>();
    Hash hash = 0;
    image::withSampleType(image::toDataType(in.getBufferType()), [&](auto sample) {
        typedef decltype(sample) T;
        const T border = type == image::eBT_Value ? static_cast<T>(reach.get<Reach::Value>())
                         : type == image::eBT_Max ? NumericLimits<T>::s_max
                                                  : NumericLimits<T>::s_min;
        const auto at = [&](long i, long j, long k) {
            const long ofX = std::clamp(i, 0l, sizeX - 1), ofY = std::clamp(j, 0l, sizeY - 1),
                       ofZ = std::clamp(k, 0l, sizeZ - 1);
            const bool inside = i == ofX && j == ofY && k == ofZ;
            return inside || type == image::eBT_Nearest ? static_cast<const T*>(in.getLine(ofY, ofZ, c, t))[ofX] : border;
        };
        const auto mixRows = [&](long from, long to) {
            for (long k = z - startZ; k <= z + endZ; ++k)
                for (long j = y - startY; j <= y + endY; ++j)
                    for (long i = from; i <= to; ++i)
                        hash = mixed(hash, at(i, j, k));
        };
        mixRows(x - startX, x + endX);
        if (x == 0)
            mixRows(sizeX, static_cast<long>(processor::alignedCount(sizeX, 64)) + endX);
    });
    return hash;
}

template<bool Volumes>
ImagePtr hashed(const boost::shared_ptr<const image::BaseImage>& in, const boost::shared_ptr<const Reach>& reach)
{
    const auto hash = processor::createInitialised<HashLvl1<Volumes>>();
    hash->template set<InTinyImg>(in);
    hash->template set<InReach>(reach);
    processor::executeSyncRun(hash);
    return hash->template getStorage<OutTinyImg>();
}

template<bool Volumes>
ImagePtr expectedHashes(const image::BaseImage& in, const Reach& reach)
{
    const ImagePtr out = image::createImageLike(in, image::eIBT_UInt32);
    forEachSample(in.getGeometry().getSizes(), [&](auto x, auto y, auto z, auto c, auto t) {
        static_cast<Hash*>(out->accessLine(y, z, c, t))[x] = expectedHash(in, reach, Volumes, x, y, z, c, t);
    });
    return out;
}

const boost::shared_ptr<Reach> g_reaches[] = {Reach::createNode(1, 1, 1, 1, 1, 1, image::eBT_Value, 0.0),
                                              Reach::createNode(3, 0, 0, 2, 2, 0, image::eBT_Min, 0.0),
                                              Reach::createNode(0, 5, 4, 1, 0, 3, image::eBT_Max, 0.0),
                                              Reach::createNode(2, 70, 9, 0, 1, 1, image::eBT_Value, 7.0),
                                              Reach::createNode(2, 9, 1, 6, 3, 4, image::eBT_Nearest, 0.0)};

class StripsWithMargins : public ::testing::TestWithParam<image::eImageBufferType>
{
};
INSTANTIATE_TEST_SUITE_P(AllTypes, StripsWithMargins, ::testing::ValuesIn(kAllTypes));

TEST_P(StripsWithMargins, ShowPlanesAndTheBorderWhateverTheStrips)
{
    const ImagePtr in = randomImage(GetParam(), ImageSizes(67, 7, 2, 1, 2));
    for (const auto& reach : g_reaches) {
        const ImagePtr expected = expectedHashes<false>(*in, *reach);
        for (const unsigned long grain : {0, 1, 2, 3, 5, 6, 7}) {
            const WithGrain strips(grain);
            EXPECT_TRUE(sameSamples(*expected, *hashed<false>(in, reach))) << grain << " lines per strip";
        }
    }
}

TEST_P(StripsWithMargins, ShowVolumesAndTheBorderWhateverTheStrips)
{
    const ImagePtr in = randomImage(GetParam(), ImageSizes(5, 4, 6, 2, 1));
    for (const auto& reach : g_reaches) {
        const ImagePtr expected = expectedHashes<true>(*in, *reach);
        for (const unsigned long grain : {0, 1, 2, 4, 6}) {
            const WithGrain strips(grain);
            EXPECT_TRUE(sameSamples(*expected, *hashed<true>(in, reach))) << grain << " slices per strip";
        }
    }
}

TEST(StripsWithMargins, MayBeWiderThanTheImage)
{
    const ImagePtr in = randomImage(image::eIBT_Int16, ImageSizes(1, 1, 2));
    const auto reach = Reach::createNode(4, 5, 6, 3, 2, 5, image::eBT_Value, -3.0);
    EXPECT_TRUE(sameSamples(*expectedHashes<false>(*in, *reach), *hashed<false>(in, reach)));
    EXPECT_TRUE(sameSamples(*expectedHashes<true>(*in, *reach), *hashed<true>(in, reach)));
}

TEST(StripsWithMargins, ReadACallersBufferWithNegativeStrides)
{
    const ImagePtr in = randomImage(image::eIBT_Int32, ImageSizes(5, 4, 3));
    std::vector<int> samples(5 * 4 * 3);
    // Last line of the last slice first.
    image::copyOut(*in, &samples[55], image::ImageStrides(-20, -80));
    const auto flipped = image::wrapBuffer(static_cast<const void*>(&samples[55]), image::eIBT_Int32, ImageSizes(5, 4, 3),
                                           image::ImageStrides(-20, -80));
    for (const auto& reach : g_reaches) {
        EXPECT_TRUE(sameSamples(*hashed<false>(in, reach), *hashed<false>(flipped, reach)));
        EXPECT_TRUE(sameSamples(*hashed<true>(in, reach), *hashed<true>(flipped, reach)));
    }
}

// --- runs

/// Aligned and own number of samples, part, first column, line.
typedef std::array<unsigned long, 5> Run;

/// Copies by class `Lvl3` in one strip and compares the runs of each line with those expected of the first.
template<class Lvl3>
void expectRuns(unsigned long width, const std::vector<Run>& ofLine)
{
    const WithThreads one(1);
    const WithGrain whole(3);
    const auto copy = processor::createInitialised<CopyLvl1<Lvl3>>();
    copy->template set<InTinyImg>(randomImage(image::eIBT_UInt8, ImageSizes(width, 3)));
    RunLog::s_runs.clear();
    processor::executeSyncRun(copy);
    std::vector<Run> expected, runs;
    for (unsigned long line = 0; line < 3; ++line)
        for (Run run : ofLine) {
            run[4] = line;
            expected.push_back(run);
        }
    for (const processor::ProcessingInfo& info : RunLog::s_runs)
        runs.push_back({info.nbAlignedData, info.nbData, info.partIndex, info.firstColumn, info.lineIndex});
    EXPECT_EQ(expected, runs) << "width " << width;
}

TEST(Runs, RawLinesComeAsWholeBlocksThenTheRest)
{
    expectRuns<CopyRaw64>(1, {{64, 1, 0, 0}});
    expectRuns<CopyRaw64>(63, {{64, 63, 0, 0}});
    expectRuns<CopyRaw64>(64, {{64, 64, 0, 0}});
    expectRuns<CopyRaw64>(65, {{64, 64, 0, 0}, {64, 1, 1, 64}});
    expectRuns<CopyRaw16>(150, {{128, 128, 0, 0}, {32, 22, 1, 128}});
    expectRuns<CopyRaw16>(17, {{32, 17, 0, 0}});
}

TEST(Runs, OtherLinesComeAsOne)
{
    expectRuns<CopyLine64>(63, {{64, 63, 0, 0}});
    expectRuns<CopyLine64>(150, {{192, 150, 0, 0}});
    expectRuns<CopyLine256>(150, {{256, 150, 0, 0}});
}

TEST(Runs, LinesOfAVolumesStripCountOverAllItsSlices)
{
    const WithThreads one(1);
    const WithGrain two(2);
    const auto copy = processor::createInitialised<CopyLvl1<CopyRawZ, InTinyZStrip, OutTinyZStrip>>();
    const ImagePtr in = randomImage(image::eIBT_UInt8, ImageSizes(5, 3, 4));
    copy->set<InTinyImg>(in);
    RunLog::s_runs.clear();
    processor::executeSyncRun(copy);
    EXPECT_TRUE(sameSamples(*in, *copy->getStorage<OutTinyImg>()));
    ASSERT_EQ(12u, RunLog::s_runs.size());
    for (std::size_t i = 0; i < 12; ++i)
        EXPECT_EQ(i % 6, RunLog::s_runs[i].lineIndex);
}

/// A kernel that reads and writes all that it may, on callers' buffers whose lines end where the next begins.
template<class Lvl3, class InStrip = InTinyYStrip, class OutStrip = OutTinyYStrip>
void expectNothingTouchedOutside()
{
    for (const image::eImageBufferType type : {image::eIBT_UInt8, image::eIBT_Int16, image::eIBT_Real32})
        for (const unsigned long width : {1, 15, 63, 64, 65, 100, 128, 200, 256, 320, 600})
            for (const unsigned long gap : {0, 1, 7}) {
                const ImageSizes sizes(width, 3, std::is_same<Lvl3, CopyRawZ>::value ? 2 : 1);
                const GuardedImage in(type, sizes, gap), out(type, sizes, gap);
                fillRandom(*in.get(), 3);
                const ImagePtr own = randomImage(type, sizes, 4);
                // Wrapped to wrapped, wrapped to the frame's own, the frame's own to wrapped, and in place.
                const ImagePtr pairs[][2] = {{in.get(), out.get()}, {in.get(), own}, {own, out.get()}, {in.get(), in.get()}};
                for (const auto& pair : pairs) {
                    const ImagePtr before = image::createImage(type, sizes);
                    image::copyOut(*pair[0], before->accessLine(0), before->getStrides());
                    const auto copy = processor::createInitialised<CopyLvl1<Lvl3, InStrip, OutStrip>>();
                    copy->template set<InTinyImg>(pair[0]);
                    copy->template set<OutTinyImg>(pair[1]);
                    processor::executeSyncRun(copy);
                    EXPECT_TRUE(sameSamples(*before, *pair[1])) << "gap " << gap;
                    EXPECT_TRUE(in.areGuardsIntact() && out.areGuardsIntact()) << "width " << width << ", gap " << gap;
                }
            }
}

TEST(WrappedBuffers, NothingIsReadOrWrittenOutsideTheirSamples)
{
    expectNothingTouchedOutside<CopyRaw16>();
    expectNothingTouchedOutside<CopyRaw64>();
    expectNothingTouchedOutside<CopyLine64>();
    expectNothingTouchedOutside<CopyRawZ, InTinyZStrip, OutTinyZStrip>();
}

TEST(WrappedBuffers, NorByKernelsThatReachFartherThanTheLinesPadding)
{
    expectNothingTouchedOutside<CopyRaw256>();
    expectNothingTouchedOutside<CopyLine256>();
}

TEST(OwnImages, AreNotTouchedOutsideTheirLinesByKernelsThatReachFar)
{
    for (const unsigned long width : {1, 64, 70, 300}) {
        const ImageSizes sizes(width, 3, 2);
        const ImagePtr in = randomImage(image::eIBT_UInt8, sizes, 1), out = randomImage(image::eIBT_UInt8, sizes, 2);
        const ImagePtr before = randomImage(image::eIBT_UInt8, sizes, 2);
        // The upper plane is written by the kernel, the lower one, which follows in memory, belongs to somebody else.
        const auto copy = processor::createInitialised<CopyLvl1<CopyLine256>>();
        copy->set<InTinyImg>(in->getView(PlanIndex(0), 1));
        copy->set<OutTinyImg>(out->getView(PlanIndex(0), 1));
        processor::executeSyncRun(copy);
        EXPECT_TRUE(sameSamples(*in->getView(PlanIndex(0), 1), *out->getView(PlanIndex(0), 1)));
        EXPECT_TRUE(sameSamples(*before->getView(PlanIndex(1), 1), *out->getView(PlanIndex(1), 1)));
    }
}

TEST(Runs, StripsOfUnequalSizeFailWithBoth)
{
    const auto copy = processor::createInitialised<CopyRaw64>();
    const ImagePtr wide = image::createImage(image::eIBT_UInt8, ImageSizes(9, 4));
    const ImagePtr narrow = image::createImage(image::eIBT_UInt8, ImageSizes(8, 4));
    copy->set<InTinyYStrip>(boost::make_shared<image::InputImageYStrip2d>(wide, PlanIndex(), 0, 4));
    copy->set<OutTinyYStrip>(boost::make_shared<image::OutputImageYStrip2d>(narrow, PlanIndex(), 0, 3));
    EXPECT_EQ("CopyRaw64: the strips differ in size: 9 x 4 and 8 x 3", runRefusal(copy));
}

TEST(Runs, MixedSampleTypesThatAKernelDoesNotKnowFailInWords)
{
    const auto copy = processor::createInitialised<CopyLvl1<CopyRaw64>>();
    copy->set<InTinyImg>(image::createImage(image::eIBT_UInt8, ImageSizes(9, 4)));
    copy->set<OutTinyImg>(image::createImage(image::eIBT_Real32, ImageSizes(9, 4)));
    EXPECT_EQ("CopyRaw64: the strips do not have the sample types that go together", runRefusal(copy));
}

// --- dispatchers

TEST(Dispatchers, RefuseSplitsThatDisagreeOnTheNumberOfElements)
{
    const ImagePtr tall = image::createImage(image::eIBT_UInt8, ImageSizes(8, 5));
    const ImagePtr low = image::createImage(image::eIBT_UInt8, ImageSizes(8, 4));
    processor::ProviderPtr provider;
    processor::RetrievalResult result =
        dispatch<CopyRaw64>(core::BasePriority(), provider, strips<InTinyYStrip>(tall), strips<OutTinyYStrip>(low));
    EXPECT_EQ(processor::eRRT_RetrievalFailed, result.getValue());
    EXPECT_EQ("CopyRaw64: attribute OutTinyYStrip has 4 elements, attribute InTinyYStrip has 5", result.getMessage());
    EXPECT_FALSE(provider);
    result = dispatch<HookLvl3>(core::BasePriority(), provider, same<OutMarks>(Marks::createNode()));
    EXPECT_EQ("HookLvl3: no attribute tells the number of elements", result.getMessage());

    processor::StaticProcessorDispatcher<HookLvl3> dispatcher;
    EXPECT_EQ("HookLvl3: a split is null", dispatcher.initBase(core::BasePriority(), {nullptr}).getMessage());
    const auto split = boost::make_shared<SubImageSplit<CopyLvl1<CopyRaw64>, InTinyImg>>();
    ASSERT_TRUE(split->initBase(eSIST_Plane, eVPT_Slices, eCPT_Channels, eTPT_Times, tall).getValue());
    ASSERT_TRUE(dispatcher.initBase(core::BasePriority(), {split}).getValue());
    const auto child = boost::make_shared<HookLvl3>();
    EXPECT_EQ("the split of InTinyImg is made for another class than " + HookLvl3::getTypeName(),
              dispatcher.initAttributes(processor::ElementsRange(0, 1), core::BaseRequestOrigin(), child).getMessage());
}

TEST(Dispatchers, HandOutAllElementsOnceInAscendingOrder)
{
    const ImagePtr in = image::createImage(image::eIBT_UInt8, ImageSizes(1000, 997));
    for (const unsigned long grain : {0, 1, 10, 996, 997, 5000})
        for (const unsigned int nbThreads : {1, 3, 64}) {
            const WithGrain strip(grain);
            const auto results = boost::make_shared<std::map<ElementsRange, boost::shared_ptr<Marks>>>();
            processor::ProviderPtr provider;
            ASSERT_EQ(processor::eRRT_ProviderRetrieved,
                      dispatch<HookLvl3>(core::BasePriority(), provider, strips<InTinyYStrip>(in),
                                         resultOfEach<OutMarks>(results))
                          .getValue());
            const unsigned long nbAnnounced = provider->start(nbThreads);
            unsigned long next = 0, nbRequests = 0;
            bool hasMore = true;
            while (hasMore) {
                boost::shared_ptr<core::BaseActionRequest> request;
                boost::shared_ptr<BaseSerializationObject> data;
                EXPECT_TRUE(provider->hasPendingAction());
                ASSERT_TRUE(provider->queryNextAction(g_origin, request, hasMore, data).getValue());
                ASSERT_TRUE(request);
                ++nbRequests;
                bool ended = false;
                provider->notifyDerived(request, data, ended);
                EXPECT_EQ(!hasMore, ended);
            }
            EXPECT_EQ(nbAnnounced, nbRequests);
            for (const auto& strip : *results) {
                EXPECT_EQ(next, strip.first.getStart());
                next += strip.first.getCount();
            }
            EXPECT_EQ(997u, next);
        }
}

template<bool Volumes>
void expectHashesInPlace()
{
    const ImagePtr in = randomImage(image::eIBT_UInt32, ImageSizes(9, 10, 11, 2));
    for (const auto& reach : g_reaches) {
        const ImagePtr expected = expectedHashes<Volumes>(*in, *reach);
        for (const unsigned long grain : {1, 2, 3, 5, 11})
            for (const unsigned int nbThreads : {1, 4}) {
                const WithGrain strips(grain);
                const WithThreads threads(nbThreads);
                const ImagePtr image = copyOf(*in);
                const auto hash = processor::createInitialised<HashLvl1<Volumes>>();
                hash->template set<InTinyImg>(image);
                hash->template set<InReach>(reach);
                hash->template set<OutTinyImg>(image);
                processor::executeSyncRun(hash);
                EXPECT_TRUE(sameSamples(*expected, *image)) << grain << " per strip, " << nbThreads << " threads";
            }
    }
}

TEST(StripsInPlace, OfPlanesAndVolumesShowWhatWasThereForAnySizeAndThreads)
{
    expectHashesInPlace<false>();
    expectHashesInPlace<true>();
}

}  // namespace
}  // namespace orvik::test
