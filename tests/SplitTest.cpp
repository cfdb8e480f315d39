// Splits, strips, parsers and runs: every child gets the samples that are its own, and nothing outside is touched.

#include "FamilyShapes.h"
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

// --- planes, volumes, strips

TEST(Splits, OfWhatIsNullOrHasNoSuchPartsAreRefused)
{
    const std::string text = "A split was given a null image, list or map";
    const ImagePtr channels = blank(4, 4, 1, 2), volume = blank(4, 4, 2);
    ImageYStrip2dSplit<HookLvl3, const image::BaseImage, InTinyYStrip> lines;
    const auto linesOf = [&](const ImagePtr& of) {
        return lines.initBase(of, image::eSAT_View, image::eSPD_Forward, image::eSPD_Forward).getMessage();
    };
    EXPECT_EQ(text, refusalOf([&] { linesOf(nullptr); }));
    EXPECT_EQ("Strips are cut from one plane or one volume, not from an image of size 4 x 4 x 2 x 1 x 1", linesOf(volume));
    ImageZStrip3dSplit<CopyRawZ, const image::BaseImage, InTinyZStrip> slices;
    EXPECT_TRUE(slices.initBase(volume, image::eSAT_View, image::eSPD_Forward).getValue());
    EXPECT_FALSE(slices.initBase(channels, image::eSAT_View, image::eSPD_Forward).getValue());

    SubImageSplit<HookLvl2, InTinyImg> images;
    EXPECT_EQ(text, refusalOf([&] { images.initBase(eSIST_Plane, eVPT_Slices, eCPT_Channels, eTPT_Times, nullptr); }));
    EXPECT_FALSE(images.initBase(eSIST_Volume, eVPT_Slices, eCPT_Channels, eTPT_Times, volume).getValue());
    ASSERT_TRUE(images.initBase(eSIST_Volume, eVPT_Whole, eCPT_Channels, eTPT_Times, channels).getValue());
    boost::shared_ptr<const image::BaseImage> element;
    EXPECT_EQ("There is no sub-image 2 among 2", images.getSubImage(2, element).getMessage());

    PlanIndexedSplit<HookLvl3, PlanIndexedMarks, OutMarks> lists;
    EXPECT_EQ(text, refusalOf([&] { lists.initBase(nullptr, 1, 1, 1, false); }));
    processor::StaticResultSplit<HookLvl3, OutMarks> results;
    EXPECT_EQ(text, refusalOf([&] { results.init(nullptr, Marks::createNode()); }));
    processor::DynamicByCreationResultSplit<HookLvl3, OutMarks> created;
    EXPECT_EQ(text, refusalOf([&] { created.init(nullptr); }));
}

// --- lists and results

TEST(PlanIndexedSplit, FailsWithThePlaneThatHasNoEntry)
{
    const boost::shared_ptr<PlanIndexedMarks> coll = PlanIndexedMarks::createColl();
    PlanIndexedSplit<HookLvl3, PlanIndexedMarks, OutMarks> split;
    coll->insert(PlanIndex(0, 0, 0), Marks::createNode());
    coll->insert(PlanIndex(0, 1, 0), Marks::createNode());
    ASSERT_TRUE(split.initBase(coll, 2, 2, 1, false).getValue());
    HookLvl3 child;
    child.init(processor::ePRP_WithRules);
    EXPECT_EQ("The plan-indexed collection has no entry for plane (1, 0, 0)",
              split.processAttribute(child, 1, g_origin).getMessage());
}

