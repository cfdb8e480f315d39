// How a processor is initialised, checked, run stage by stage, and cleaned up.

#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl1.h"
#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl2.h"
#include "HookRuns.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace orvik::imaproc::tiny {

ORVIK_ATTRIBUTE_ROLE(InOptTinyImg, BaseInputImageAttribute, false, true, "optional image");
ORVIK_OPTIONAL_INPUT(InOptReach, (processor::InputOptionalDataItem<Reach>), Reach::createNode(), "optional window");
ORVIK_OPTIONAL_OUTPUT(OutOptTinyImg, (BaseOutputImageAttribute), "optional result");
ORVIK_OUTPUT(OutReal, (BaseOutputImageAttribute), "promoted result");
ORVIK_OUTPUT(OutReach, (processor::OutputDataItem<Reach>), "record");

/// What a scripted processor did, and what it is told to answer.
struct Script
{
    std::vector<std::string> log;
    std::string failAt, throwAt;
    unsigned int nbIterations = 0;
    /// Provider of a stage; empty unless set.
    std::function<processor::ProviderPtr()> provide;
    unsigned int noMoreFrom = ~0u;

    void enter(const std::string& step)
    {
        log.push_back(step);
        if (step == throwAt)
            throw std::domain_error("thrown at " + step);
    }
    processor::RetrievalResult stage(const std::string& step, unsigned int number, processor::ProviderPtr& provider)
    {
        enter(step);
        if (step == failAt)
            return failure("failed at " + step);
        if (number >= noMoreFrom)
            return processor::eRRT_NoMoreProvider;
        if (provide)
            provider = provide();
        return processor::eRRT_ProviderRetrieved;
    }
    processor::StageResult step(const std::string& name)
    {
        enter(name);
        return name == failAt ? failure("failed at " + name) : success();
    }
};

template<class D, class B>
class Scripted : public processor::Processor<D, B, InOptTinyImg>
{
public:
    mutable Script script;

    processor::StageResult preProcess() override { return script.step("pre"); }
    processor::StageResult postProcess() override { return script.step("post"); }
    void clearIntermediateData() noexcept override { script.log.push_back("clear"); }
    void cleanOnErrorDerived(const core::BaseAction::eCleanReason&) override { script.log.push_back("clean on error"); }
};

#define STAGE(retrieve, ...) \
    processor::RetrievalResult retrieve(const core::BasePriority&, processor::ProviderPtr& provider) override \
    { \
        return script.stage(__VA_ARGS__, provider); \
    }
struct Scripted1 : Scripted<Scripted1, processor::BaseAsync1Processor>
{
    ORVIK_PROCESSOR(Scripted1, 1)
    using BaseAsync1Processor::retrieveProvider;
    STAGE(retrieveProvider, "one", 0)
};
struct Scripted2 : Scripted<Scripted2, processor::BaseAsync2Processor>
{
    ORVIK_PROCESSOR(Scripted2, 2)
    STAGE(retrieveFirstProvider, "one", 0)
    STAGE(retrieveSecondProvider, "two", 1)
};
struct Scripted3 : Scripted<Scripted3, processor::BaseAsync3Processor>
{
    ORVIK_PROCESSOR(Scripted3, 3)
    STAGE(retrieveFirstProvider, "one", 0)
    STAGE(retrieveSecondProvider, "two", 1)
    STAGE(retrieveThirdProvider, "three", 2)
};
#undef STAGE
struct ScriptedRepeated : Scripted<ScriptedRepeated, processor::BaseRepeatedAsync1Processor>
{
    ORVIK_PROCESSOR(ScriptedRepeated, 4)
    using BaseRepeatedAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority&, unsigned int iteration,
                                                processor::ProviderPtr& p) override
    {
        return iteration > 5 ? invalidIteration(5) : script.stage(std::to_string(iteration), iteration, p);
    }
};
TINY_DEFINE(Scripted1, Scripted1);
TINY_DEFINE(Scripted2, Scripted2);
TINY_DEFINE(Scripted3, Scripted3);
TINY_DEFINE(ScriptedRepeated, ScriptedRepeated);

