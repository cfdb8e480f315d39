// Records, collections, archives, factories.

#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl1.h"
#include "HookRuns.h"

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
        return processor::eRRT_NoMoreProvider;
    }
    template<class T>
    const T& get() const
    {
        return *attribute<T>();
    }
};
TINY_DEFINE(Parameters, Parameters);

}  // namespace orvik::imaproc::tiny

namespace orvik::test { namespace {

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

TEST(Records, StartAtZeroAndAreCopiedByValue)
{
    const boost::shared_ptr<Leaves> record = Leaves::createNode();
    EXPECT_TRUE(same(Numbers(7), numbersOf(*record)));
    const Leaves copy(*record);
    record->set<Leaves::Int>(9);
    EXPECT_TRUE(same(Numbers(7), numbersOf(copy)));
    EXPECT_EQ("Leaves of ULong", std::string(record->getNodeName()) + " of " + Leaves::ULong::getName());
}

TEST(Records, ComeBackFromAnArchiveWithEveryBit)
{
    Leaves back;
    for (const auto& record : {extremes(), Leaves::createNode(false, 0, 0, 0, 0, -0.0f, -kInfinity)}) {
        const std::string text = written(*record);
        ASSERT_TRUE(readFrom(text, back).getValue());
        EXPECT_EQ(text, written(back));
        EXPECT_TRUE(same(numbersOf(*record), numbersOf(back)));
    }
    ASSERT_TRUE(readFrom(written(*Leaves::createNode(false, 0, 0, 0, 0, 0, kNan)), back).getValue());
    EXPECT_TRUE(std::isnan(back.get<Leaves::Double>()));
}

TEST(Records, OfAMalformedArchiveAreRefusedWithTheLine)
{
    const std::string text = written(*extremes());
    Leaves record;
    // What stands in the archive, what takes its place, and what is told.
    const std::string invalid = " of the archive holds no valid value: ",
                      close = "The archive should close a section but has: ";
    const std::string open = "The archive should open section Leaves but has: ";
    const std::string faults[][3] = {
        {text, "", open + "the end of the archive"},
        {text, "{ Mark\n", open + "{ Mark"},
        {"  Int = -2147483648\n", "", "The archive should have item Int but has: Long = 9223372036854775807"},
        {"}", "more = 1\n}", close + "more = 1"},
        {"}\n", "", close + "the end of the archive"},
        {" Flag = 1\n", " Flag = 2\n", "Item Flag" + invalid + "2"},
        {" Flag = 1\n", " Flag = \n", "Item Flag" + invalid},
        {" Int = -2147483648\n", " Int = 2147483648\n", "Item Int" + invalid + "2147483648"},
        {"ULong = 18446744073709551615\n", "ULong = -1\n", "Item ULong" + invalid + "-1"},
        {"UInt = 4294967295\n", "UInt = 4294967296\n", "Item UInt" + invalid + "4294967296"},
        {"18446744073709551615\n", "18446744073709551616\n", "Item ULong" + invalid + "18446744073709551616"},
        {"18446744073709551615\n", "7x\n", "Item ULong" + invalid + "7x"},
        {"9223372036854775807\n", "9223372036854775808\n", "Item Long" + invalid + "9223372036854775808"},
        {"-1.5555555555555p-2", "one third", "Item Double" + invalid + "one third"}};
    for (const auto& [from, to, told] : faults)
        EXPECT_EQ(told, readFailure(replaced(text, from, to), record));
}

TEST(Records, KeepListsOfPlainValues)
{
    const std::string text = written(*ListLeaves::createNode({5, ~0ul}, {}, -3));
    const boost::shared_ptr<ListLeaves> back = ListLeaves::createNode({1, 2, 3, 4}, {0.5}, 0);
    ASSERT_TRUE(readFrom(text, *back).getValue());
    EXPECT_EQ(text, written(*back));
    EXPECT_EQ((std::vector<unsigned long>{5, ~0ul}), back->get<ListLeaves::ULongs>());
    EXPECT_EQ("The archive should have item ULongs but has: Doubles.size = 0",
              readFailure(replaced(text, "ULongs.size = 2", "ULongs.size = 18446744073709551615"), *back));
    EXPECT_EQ("The archive should have item Doubles.size but has: ULongs = 18446744073709551615",
              readFailure(replaced(text, "ULongs.size = 2", "ULongs.size = 1"), *back));
}

TEST(Archives, SayWhatCanNotBeWrittenWhatIsLeftOpenAndWhichVersionIsUnknown)
{
    std::ostringstream stream;
    stream.setstate(std::ios::badbit);
    BaseOArchive archive(stream);
    EXPECT_EQ("Item Flag could not be written to the archive",
              thrownText<ORVIKSerializationException>([&] { extremes()->write(archive); }));
    EXPECT_FALSE(archive.isClassVersionRegistred("A"));
    EXPECT_EQ("The archive holds no version of class A",
              thrownText<ORVIKSerializationException>([&] { archive.getRegisterClassVersion("A"); }));
    std::istringstream open("{ a\nb = 1\n}\n");
    BaseIArchive read(open);
    EXPECT_EQ("The archive should close a section but has: b = 1",
              thrownText<ORVIKSerializationException>([&] { const ArchiveSectionManager section(read, "a"); }));
}

// --- collections

TEST(Lists, RefuseNullAndRecordsOfAnotherTypeAndComeBackFromAnArchive)
{
    const boost::shared_ptr<Marks> marks = threeMarks();
    BaseDataItemNodeColl& list = marks->access<Marks::Coll>();
    const std::string text = "A list of Mark was given a null record or one of another type";
    EXPECT_EQ(text, thrownText<ORVIKUtilException>([&] { list.push_back(boost::shared_ptr<BaseDataItemNode>()); }));
    EXPECT_EQ(text, thrownText<ORVIKUtilException>([&] { list.push_back(extremes()); }));
    list.push_back(boost::shared_ptr<BaseDataItemNode>(Mark::createNode(1, 2, 3)));
    Marks back;
    back.access<Marks::Coll>().push_back(Mark::createNode(9, 9, 9));
    ASSERT_TRUE(readFrom(written(*marks), back).getValue());
    EXPECT_TRUE(same({4, 0.1, 7, 1, -0.2, 7, -2, 0.1 * 3, 7, 3, 1, 2, 3}, numbersOf(back)));
}

TEST(PlanIndexedColl, RunsThroughPlanesZFastestThenCThenT)
{
    const boost::shared_ptr<PlanIndexedMarks> coll = PlanIndexedMarks::createColl();
    for (const PlanIndex& plan : {PlanIndex(0, 0, 1), PlanIndex(1, 0, 0), PlanIndex(0, 1, 0), PlanIndex(0, 0, 0)})
        coll->insert(plan, Marks::createNode());
    const boost::shared_ptr<Marks> other = Marks::createNode();
    coll->insert(PlanIndex(1, 0, 0), other);
    EXPECT_TRUE((std::vector<PlanIndex>{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}) == coll->getPlans());
    EXPECT_TRUE(other == coll->getStorage(PlanIndex(1, 0, 0)) && other == coll->getEntry(PlanIndex(1, 0, 0)));
    EXPECT_FALSE(coll->getEntry(PlanIndex(1, 1, 0)));
    const std::string text = "A plan-indexed collection was given an entry that is null or of another type than its own";
    EXPECT_EQ(text, thrownText<ORVIKUtilException>([&] { coll->insert(PlanIndex(), nullptr); }));
    EXPECT_EQ(text, thrownText<ORVIKUtilException>([&] { coll->insert(PlanIndex(), Mark::createNode()); }));
}

// --- processors

TEST(ProcessorArchive, KeepsParametersButNoImagesAndNoResults)
{
    const auto from = processorWith<Parameters, InTinyImg, InLeaves, InMarks, InWeight, InOptNeighbours, OutWeight>(
        blank(2, 2), extremes(), threeMarks(), 0.1, imaproc::attr::eN2D_Four, 5);
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
        const auto to = processorWith<Parameters, InWeight, InOptNeighbours, InOptReach>(3, imaproc::attr::eN2D_Four,
                                                                                         Reach::createNode());
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
    ASSERT_TRUE((processorWith<Parameters, InWeight>(1)->write(out).getValue() && MaxL2Norm2MsrLvl1().write(out).getValue()
                 && processorWith<Parameters, InWeight>(2)->write(out).getValue()));
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
    std::istringstream stream(text);
    BaseIArchive archive(stream);
    archive.registerClassVersion(Parameters::getTypeName(), 3);  // as if the class had been met before
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
    EXPECT_EQ("Level 1 algorithm: Computation of global maximum of L2 (euclidian) norm of two images", info.toolTip);
    EXPECT_TRUE(norm.getObjectName() == info.objectName && norm.getToolTip() == info.toolTip);
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
