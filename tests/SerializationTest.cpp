// Records, collections, archives, factories.

#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl1.h"
#include "TestRuns.h"
#include "TinyProcessor.h"

#include "frame/attr/Enumerations.h"
#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/ProcessorFactory.h"
#include "frame/serialization/Archive.h"

#include <cmath>
#include <limits>
#include <sstream>

namespace orvik::imaproc::tiny {

ORVIK_RECORD(Leaves, (bool, Flag)(int, Int)(long, Long)(unsigned int, UInt)(unsigned long, ULong)(float, Float)(double, Double));
ORVIK_RECORD_DEFINE(Leaves)
ORVIK_RECORD(ListLeaves, (std::vector<unsigned long>, ULongs)(std::vector<double>, Doubles)(int, Int));
ORVIK_RECORD_DEFINE(ListLeaves)

ORVIK_INPUT(InLeaves, (processor::InputDataItem<Leaves>), "one leaf of each type");
ORVIK_INPUT(InWeight, (processor::BaseValueAttribute<double>), "a number");
ORVIK_OPTIONAL_INPUT(InOptNeighbours, (processor::BaseValueAttribute<attr::eNeighborhood2d>), attr::eN2D_Eight,
                     "an enumerator");
ORVIK_OPTIONAL_INPUT(InOptReach, (processor::InputOptionalDataItem<Reach>), Reach::createNode(1, 2, 3, 4, 5, 6, 0, 0.5),
                     "a record");
ORVIK_OUTPUT(OutWeight, (processor::BaseValueAttribute<double>), "a result");

/// Parameters of all kinds, and nothing to do; in its second version.
class Parameters : public processor::Processor<Parameters, processor::BaseAsync1Processor, InTinyImg, InLeaves, InMarks,
                                               InWeight, InOptNeighbours, InOptReach, OutWeight>
{
    ORVIK_PROCESSOR(Parameters, 20)

    static constexpr unsigned int s_version = 2;
    using processor::BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority&, processor::ProviderPtr&) override
    {
        return processor::RetrievalResult(processor::eRRT_NoMoreProvider);
    }
    template<class T>
    const T& get() const
    {
        return *attribute<T>();
    }
};
Parameters::Parameters() = default;
Parameters::~Parameters() = default;

}  // namespace orvik::imaproc::tiny