/// Mandatory and optional inputs, a rule on them and on the outputs, an initialiser of each kind.
class Outputs : public processor::Processor<Outputs, processor::BaseAsync1Processor, InTinyImg, InOptTinyImg, InOptReach,
                                            OutTinyImg, OutReal, OutOptTinyImg, OutReach, OutPIMarks>
{
    ORVIK_PROCESSOR(Outputs, 10)
    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority&, processor::ProviderPtr&) override
    {
        ++nbStages;
        return processor::eRRT_NoMoreProvider;
    }
    processor::RulePtr createRule() const
    {
        return matchSize(attribute<InTinyImg>(), attribute<OutTinyImg>())
               && matchSize(attribute<OutTinyImg>(), attribute<OutReal>())
               && processor::If(processor::isSet(attribute<InOptTinyImg>()),
                                matchBufferType(attribute<InTinyImg>(), attribute<InOptTinyImg>()))
               && matchImagePlans(attribute<OutPIMarks>(), attribute<InTinyImg>(), eIPMP_Volumes);
    }
    void initInitializers(processor::InitializerMap& map)
    {
        addInitializer<OutTinyImg>(map, duplicateInOut(attribute<OutTinyImg>(), attribute<InTinyImg>(),
                                                       image::eImageBufferType()));
        addInitializer<OutReal>(map, promoteUnary(attribute<OutReal>(), attribute<InTinyImg>()));
        const auto record = boost::make_shared<processor::AllocateInitializer<OutReach>>();
        record->initBase(attribute<OutReach>());
        addInitializer<OutReach>(map, record);
        addInitializer<OutPIMarks>(map, fromImageButVolume(attribute<OutPIMarks>(), attribute<InTinyImg>()));
    }
    template<class T>
    boost::shared_ptr<T> get() const
    {
        return attribute<T>();
    }
    unsigned int nbStages = 0;
};
TINY_DEFINE(Outputs, Outputs);

}  // namespace orvik::imaproc::tiny