TEST(ResultSplits, EachChildGetsACopyOfThePrototypeAndOldResultsAreDropped)
{
    processor::StaticResultSplit<HookLvl3, OutMarks> split;
    const processor::ResultsOfPlanes<Marks> results;
    (*results)[99] = Marks::createNode();
    const boost::shared_ptr<Marks> prototype = Marks::createNode();
    prototype->access<Marks::Coll>().push_back(Mark::createNode(1, 2, 3));
    split.init(results, prototype);
    EXPECT_TRUE(results->empty());
    const boost::shared_ptr<Marks> first = given<OutMarks>(split, 4u);
    EXPECT_EQ((*results)[4], first);
    EXPECT_EQ(3, (*first)[0].get<Mark::Id>());
    EXPECT_TRUE(first != prototype && first != given<OutMarks>(split, 4u));
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

/// Into `out`, or where that is null into an image that is made.
template<bool Volumes>
ImagePtr hashed(const ImagePtr& in, const boost::shared_ptr<const Reach>& reach, const ImagePtr& out)
{
    return ran<HashLvl1<Volumes>, InTinyImg, InReach, OutTinyImg>(in, reach, out)->template getStorage<OutTinyImg>();
}

/// Whatever the strips: nearly as many lines, or slices, as there are, and fewer.
template<bool Volumes>
void expectHashes(const ImagePtr& in, const boost::shared_ptr<const Reach>& reach)
{
    const ImagePtr expected = image::createImageLike(*in, image::eIBT_UInt32);
    forEachSample(in->getGeometry().getSizes(), [&](auto x, auto y, auto z, auto c, auto t) {
        static_cast<Hash*>(expected->accessLine(y, z, c, t))[x] = expectedHash(*in, *reach, Volumes, x, y, z, c, t);
    });
    for (const unsigned long grain : {0, 1, 2, 3, 5, 6, 7}) {
        const WithGrain strips(grain);
        EXPECT_TRUE(sameSamples(*expected, *hashed<Volumes>(in, reach, nullptr))) << grain << " per strip, " << Volumes;
        for (const unsigned int nbThreads : {1, 4}) {
            const WithThreads threads(nbThreads);
            const ImagePtr over = in->getBufferType() == image::eIBT_UInt32 ? copyOf(*in) : nullptr;
            if (over) {
                EXPECT_TRUE(sameSamples(*expected, *hashed<Volumes>(over, reach, over))) << grain << " in place";
            }
        }
    }
}

const boost::shared_ptr<Reach> g_reaches[] = {Reach::createNode(1, 1, 1, 1, 1, 1, image::eBT_Value, 0.0),
                                              Reach::createNode(3, 0, 0, 2, 2, 0, image::eBT_Min, 0.0),
                                              Reach::createNode(0, 5, 4, 1, 0, 3, image::eBT_Max, 0.0),
                                              Reach::createNode(2, 70, 9, 0, 1, 1, image::eBT_Value, 7.0),
                                              Reach::createNode(2, 9, 1, 6, 3, 4, image::eBT_Nearest, 0.0)};

typedef ::testing::TestWithParam<image::eImageBufferType> StripsWithMargins;
INSTANTIATE_TEST_SUITE_P(AllTypes, StripsWithMargins, ::testing::ValuesIn(kAllTypes));

TEST_P(StripsWithMargins, ShowPlanesAndVolumesAndTheBorderForAnyStripsAndThreadsAlsoInPlace)
{
    for (const auto& reach : g_reaches) {
        expectHashes<false>(randomImage(GetParam(), ImageSizes(67, 7, 2, 1, 2)), reach);
        expectHashes<true>(randomImage(GetParam(), ImageSizes(5, 4, 6, 2, 1)), reach);
        expectHashes<false>(randomImage(GetParam(), ImageSizes(1, 1, 2)), reach);
        expectHashes<true>(randomImage(GetParam(), ImageSizes(1, 1, 2)), reach);
    }
}

// --- runs

/// Aligned and own number of samples, part, first column, line.
typedef std::array<unsigned long, 5> Run;

/// Copies by class `Lvl3` in strips of two lines and compares the runs of each line with those expected of the first.
template<class Lvl3>
void expectRuns(const ImageSizes& sizes, const std::vector<Run>& ofLine)
{
    const WithThreads one(1);
    const WithGrain two(2);
    const ImagePtr in = randomImage(image::eIBT_UInt8, sizes);
    RunLog::s_runs.clear();
    EXPECT_TRUE(sameSamples(*in, *ran<CopyLvl1<Lvl3>, InTinyImg>(in)->template getStorage<OutTinyImg>()));
    std::vector<Run> expected, runs;
    // Lines of a volume's strip count over all its slices.
    for (unsigned long line = 0; line < sizes.y * sizes.z; ++line)
        for (Run run : ofLine) {
            run[4] = line % (sizes.z > 1 ? 2 * sizes.y : 2);
            expected.push_back(run);
        }
    for (const processor::ProcessingInfo& info : RunLog::s_runs)
        runs.push_back({info.nbAlignedData, info.nbData, info.partIndex, info.firstColumn, info.lineIndex});
    EXPECT_EQ(expected, runs) << toString(sizes);
}

TEST(Runs, AreWholeBlocksThenTheRestOfRawLinesAndWholeOtherLines)
{
    expectRuns<CopyRaw64>({1, 3}, {{64, 1, 0, 0}});
    expectRuns<CopyRaw64>({64, 3}, {{64, 64, 0, 0}});
    expectRuns<CopyRaw64>({65, 3}, {{64, 64, 0, 0}, {64, 1, 1, 64}});
    expectRuns<CopyRaw16>({150, 3}, {{128, 128, 0, 0}, {32, 22, 1, 128}});
    expectRuns<CopyRaw16>({17, 3}, {{32, 17, 0, 0}});
    expectRuns<CopyLine64>({150, 3}, {{192, 150, 0, 0}});
    expectRuns<CopyLine256>({150, 3}, {{256, 150, 0, 0}});
    expectRuns<CopyRawZ>({5, 3, 4}, {{64, 5, 0, 0}});
}

/// A kernel that reads and writes all that it may, on callers' buffers whose lines end where the next begins.
template<class Lvl3>
void expectNothingTouchedOutside()
{
    for (const image::eImageBufferType type : {image::eIBT_UInt8, image::eIBT_Int16, image::eIBT_Real32})
        for (const unsigned long width : {1, 15, 63, 64, 65, 100, 128, 200, 256, 320, 600})
            for (const unsigned long gap : {0, 1, 7}) {
                const ImageSizes sizes(width, 3, std::is_same<Lvl3, CopyRawZ>::value ? 2 : 1);
                const GuardedImage in(*randomImage(type, sizes, 3), gap), out(type, sizes, gap);
                const ImagePtr own = randomImage(type, sizes, 4);
                // Wrapped to wrapped, wrapped to the frame's own, the frame's own to wrapped, and in place.
                const ImagePtr pairs[][2] = {{in.get(), out.get()}, {in.get(), own}, {own, out.get()}, {in.get(), in.get()}};
                for (const auto& pair : pairs) {
                    const ImagePtr before = copyOf(*pair[0]);
                    ran<CopyLvl1<Lvl3>, InTinyImg, OutTinyImg>(pair[0], pair[1]);
                    EXPECT_TRUE(sameSamples(*before, *pair[1])) << "gap " << gap;
                }
            }
}

TEST(WrappedBuffers, NothingIsReadOrWrittenOutsideTheirSamples)
{
    expectNothingTouchedOutside<CopyRaw16>();
    expectNothingTouchedOutside<CopyRaw64>();
    expectNothingTouchedOutside<CopyLine64>();
    expectNothingTouchedOutside<CopyRawZ>();
    // Nor by kernels that reach farther than the lines' padding.
    expectNothingTouchedOutside<CopyRaw256>();
    expectNothingTouchedOutside<CopyLine256>();
}

TEST(OwnImages, AreNotTouchedOutsideTheirLinesByKernelsThatReachFar)
{
    for (const unsigned long width : {1, 64, 70, 300}) {
        const ImageSizes sizes(width, 3, 2);
        const ImagePtr in = randomImage(image::eIBT_UInt8, sizes, 1), out = randomImage(image::eIBT_UInt8, sizes, 2);
        const ImagePtr expected = copyOf(*out);
        // The upper plane is written by the kernel, the lower one, which follows in memory, belongs to somebody else.
        copySamples(*in->getView(PlanIndex(0), 1), *expected->getView(PlanIndex(0), 1));
        ran<CopyLvl1<CopyLine256>, InTinyImg, OutTinyImg>(in->getView(PlanIndex(0), 1), out->getView(PlanIndex(0), 1));
        EXPECT_TRUE(sameSamples(*expected, *out));
    }
}

TEST(Runs, OnStripsThatDoNotGoTogetherFailInWords)
{
    const auto copyTo = [](const ImagePtr& out) {
        return runRefusal(processorWith<CopyRaw64, InTinyYStrip, OutTinyYStrip>(stripOf(blank(9, 4)), outStripOf(out)));
    };
    EXPECT_EQ("CopyRaw64: the lines of the strips differ in length: 9 and 8 samples", copyTo(blank(8, 3)));
    EXPECT_EQ("CopyRaw64: the strips differ in size: 4 and 3 lines", copyTo(blank(9, 3)));
    EXPECT_EQ("CopyRaw64: the strips do not have the sample types that go together",
              runRefusal(processorWith<CopyLvl1<CopyRaw64>, InTinyImg, OutTinyImg>(blank(9, 4),
                                                                                   blank(9, 4, 1, 1, image::eIBT_Real32))));
}

// --- dispatchers

TEST(Dispatchers, RefuseSplitsThatDisagreeOnTheNumberOfElements)
{
    const ImagePtr tall = blank(8, 5), low = blank(8, 4);
    processor::ProviderPtr provider;
    processor::RetrievalResult result =
        dispatch<CopyRaw64>(core::BasePriority(), provider, strips<InTinyYStrip>(tall), strips<OutTinyYStrip>(low));
    EXPECT_EQ(processor::eRRT_RetrievalFailed, result.getValue());
    EXPECT_EQ("CopyRaw64: attribute OutTinyYStrip has 4 elements, attribute InTinyYStrip has 5", result.getMessage());
    result = dispatch<HookLvl3>(core::BasePriority(), provider, imaproc::same<OutMarks>(Marks::createNode()));
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

TEST(Dispatchers, HandOutAsManyElementsAsTheyAnnouncedAndTellTheEnd)
{
    const WithGrain strip(10);
    processor::ProviderPtr provider;
    ASSERT_EQ(processor::eRRT_ProviderRetrieved,
              dispatch<HookLvl3>(core::BasePriority(), provider, strips<InTinyYStrip>(blank(9, 97)),
                                 resultOfEach<OutMarks>(processor::ResultsOfStrips<Marks>()))
                  .getValue());
    const unsigned long nbAnnounced = provider->start(3);
    unsigned long nbRequests = 0;
    for (bool hasMore = true; hasMore; ++nbRequests) {
        boost::shared_ptr<core::BaseActionRequest> request;
        boost::shared_ptr<BaseSerializationObject> data;
        ASSERT_TRUE(provider->hasPendingAction() && provider->queryNextAction(g_origin, request, hasMore, data).getValue());
        bool ended = false;
        provider->notifyDerived(request, data, ended);
        EXPECT_EQ(!hasMore, ended);
    }
    EXPECT_EQ(nbAnnounced, nbRequests);
}

}  // namespace
}  // namespace orvik::test