namespace orvik::test { namespace {

using namespace imaproc::tiny;
using imaproc::fd::MaxL2Norm2MsrLvl1;

template<class T>
std::string written(const T& object)
{
    std::ostringstream stream;
    BaseOArchive archive(stream);
    const BoolResult result = object.write(archive);
    EXPECT_TRUE(result.getValue()) << result.getMessage();
    return stream.str();
}

template<class T>
BoolResult readFrom(const std::string& text, T& object)
{
    std::istringstream stream(text);
    BaseIArchive archive(stream);
    return object.read(archive);
}

template<class T>
std::string readFailure(const std::string& text, T& object)
{
    return thrownText<ORVIKSerializationException>([&] { readFrom(text, object); });
}

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    const std::string::size_type place = text.find(from);
    EXPECT_NE(std::string::npos, place) << from << " in:\n" << text;
    return place == std::string::npos ? text : text.replace(place, from.size(), to);
}

boost::shared_ptr<Leaves> extremes()
{
    return Leaves::createNode(true, std::numeric_limits<int>::min(), std::numeric_limits<long>::max(), ~0u, ~0ul,
                              std::numeric_limits<float>::denorm_min(), -1.0 / 3.0);
}

boost::shared_ptr<Marks> threeMarks()
{
    const boost::shared_ptr<Marks> marks = Marks::createNode();
    for (const long id : {1, -2, 3})
        marks->access<Marks::Coll>().push_back(Mark::createNode(0.1 * static_cast<double>(id), 7, id));
    return marks;
}

// --- records

TEST(Records, HaveTypedLeavesThatStartAtZero)
{
    const boost::shared_ptr<Leaves> record = Leaves::createNode();
    EXPECT_FALSE(record->get<Leaves::Flag>());
    EXPECT_EQ(0, record->get<Leaves::Double>());
    record->set<Leaves::Int>(-4);
    const Leaves copy(*record);
    record->set<Leaves::Int>(9);
    EXPECT_EQ(-4, copy.get<Leaves::Int>());
    EXPECT_STREQ("Leaves", record->getNodeName());
    EXPECT_STREQ("ULong", Leaves::ULong::getName());
}

TEST(Records, ComeBackFromAnArchiveWithEveryBit)
{
    const std::string text = written(*extremes());
    Leaves back;
    ASSERT_TRUE(readFrom(text, back).getValue());
    EXPECT_EQ(text, written(back));
    EXPECT_EQ(std::numeric_limits<float>::denorm_min(), back.get<Leaves::Float>());
    EXPECT_EQ(-1.0 / 3.0, back.get<Leaves::Double>());

    const double infinity = std::numeric_limits<double>::infinity();
    ASSERT_TRUE(readFrom(written(*Leaves::createNode(false, 0, 0, 0, 0, -0.0f, -infinity)), back).getValue());
    EXPECT_TRUE(std::signbit(back.get<Leaves::Float>()));
    EXPECT_EQ(-infinity, back.get<Leaves::Double>());
    ASSERT_TRUE(readFrom(written(*Leaves::createNode(false, 0, 0, 0, 0, 0, std::nan(""))), back).getValue());
    EXPECT_TRUE(std::isnan(back.get<Leaves::Double>()));
}

TEST(Records, OfAMalformedArchiveAreRefusedWithTheLine)
{
    const std::string text = written(*extremes());
    Leaves record;
    EXPECT_EQ("The archive should open section Leaves but has: the end of the archive", readFailure("", record));
    EXPECT_EQ("The archive should open section Leaves but has: { Mark", readFailure("{ Mark\n", record));
    EXPECT_EQ("The archive should have item Int but has: Long = 9223372036854775807",
              readFailure(replaced(text, "  Int = -2147483648\n", ""), record));
    EXPECT_EQ("The archive should close a section but has: more = 1",
              readFailure(replaced(text, "}", "more = 1\n}"), record));
    EXPECT_EQ("The archive should close a section but has: the end of the archive",
              readFailure(replaced(text, "}\n", ""), record));
    const char* const faults[][3] = {{"Flag", "1", "2"},
                                     {"Flag", "1", ""},
                                     {"Int", "-2147483648", "2147483648"},
                                     {"UInt", "4294967295", "-1"},
                                     {"UInt", "4294967295", "4294967296"},
                                     {"ULong", "18446744073709551615", "18446744073709551616"},
                                     {"ULong", "18446744073709551615", "7x"},
                                     {"Long", "9223372036854775807", "9223372036854775808"}};
    for (const auto& fault : faults) {
        const std::string item = std::string(fault[0]) + " = ";
        EXPECT_EQ("Item " + std::string(fault[0]) + " of the archive holds no valid value: " + fault[2],
                  readFailure(replaced(text, " " + item + fault[1] + "\n", " " + item + fault[2] + "\n"), record));
    }
    EXPECT_EQ("Item Double of the archive holds no valid value: one third",
              readFailure(replaced(text, "Double = -1.5555555555555p-2", "Double = one third"), record));
}

TEST(Records, KeepListsOfPlainValues)
{
    const std::string text = written(*ListLeaves::createNode({5, ~0ul}, {}, -3));
    const boost::shared_ptr<ListLeaves> back = ListLeaves::createNode({1, 2, 3, 4}, {0.5}, 0);
    ASSERT_TRUE(readFrom(text, *back).getValue());
    EXPECT_EQ((std::vector<unsigned long>{5, ~0ul}), back->get<ListLeaves::ULongs>());
    EXPECT_TRUE(back->get<ListLeaves::Doubles>().empty());
    EXPECT_EQ(-3, back->get<ListLeaves::Int>());
    EXPECT_EQ("The archive should have item ULongs but has: Doubles.size = 0",
              readFailure(replaced(text, "ULongs.size = 2", "ULongs.size = 18446744073709551615"), *back));
    EXPECT_EQ("The archive should have item Doubles.size but has: ULongs = 18446744073709551615",
              readFailure(replaced(text, "ULongs.size = 2", "ULongs.size = 1"), *back));
}

TEST(Archives, ThatCanNotBeWrittenOrHaveASectionLeftOpenSaySo)
{
    std::ostringstream stream;
    stream.setstate(std::ios::badbit);
    BaseOArchive archive(stream);
    EXPECT_EQ("Item Flag could not be written to the archive",
              thrownText<ORVIKSerializationException>([&] { extremes()->write(archive); }));
    std::istringstream open("{ a\nb = 1\n}\n");
    BaseIArchive read(open);
    EXPECT_EQ("The archive should close a section but has: b = 1",
              thrownText<ORVIKSerializationException>([&] { const ArchiveSectionManager section(read, "a"); }));
}

TEST(Archives, KeepTheVersionsOfTheClassesMet)
{
    std::ostringstream stream;
    BaseOArchive archive(stream);
    EXPECT_FALSE(archive.isClassVersionRegistred("A"));
    archive.registerClassVersion("A", 3);
    EXPECT_TRUE(archive.isClassVersionRegistred("A"));
    EXPECT_EQ(3u, archive.getRegisterClassVersion("A"));
    EXPECT_EQ("The archive holds no version of class B",
              thrownText<ORVIKSerializationException>([&] { archive.getRegisterClassVersion("B"); }));
}

// --- collections

TEST(Lists, RefuseNullAndRecordsOfAnotherType)
{
    const boost::shared_ptr<Marks> marks = threeMarks();
    BaseDataItemNodeColl& list = marks->access<Marks::Coll>();
    const std::string text = "A list of Mark was given a null record or one of another type";
    EXPECT_EQ(text, thrownText<ORVIKUtilException>([&] { list.push_back(boost::shared_ptr<BaseDataItemNode>()); }));
    EXPECT_EQ(text, thrownText<ORVIKUtilException>([&] { list.push_back(extremes()); }));
    EXPECT_EQ(3u, list.size());
    list.push_back(boost::shared_ptr<BaseDataItemNode>(Mark::createNode(1, 2, 3)));
    EXPECT_EQ(3, (*marks)[3].get<Mark::Id>());
    list.clear();
    EXPECT_EQ(0u, marks->size());
}

TEST(Lists, ComeBackFromAnArchive)
{
    const std::string text = written(*threeMarks());
    Marks back;
    back.access<Marks::Coll>().push_back(Mark::createNode(9, 9, 9));
    ASSERT_TRUE(readFrom(text, back).getValue());
    ASSERT_EQ(3u, back.size());
    EXPECT_EQ(-2, back[1].get<Mark::Id>());
    EXPECT_EQ(0.1 * 3, back[2].get<Mark::X>());
    EXPECT_EQ(text, written(back));
}

TEST(PlanIndexedColl, RunsThroughPlanesZFastestThenCThenT)
{
    const boost::shared_ptr<PlanIndexedMarks> coll = PlanIndexedMarks::createColl();
    for (const PlanIndex& plan : {PlanIndex(0, 0, 1), PlanIndex(1, 0, 0), PlanIndex(0, 1, 0), PlanIndex(0, 0, 0)})
        coll->insert(plan, Marks::createNode());
    const std::vector<PlanIndex> order = {PlanIndex(0, 0, 0), PlanIndex(1, 0, 0), PlanIndex(0, 1, 0), PlanIndex(0, 0, 1)};
    EXPECT_TRUE(order == coll->getPlans());
    EXPECT_EQ(4u, coll->getNbPlans());
    const boost::shared_ptr<Marks> other = Marks::createNode();
    coll->insert(PlanIndex(1, 0, 0), other);
    EXPECT_EQ(4u, coll->getNbPlans());
    EXPECT_EQ(other, coll->getStorage(PlanIndex(1, 0, 0)));
    EXPECT_EQ(other, coll->getEntry(PlanIndex(1, 0, 0)));
    EXPECT_FALSE(coll->getEntry(PlanIndex(1, 1, 0)));
    const std::string text = "A plan-indexed collection was given an entry that is null or of another type than its own";
    EXPECT_EQ(text, thrownText<ORVIKUtilException>([&] { coll->insert(PlanIndex(), nullptr); }));
    EXPECT_EQ(text, thrownText<ORVIKUtilException>([&] { coll->insert(PlanIndex(), Mark::createNode()); }));
    coll->clear();
    EXPECT_EQ(0u, coll->getNbPlans());
}

// --- processors

TEST(ProcessorArchive, KeepsParametersButNoImagesAndNoResults)
{
    const auto from = processor::createInitialised<Parameters>();
    from->set<InTinyImg>(image::createImage(image::eIBT_UInt8, image::ImageSizes(2, 2)));
    from->set<InLeaves>(extremes());
    from->set<InMarks>(threeMarks());
    from->set<InWeight>(0.1);
    from->set<InOptNeighbours>(imaproc::attr::eN2D_Four);
    from->set<OutWeight>(5);
    const std::string text = written(*from);

    const boost::shared_ptr<Parameters> to = boost::make_shared<Parameters>();
    ASSERT_TRUE(readFrom(text, *to).getValue());
    EXPECT_EQ(written(*extremes()), written(*to->get<InLeaves>().getStorage()));
    EXPECT_EQ(written(*threeMarks()), written(*to->get<InMarks>().getStorage()));
    EXPECT_EQ(0.1, to->get<InWeight>().getStorage());
    EXPECT_EQ(imaproc::attr::eN2D_Four, to->get<InOptNeighbours>().getStorage());
    EXPECT_FALSE(to->get<InOptReach>().hasValue()) << "unset stays unset";
    EXPECT_EQ(2u, to->get<InOptReach>().getStorage()->get<Reach::EndX>()) << "and reads as its default";
    EXPECT_FALSE(to->get<InTinyImg>().hasValue());
    EXPECT_FALSE(to->get<OutWeight>().hasValue());
    EXPECT_EQ(text, written(*to));
}

TEST(ProcessorArchive, ReadingTakesAwayWhatTheArchiveDoesNotHold)
{
    for (const std::string& text : {written(*processor::createInitialised<Parameters>()), written(Parameters())}) {
        const auto to = processor::createInitialised<Parameters>();
        to->set<InWeight>(3);
        to->set<InOptNeighbours>(imaproc::attr::eN2D_Four);
        to->set<InOptReach>(Reach::createNode());
        ASSERT_TRUE(readFrom(text, *to).getValue());
        EXPECT_FALSE(to->get<InWeight>().hasValue() || to->get<InOptNeighbours>().hasValue());
        EXPECT_EQ(imaproc::attr::eN2D_Eight, to->get<InOptNeighbours>().getStorage());
        EXPECT_EQ(2u, to->get<InOptReach>().getStorage()->get<Reach::EndX>());
    }
}

TEST(ProcessorArchive, HoldsTheVersionOfAClassOnce)
{
    std::stringstream stream;
    BaseOArchive out(stream);
    const auto a = processor::createInitialised<Parameters>(), b = processor::createInitialised<Parameters>();
    a->set<InWeight>(1);
    b->set<InWeight>(2);
    ASSERT_TRUE(a->write(out).getValue() && processor::createInitialised<MaxL2Norm2MsrLvl1>()->write(out).getValue()
                && b->write(out).getValue());
    for (const char* const once : {"{ orvik::imaproc::tiny::Parameters\n", "version = 2\n",
                                   "{ orvik::imaproc::fd::MaxL2Norm2MsrLvl1\n", "version = 1\n"})
        EXPECT_TRUE(stream.str().find(once) != std::string::npos && stream.str().find(once) == stream.str().rfind(once))
            << once;

    BaseIArchive in(stream);
    Parameters first, second;
    MaxL2Norm2MsrLvl1 between;
    ASSERT_TRUE(first.read(in).getValue() && between.read(in).getValue() && second.read(in).getValue());
    EXPECT_EQ(1, first.get<InWeight>().getStorage());
    EXPECT_EQ(2, second.get<InWeight>().getStorage());
    EXPECT_EQ(2u, in.getRegisterClassVersion("orvik::imaproc::tiny::Parameters"));
}

TEST(ProcessorArchive, OfALaterVersionIsRefusedAndOfAnOlderOneAccepted)
{
    Parameters parameters;
    const std::string text = written(parameters);
    EXPECT_EQ(
        "The archive holds version 3 of class orvik::imaproc::tiny::Parameters, which is more recent than the version in "
        "use (2)",
        readFailure(replaced(text, "version = 2", "version = 3"), parameters));
    EXPECT_TRUE(readFrom(replaced(text, "version = 2", "version = 1"), parameters).getValue());

    // The version that an archive has registered already counts the same.
    std::istringstream stream(text);
    BaseIArchive archive(stream);
    archive.registerClassVersion(Parameters::getTypeName(), 3);
    EXPECT_NE("", thrownText<ORVIKSerializationException>([&] { parameters.read(archive); }));
}

// --- identity and factories

TEST(Factories, MakeProcessorsByTheNameOfTheirClass)
{
    const std::string name = "orvik::imaproc::fd::MaxL2Norm2MsrLvl1", none = "orvik::imaproc::fd::Nothing";
    const auto& objects = DynamicObjectFactory::getInstance();
    const auto& processors = processor::ProcessorFactory::getInstance();
    const MaxL2Norm2MsrLvl1 norm;
    for (const DynamicObjectPtr& made :
         {DynamicObjectPtr(norm.createNew()), norm.createShared(), DynamicObjectPtr(MaxL2Norm2MsrLvl1::createNewObject()),
          DynamicObjectPtr(objects.createNew(name)), objects.createShared(name),
          DynamicObjectPtr(processors.createProcessor(name))}) {
        const auto processor = boost::dynamic_pointer_cast<MaxL2Norm2MsrLvl1>(made);
        ASSERT_TRUE(processor);
        EXPECT_FALSE(processor->isInitialised());
        EXPECT_EQ(name, processor->getClassName());
    }
    EXPECT_EQ(name, MaxL2Norm2MsrLvl1::getTypeName());
    const processor::ProcessorFactory::ProcessorInfo info = processors.getInfo(name);
    EXPECT_EQ("MaxL2Norm2MsrLvl1", info.objectName);
    EXPECT_EQ(norm.getObjectName(), info.objectName);
    EXPECT_EQ("Level 1 algorithm: Computation of global maximum of L2 (euclidian) norm of two images", info.toolTip);
    EXPECT_EQ(norm.getToolTip(), info.toolTip);
    EXPECT_EQ("ORVIKIPLFeatureDetection", info.libraryName);
    EXPECT_EQ("Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl1", info.headerPath);
    EXPECT_FALSE(processors.createProcessor(none));
    EXPECT_EQ(nullptr, objects.createNew(none));
    EXPECT_THROW(processors.getInfo(none), std::out_of_range);
}

TEST(Factories, KnowAClassForAsLongAsItsRegistratorsLive)
{
    const std::string name = Parameters::getTypeName();
    {
        const DynamicRegistrator<Parameters> dynamic;
        const processor::ProcessorRegistrator<Parameters> registrator;
        EXPECT_TRUE(DynamicObjectFactory::getInstance().isRegistered(name));
        EXPECT_TRUE(processor::ProcessorFactory::getInstance().createProcessor(name));
        EXPECT_EQ("Tiny", processor::ProcessorFactory::getInstance().getInfo(name).libraryName);
    }
    EXPECT_FALSE(DynamicObjectFactory::getInstance().isRegistered(name));
    EXPECT_FALSE(processor::ProcessorFactory::getInstance().isRegistered(name));
}

}  // namespace
}  // namespace orvik::test