namespace orvik::test { namespace {

using namespace imaproc;
using image::ImageSizes;

typedef std::vector<std::string> Log;

// --- before init, kinds, copying

TEST(Processor, IsMadeByInitWithUnsetAttributesInDeclarationOrder)
{
    const boost::shared_ptr<Outputs> outputs = boost::make_shared<Outputs>();
    const std::string text = "Processor Outputs has not been initialised, call init first";
    EXPECT_EQ(text, refusalOf([&] { outputs->set<InTinyImg>(blank(2, 2)); }));
    EXPECT_EQ(text, refusalOf([&] { outputs->getStorage<OutTinyImg>(); }));
    EXPECT_EQ(text, runRefusal(outputs));
    EXPECT_EQ("A null processor can't be run", runRefusal(boost::shared_ptr<Outputs>()));

    outputs->init(ePRP_NoRules);
    outputs->set<InTinyImg>(blank(2, 2));
    outputs->set<OutTinyImg>(blank(3, 3));
    EXPECT_NO_THROW(executeSyncRun(outputs)) << "without rules everything passes";
    const AttributeColl before = outputs->getAttributes();
    ASSERT_EQ(8u, before.size());
    EXPECT_EQ("InTinyImg to OutPIMarks", before[0]->getObjectName() + " to " + before[7]->getObjectName());
    outputs->init(ePRP_WithRules);
    EXPECT_EQ(1, before[0].use_count());
    EXPECT_FALSE(outputs->getAttributes()[0]->hasValue());
    EXPECT_EQ(4u, outputs->getInitializers().size());
    EXPECT_TRUE(outputs->getDispatchPolicy().isInitialised());
}

TEST(Processor, CanNotBeCopied)
{
    Scripted1 one;
    EXPECT_TRUE(one.isComplexAction() && !one.hasCopySupport());
    for (const std::function<void()>& copy : std::initializer_list<std::function<void()>>{
             [&] { one.copy(Scripted1()); }, [&] { one.duplicate(); }, [&] { one.duplicateShared(); }})
        EXPECT_EQ("Objects of class orvik::imaproc::tiny::Scripted1 can't be copied", thrownText<ORVIKUtilException>(copy));
    static_assert(sizeof(eProcessorRulePolicy) == 8 && sizeof(eRetrievalResultType) == 8 && sizeof(core::eSynchroType) == 8,
                  "passed as 64 bits");
}

// --- inputs, rule, initialisers

TEST(Run, RefusesByTheRuleWithBothValuesAndTouchesNothing)
{
    const auto outputs = createInitialised<Outputs>();
    const ImagePtr given = blank(3, 2);
    outputs->set<InTinyImg>(blank(2, 2));
    outputs->set<InOptTinyImg>(blank(2, 2, 1, 1, image::eIBT_Int16));
    outputs->set<OutTinyImg>(given);
    EXPECT_EQ(
        "Outputs refuses to run:\n"
        "failed: all hold:\n"
        "  failed: size X x Y x Z x C x T of InTinyImg (2 x 2 x 1 x 1 x 1) equals that of OutTinyImg (3 x 2 x 1 x 1 x 1)\n"
        "  ok: size X x Y x Z x C x T of OutTinyImg (3 x 2 x 1 x 1 x 1) equals that of OutReal (no value yet)\n"
        "  failed: as InOptTinyImg is set holds:\n"
        "    failed: buffer type of InTinyImg (unsigned 8 bits (type 2)) equals that of InOptTinyImg (signed 16 bits (type 3))\n"
        "  ok: entries of OutPIMarks are the volumes (0, c, t) of InTinyImg\n",
        runRefusal(outputs));
    EXPECT_FALSE(outputs->get<OutReal>()->hasValue());
    EXPECT_EQ(given, outputs->getStorage<OutTinyImg>());
    EXPECT_EQ(
        "size X x Y x Z x C x T of InTinyImg equals that of OutTinyImg && size X x Y x Z x C x T of OutTinyImg equals that "
        "of OutReal && If(InOptTinyImg is set, buffer type of InTinyImg equals that of InOptTinyImg, none) && entries of OutPIMarks are the volumes (0, c, t) of InTinyImg",
        outputs->getRule()->createRuleFormalString());

    // Once more with the outputs that were made, one of which is as large as the other result.
    outputs->set<OutTinyImg>(nullptr);
    outputs->set<InOptTinyImg>(nullptr);  // an optional input that was taken away is not tested
    outputs->set<OutReal>(blank(9, 9));
    EXPECT_NE(std::string::npos, runRefusal(outputs).find("OutReal (9 x 9 x 1 x 1 x 1)"));
    EXPECT_FALSE(outputs->getStorage<OutTinyImg>());
    EXPECT_EQ(0u, outputs->nbStages);
    outputs->set<OutReal>(nullptr);
    EXPECT_NO_THROW(executeSyncRun(outputs));
    EXPECT_EQ(1u, outputs->nbStages);
}

TEST(Initializers, MakeWhatTheCallerDidNotGiveAnewForEachRun)
{
    const auto outputs = createInitialised<Outputs>();
    outputs->set<InTinyImg>(blank(5, 4, 3, 2, image::eIBT_Int16));
    const ImagePtr given = blank(5, 4, 3, 2);
    outputs->set<OutReal>(given);
    EXPECT_EQ("OutTinyImg: a new image of size 5 x 4 x 3 x 2 x 1, signed 16 bits (type 3)",
              outputs->getInitializers().at("OutTinyImg")->createInitializerEvaluatedString());
    executeSyncRun(outputs);
    EXPECT_EQ(given, outputs->getStorage<OutReal>());
    const ImagePtr first = outputs->getStorage<OutTinyImg>();
    EXPECT_TRUE(first->getGeometry().getSizes() == ImageSizes(5, 4, 3, 2));
    EXPECT_EQ(image::eIBT_Int16, first->getBufferType());
    EXPECT_TRUE(outputs->getStorage<OutReach>());
    EXPECT_FALSE(outputs->getStorage<OutOptTinyImg>());
    const auto lists = outputs->getStorage<OutPIMarks>();
    EXPECT_TRUE((std::vector<PlanIndex>{{0, 0, 0}, {0, 1, 0}}) == lists->getPlans());

    outputs->set<OutReal>(nullptr);
    outputs->set<InTinyImg>(blank(7, 4));
    executeSyncRun(outputs);
    EXPECT_EQ(image::eIBT_Real32, outputs->getStorage<OutReal>()->getBufferType());
    EXPECT_EQ(5u, first->getSizeX());
    EXPECT_EQ(7u, outputs->getStorage<OutTinyImg>()->getSizeX());
    EXPECT_NE(lists, outputs->getStorage<OutPIMarks>());
    // Handed back by the caller it is the caller's.
    outputs->set<OutTinyImg>(first);
    EXPECT_NE(std::string::npos, runRefusal(outputs).find("OutTinyImg (5 x 4 x 3 x 2 x 1)"));
}

TEST(Run, AMissingOutputThatNobodyMakesIsRefusedByItsName)
{
    EXPECT_EQ(
        "MaxL2Norm2MsrLvl2 refuses to run: mandatory attribute OutStatsResult has no value (unset or null)",
        runRefusal(processorWith<fd::MaxL2Norm2MsrLvl2, attr::InSubImg2d1, attr::InSubImg2d2>(blank(2, 2), blank(2, 2))));
}

TEST(Attributes, AreUnsetByNullAndByClearAndThenReadAsTheirDefault)
{
    const auto outputs = createInitialised<Outputs>();
    InOptReach& optional = *outputs->get<InOptReach>();
    EXPECT_FALSE(optional.hasValue());
    const boost::shared_ptr<Reach> mine = Reach::createNode(1, 2, 3, 4, 5, 6, 0, 0);
    for (const bool byNull : {true, false}) {
        outputs->set<InOptReach>(mine);
        EXPECT_EQ(mine, optional.accessDataItemNodePtr());
        outputs->set<OutTinyImg>(blank(1, 1));
        byNull ? outputs->set<InOptReach>(nullptr) : outputs->clearInputData();
        EXPECT_FALSE(optional.hasValue());
        EXPECT_EQ(0u, optional.getDataItemNode()->get<Reach::EndX>());
    }
    EXPECT_TRUE(outputs->getStorage<OutTinyImg>());
    outputs->clearOutputData();
    EXPECT_FALSE(outputs->getStorage<OutTinyImg>());
}

TEST(Attributes, TakeWhatAVisitorMakesOfTheirValueOrTheirDefault)
{
    EachLeaf doubling([](const std::string& name, auto& value) {
        if (name[0] == 'E' || name == "value")
            value += value;
    });
    InOptReach reach;
    const boost::shared_ptr<Reach> mine = Reach::createNode(1, 2, 3, 4, 5, 6, 0, 0);
    reach.assign(mine);
    EXPECT_TRUE(reach.setByVisitor(doubling));
    EXPECT_EQ(4u, reach.getStorage()->get<Reach::EndX>());
    EXPECT_EQ(3u, reach.getStorage()->get<Reach::StartY>());
    EXPECT_EQ(2u, mine->get<Reach::EndX>()) << "the caller's record is the caller's";

    attr::InOptGradStdDev deviation;
    EXPECT_TRUE(deviation.setByVisitor(doubling));
    EXPECT_TRUE(deviation.hasValue());
    EXPECT_EQ(2.0f, deviation.getStorage());

    EXPECT_FALSE(attr::OutMax().setByVisitor(doubling)) << "results are not set";
    EXPECT_FALSE(InOptTinyImg().setByVisitor(doubling)) << "nor are images";
}

// --- stages

template<class P>
Log logOf(const std::function<void(Script&)>& prepare = nullptr, std::string* failure = nullptr)
{
    const auto scripted = createInitialised<P>();
    if (prepare)
        prepare(scripted->script);
    try {
        executeSyncRun(scripted);
        EXPECT_EQ(nullptr, failure) << "no failure";
    } catch (const std::exception& e) {
        EXPECT_NE(nullptr, failure) << e.what();
        if (failure)
            *failure = e.what();
    }
    return scripted->script.log;
}

TEST(Stages, RunInTheirOrderUntilThereAreNoMore)
{
    EXPECT_EQ((Log{"pre", "one", "post", "clear"}), logOf<Scripted1>());
    EXPECT_EQ((Log{"pre", "one", "two", "post", "clear"}), logOf<Scripted2>());
    EXPECT_EQ((Log{"pre", "one", "two", "three", "post", "clear"}), logOf<Scripted3>());
    EXPECT_EQ((Log{"pre", "0", "1", "2", "3", "post", "clear"}),
              logOf<ScriptedRepeated>([](Script& script) { script.noMoreFrom = 3; }));
    EXPECT_EQ((Log{"pre", "one", "post", "clear"}), logOf<Scripted1>([](Script& script) { script.noMoreFrom = 0; }));
    EXPECT_EQ((Log{"pre", "one", "two", "post", "clear"}), logOf<Scripted3>([](Script& script) { script.noMoreFrom = 1; }));
}

TEST(Stages, BeginWhenTheWorkOfTheOneBeforeHasEnded)
{
    const WithThreads several(3);
    const WithGrain fine(1);
    std::atomic<int> nbDone{0};
    const OnLine onLine([&](unsigned long) {
        ++nbDone;
        return success();
    });
    std::vector<int> doneAt;
    logOf<Scripted3>([&](Script& script) {
        script.provide = [&] {
            doneAt.push_back(nbDone);
            ProviderPtr provider;
            EXPECT_EQ(eRRT_ProviderRetrieved,
                      provideProcessor(hookOn(blank(3, 10)), core::BasePriority(), provider).getValue());
            return provider;
        };
    });
    doneAt.push_back(nbDone);
    EXPECT_EQ((std::vector<int>{0, 10, 20, 30}), doneAt);
}

TEST(Stages, AFailureEndsTheRunWithItsTextAndCleansUp)
{
    std::string text;
    EXPECT_EQ((Log{"pre", "one", "two", "clean on error", "clear"}),
              logOf<Scripted3>([](Script& script) { script.failAt = "two"; }, &text));
    EXPECT_EQ("failed at two", text);
    EXPECT_EQ((Log{"pre", "0", "1", "2", "3", "4", "5", "clean on error", "clear"}),
              logOf<ScriptedRepeated>(nullptr, &text));
    EXPECT_EQ("Invalid iteration number (cannot be greater than 5)", text);
    for (const std::string step : {"pre", "one", "post"})
        for (const bool throws : {false, true}) {
            const Log log =
                logOf<Scripted1>([&](Script& script) { (throws ? script.throwAt : script.failAt) = step; }, &text);
            EXPECT_EQ((throws ? "thrown at " : "failed at ") + step, text);
            EXPECT_EQ((Log{step, "clean on error", "clear"}), Log(log.end() - 3, log.end()));
        }
}

TEST(Stages, OfOneActionNeedAnActionAndGiveItTheirPriority)
{
    ProviderPtr provider;
    const RetrievalResult result = provideProcessor(boost::shared_ptr<core::BaseAction>(), core::BasePriority(), provider);
    EXPECT_EQ("A single action provider was given a null action", result.getMessage());
    EXPECT_TRUE(result.getValue() == eRRT_RetrievalFailed && !provider);

    const auto action = createInitialised<Scripted1>();
    provideProcessor(action, core::BasePriority(4), provider);
    EXPECT_EQ(4, action->getActionPriority().getLevel());
}

TEST(Stages, OfAnActionWhoseInputIsMissingFailWithItsText)
{
    const auto scripted = createInitialised<Scripted1>();
    scripted->script.provide = [] {
        ProviderPtr provider;
        provideProcessor(createInitialised<Outputs>(), core::BasePriority(), provider);
        return provider;
    };
    EXPECT_EQ("Outputs refuses to run: mandatory attribute InTinyImg has no value (unset or null)", runRefusal(scripted));
}

}  // namespace
}  // namespace orvik::test
