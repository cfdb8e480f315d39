// How a processor is initialised, checked, run stage by stage, and cleaned up.

#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl1.h"
#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl2.h"
#include "TestImages.h"
#include "TestRuns.h"
#include "TinyProcessor.h"

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
    std::function<processor::ProviderPtr(const std::string& stage)> provide;
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
            return processor::RetrievalResult(processor::eRRT_RetrievalFailed, "failed at " + step);
        if (number >= noMoreFrom)
            return processor::RetrievalResult(processor::eRRT_NoMoreProvider);
        if (provide)
            provider = provide(step);
        return processor::RetrievalResult(processor::eRRT_ProviderRetrieved);
    }
    processor::StageResult step(const std::string& name)
    {
        enter(name);
        return name == failAt ? processor::StageResult(processor::eSRT_Failed, "failed at " + name) : done();
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

struct Scripted1 : Scripted<Scripted1, processor::BaseAsync1Processor>
{
    ORVIK_PROCESSOR(Scripted1, 1)
    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority&, processor::ProviderPtr& p) override
    {
        return script.stage("one", 0, p);
    }
};
struct Scripted2 : Scripted<Scripted2, processor::BaseAsync2Processor>
{
    ORVIK_PROCESSOR(Scripted2, 2)
    processor::RetrievalResult retrieveFirstProvider(const core::BasePriority&, processor::ProviderPtr& p) override
    {
        return script.stage("one", 0, p);
    }
    processor::RetrievalResult retrieveSecondProvider(const core::BasePriority&, processor::ProviderPtr& p) override
    {
        return script.stage("two", 1, p);
    }
};
struct Scripted3 : Scripted<Scripted3, processor::BaseAsync3Processor>
{
    ORVIK_PROCESSOR(Scripted3, 3)
    processor::RetrievalResult retrieveFirstProvider(const core::BasePriority&, processor::ProviderPtr& p) override
    {
        return script.stage("one", 0, p);
    }
    processor::RetrievalResult retrieveSecondProvider(const core::BasePriority&, processor::ProviderPtr& p) override
    {
        return script.stage("two", 1, p);
    }
    processor::RetrievalResult retrieveThirdProvider(const core::BasePriority&, processor::ProviderPtr& p) override
    {
        return script.stage("three", 2, p);
    }
};
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
Scripted1::Scripted1() = default;
Scripted1::~Scripted1() = default;
Scripted2::Scripted2() = default;
Scripted2::~Scripted2() = default;
Scripted3::Scripted3() = default;
Scripted3::~Scripted3() = default;
ScriptedRepeated::ScriptedRepeated() = default;
ScriptedRepeated::~ScriptedRepeated() = default;

/// Mandatory and optional inputs, a rule on them and on the outputs, an initialiser of each kind.
class Outputs : public processor::Processor<Outputs, processor::BaseAsync1Processor, InTinyImg, InOptTinyImg, InOptReach, OutTinyImg,
                                            OutReal, OutOptTinyImg, OutReach, OutPIMarks>
{
    ORVIK_PROCESSOR(Outputs, 10)
    using BaseAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority&, processor::ProviderPtr&) override
    {
        ++nbStages;
        return processor::RetrievalResult(processor::eRRT_NoMoreProvider);
    }
    processor::RulePtr createRule() const
    {
        return matchSize(attribute<InTinyImg>(), attribute<OutTinyImg>())
               && processor::If(processor::isSet(attribute<InOptTinyImg>()),
                                matchBufferType(attribute<InTinyImg>(), attribute<InOptTinyImg>()))
               && matchImagePlans(attribute<OutPIMarks>(), attribute<InTinyImg>(), eIPMP_Volumes);
    }
    void initInitializers(processor::InitializerMap& map)
    {
        addInitializer<OutTinyImg>(map, duplicateInOut(attribute<OutTinyImg>(), attribute<InTinyImg>(), image::eImageBufferType()));
        addInitializer<OutReal>(map, promoteUnary(attribute<OutReal>(), attribute<InTinyImg>()));
        const auto record = boost::make_shared<processor::AllocateInitializer<OutReach> >();
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
Outputs::Outputs() = default;
Outputs::~Outputs() = default;

}  // namespace orvik::imaproc::tiny

namespace orvik::test {
namespace {

using namespace imaproc;
using namespace imaproc::tiny;
using namespace processor;
using image::ImageSizes;

typedef std::vector<std::string> Log;

template<class P>
std::string runFailure(const boost::shared_ptr<P>& processor)
{
    return thrownText<ORVIKBaseProcessingException>([&] { executeSyncRun(processor); });
}

// --- before init, kinds, copying

TEST(Processor, RefusesSetGetAndRunBeforeInit)
{
    const boost::shared_ptr<Outputs> outputs = boost::make_shared<Outputs>();
    const std::string text = "Processor Outputs has not been initialised, call init first";
    EXPECT_EQ(text, thrownText<ORVIKBaseProcessingException>([&] { outputs->set<InTinyImg>(blank(2, 2)); }));
    EXPECT_EQ(text, thrownText<ORVIKBaseProcessingException>([&] { outputs->getStorage<OutTinyImg>(); }));
    EXPECT_EQ(text, runFailure(outputs));
    EXPECT_EQ("A null processor can't be run", runFailure(boost::shared_ptr<Outputs>()));
}

TEST(Processor, InitMakesUnsetAttributesInDeclarationOrder)
{
    const auto outputs = createInitialised<Outputs>();
    outputs->set<InTinyImg>(blank(2, 2));
    const AttributeColl before = outputs->getAttributes();
    ASSERT_EQ(8u, before.size());
    EXPECT_EQ("InTinyImg", before[0]->getObjectName());
    EXPECT_EQ("OutPIMarks", before[7]->getObjectName());
    EXPECT_TRUE(before[0]->hasValue());
    outputs->init(ePRP_WithRules);
    EXPECT_NE(before[0], outputs->getAttributes()[0]);
    EXPECT_EQ(1, before[0].use_count());
    EXPECT_FALSE(outputs->getAttributes()[0]->hasValue());
    EXPECT_EQ(4u, outputs->getInitializers().size());
    EXPECT_TRUE(outputs->getInitializers().count("OutReal"));
    EXPECT_TRUE(outputs->getRule());
    EXPECT_TRUE(outputs->getDispatchPolicy().isInitialised());
    EXPECT_EQ(&Outputs::getDefaultDispatchPolicy(), &Outputs::getDefaultDispatchPolicy());
    outputs->init(ePRP_NoRules);
    EXPECT_FALSE(outputs->getRule());
}

TEST(Processor, TellsItsKindAndCanNotBeCopied)
{
    Scripted1 one;
    EXPECT_EQ(1, one.getProcessorType());
    EXPECT_EQ(2, Scripted2().getProcessorType());
    EXPECT_EQ(3, Scripted3().getProcessorType());
    EXPECT_EQ(7, ScriptedRepeated().getProcessorType());
    EXPECT_EQ(0, HookLvl3().getProcessorType());
    EXPECT_TRUE(one.isComplexAction());
    EXPECT_FALSE(one.hasCopySupport());
    const std::string text = "Objects of class orvik::imaproc::tiny::Scripted1 can't be copied";
    EXPECT_EQ(text, thrownText<ORVIKUtilException>([&] { one.copy(Scripted1()); }));
    EXPECT_EQ(text, thrownText<ORVIKUtilException>([&] { one.duplicate(); }));
    EXPECT_EQ(text, thrownText<ORVIKUtilException>([&] { one.duplicateShared(); }));
    static_assert(sizeof(eProcessorRulePolicy) == 8 && sizeof(eRetrievalResultType) == 8 && sizeof(core::eSynchroType) == 8,
                  "passed as 64 bits");
}

// --- inputs, rule, initialisers

TEST(Run, RefusesAMissingMandatoryInputByItsName)
{
    const auto outputs = createInitialised<Outputs>();
    const std::string text = "Outputs refuses to run: mandatory attribute InTinyImg has no value (unset or null)";
    EXPECT_EQ(text, runFailure(outputs));
    outputs->set<InTinyImg>(blank(2, 2));
    outputs->set<InTinyImg>(nullptr);
    EXPECT_EQ(text, runFailure(outputs));
    EXPECT_EQ(0u, outputs->nbStages);
}

TEST(Run, RefusesByTheRuleWithBothValuesAndTouchesNothing)
{
    const auto outputs = createInitialised<Outputs>();
    const ImagePtr given = blank(3, 2);
    outputs->set<InTinyImg>(blank(2, 2));
    outputs->set<InOptTinyImg>(blank(2, 2, 1, 1, image::eIBT_Int16));
    outputs->set<OutTinyImg>(given);
    EXPECT_EQ("Outputs refuses to run:\n"
              "failed: all hold:\n"
              "  failed: size X x Y x Z x C x T of InTinyImg (2 x 2 x 1 x 1 x 1) equals that of OutTinyImg (3 x 2 x 1 x 1 x 1)\n"
              "  failed: as InOptTinyImg is set holds:\n"
              "    failed: buffer type of InTinyImg (unsigned 8 bits (type 2)) equals that of InOptTinyImg (signed 16 bits (type 3))\n"
              "  ok: entries of OutPIMarks are the volumes (0, c, t) of InTinyImg\n",
              runFailure(outputs));
    EXPECT_EQ(0u, outputs->nbStages);
    EXPECT_FALSE(outputs->get<OutReal>()->hasValue());
    EXPECT_EQ(given, outputs->getStorage<OutTinyImg>());
    EXPECT_EQ("size X x Y x Z x C x T of InTinyImg equals that of OutTinyImg && If(InOptTinyImg is set, buffer type of InTinyImg "
              "equals that of InOptTinyImg, none) && entries of OutPIMarks are the volumes (0, c, t) of InTinyImg",
              outputs->getRule()->createRuleFormalString());

    outputs->set<OutTinyImg>(blank(2, 2));
    outputs->set<InOptTinyImg>(nullptr);
    EXPECT_NO_THROW(executeSyncRun(outputs)) << "an optional input that was taken away is not tested";
}

TEST(Run, WithoutRulesLetsEverythingPass)
{
    const auto outputs = boost::make_shared<Outputs>();
    outputs->init(ePRP_NoRules);
    outputs->set<InTinyImg>(blank(2, 2));
    outputs->set<OutTinyImg>(blank(3, 3));
    EXPECT_NO_THROW(executeSyncRun(outputs));
    EXPECT_EQ(1u, outputs->nbStages);
}

TEST(Run, TestsTheRuleAgainWithTheOutputsThatWereMade)
{
    struct Crooked : BaseOutputInitializer
    {
        eOutputInitializerType getOutputInitializerType() const override { return eOIT_ImageProcessing; }
        BoolResult initAttribute() override
        {
            static_cast<OutTinyImg&>(*getOutputAttribute()).init(blank(9, 9));
            return success();
        }
        std::string createInitializerFormalString() const override { return ""; }
        std::string createInitializerEvaluatedString() const override { return ""; }
    };
    struct Changed : Outputs
    {
        BoolResult initDerived(AttributeColl& attributes, InitializerMap& initializers, ProcessorDispatchPolicy& policy,
                               RulePtr& rule, const eProcessorRulePolicy& rulePolicy) override
        {
            const BoolResult result = Outputs::initDerived(attributes, initializers, policy, rule, rulePolicy);
            initializers["OutTinyImg"] = boost::make_shared<Crooked>();
            initializers["OutTinyImg"]->initBase(get<OutTinyImg>());
            return result;
        }
    };
    const auto changed = boost::make_shared<Changed>();
    changed->init(ePRP_WithRules);
    changed->set<InTinyImg>(blank(2, 2));
    EXPECT_NE(std::string::npos, runFailure(changed).find("OutTinyImg (9 x 9 x 1 x 1 x 1)"));
    EXPECT_EQ(0u, changed->nbStages);
    EXPECT_FALSE(changed->getStorage<OutTinyImg>());
}

TEST(Initializers, MakeWhatTheCallerDidNotGive)
{
    const auto outputs = createInitialised<Outputs>();
    outputs->set<InTinyImg>(blank(5, 4, 3, 2, image::eIBT_Int16));
    const ImagePtr given = blank(1, 1);
    outputs->set<OutReal>(given);
    EXPECT_EQ("OutTinyImg: a new image of size 5 x 4 x 3 x 2 x 1, signed 16 bits (type 3)",
              outputs->getInitializers().at("OutTinyImg")->createInitializerEvaluatedString());
    executeSyncRun(outputs);
    EXPECT_EQ(given, outputs->getStorage<OutReal>());
    EXPECT_TRUE(outputs->getStorage<OutTinyImg>()->getGeometry().getSizes() == ImageSizes(5, 4, 3, 2));
    EXPECT_EQ(image::eIBT_Int16, outputs->getStorage<OutTinyImg>()->getBufferType());
    EXPECT_TRUE(outputs->getStorage<OutReach>());
    EXPECT_FALSE(outputs->getStorage<OutOptTinyImg>());
    const std::vector<PlanIndex> volumes = {PlanIndex(0, 0, 0), PlanIndex(0, 1, 0)};
    EXPECT_TRUE(volumes == outputs->getStorage<OutPIMarks>()->getPlans());
    outputs->set<OutReal>(nullptr);
    executeSyncRun(outputs);
    EXPECT_EQ(image::eIBT_Real32, outputs->getStorage<OutReal>()->getBufferType());
}

TEST(Initializers, GiveASecondRunOutputsOfItsOwn)
{
    const auto outputs = createInitialised<Outputs>();
    outputs->set<InTinyImg>(blank(5, 4));
    executeSyncRun(outputs);
    const ImagePtr first = outputs->getStorage<OutTinyImg>();
    const boost::shared_ptr<PlanIndexedMarks> lists = outputs->getStorage<OutPIMarks>();
    outputs->set<InTinyImg>(blank(7, 4));
    executeSyncRun(outputs);
    EXPECT_EQ(5u, first->getSizeX());
    EXPECT_EQ(7u, outputs->getStorage<OutTinyImg>()->getSizeX());
    EXPECT_NE(lists, outputs->getStorage<OutPIMarks>());
    // Handed back by the caller it is the caller's.
    outputs->set<OutTinyImg>(first);
    EXPECT_NE(std::string::npos, runFailure(outputs).find("OutTinyImg (5 x 4 x 1 x 1 x 1)"));
}

TEST(Run, AMissingOutputThatNobodyMakesIsRefusedByItsName)
{
    const auto norm = createInitialised<fd::MaxL2Norm2MsrLvl2>();
    norm->set<attr::InSubImg2d1>(blank(2, 2));
    norm->set<attr::InSubImg2d2>(blank(2, 2));
    EXPECT_EQ("MaxL2Norm2MsrLvl2 refuses to run: mandatory attribute OutStatsResult has no value (unset or null)", runFailure(norm));
}

TEST(Attributes, AreUnsetByNullAndByClearAndThenReadAsTheirDefault)
{
    const auto outputs = createInitialised<Outputs>();
    InOptReach& optional = *outputs->get<InOptReach>();
    EXPECT_FALSE(optional.hasValue());
    ASSERT_TRUE(optional.getDataItemNode());
    const boost::shared_ptr<Reach> mine = Reach::createNode(1, 2, 3, 4, 5, 6, 0, 0);
    outputs->set<InOptReach>(mine);
    EXPECT_TRUE(optional.hasValue());
    EXPECT_EQ(mine, optional.accessDataItemNodePtr());
    outputs->set<InOptReach>(nullptr);
    EXPECT_FALSE(optional.hasValue());
    EXPECT_EQ(0u, optional.getDataItemNode()->get<Reach::EndX>());
    outputs->set<InOptReach>(mine);
    outputs->set<OutTinyImg>(blank(1, 1));
    outputs->clearInputData();
    EXPECT_FALSE(optional.hasValue());
    EXPECT_TRUE(optional.getDataItemNode());
    EXPECT_TRUE(outputs->getStorage<OutTinyImg>());
    outputs->clearOutputData();
    EXPECT_FALSE(outputs->getStorage<OutTinyImg>());
}

/// Doubles the whole numbers whose name begins with E.
struct Doubling : BaseLeafVisitor
{
    void visit(const char*, bool&) override {}
    void visit(const char*, int&) override {}
    void visit(const char*, long&) override {}
    void visit(const char* name, unsigned int& value) override { value *= name[0] == 'E' ? 2 : 1; }
    void visit(const char*, unsigned long&) override {}
    void visit(const char*, float& value) override { value *= 2; }
    void visit(const char*, double&) override {}
};

TEST(Attributes, TakeWhatAVisitorMakesOfTheirValueOrTheirDefault)
{
    Doubling doubling;
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

TEST(Stages, RunInTheirOrder)
{
    EXPECT_EQ((Log{"pre", "one", "post", "clear"}), logOf<Scripted1>());
    EXPECT_EQ((Log{"pre", "one", "two", "post", "clear"}), logOf<Scripted2>());
    EXPECT_EQ((Log{"pre", "one", "two", "three", "post", "clear"}), logOf<Scripted3>());
    EXPECT_EQ((Log{"pre", "0", "1", "2", "3", "post", "clear"}),
              logOf<ScriptedRepeated>([](Script& script) { script.noMoreFrom = 3; }));
}

TEST(Stages, EndAtTheAnswerThatThereAreNoMore)
{
    EXPECT_EQ((Log{"pre", "one", "post", "clear"}), logOf<Scripted1>([](Script& script) { script.noMoreFrom = 0; }));
    EXPECT_EQ((Log{"pre", "one", "two", "post", "clear"}), logOf<Scripted3>([](Script& script) { script.noMoreFrom = 1; }));
}

TEST(Stages, BeginWhenTheWorkOfTheOneBeforeHasEnded)
{
    const WithThreads several(3);
    const WithGrain fine(1);
    std::atomic<int> nbDone{0};
    Hook::s_onLine = [&](unsigned long) {
        ++nbDone;
        return success();
    };
    std::vector<int> doneAt;
    logOf<Scripted3>([&](Script& script) {
        script.provide = [&](const std::string&) {
            doneAt.push_back(nbDone);
            ProviderPtr provider;
            const auto hook = createInitialised<HookLvl1>();
            hook->set<InTinyImg>(blank(3, 10));
            EXPECT_EQ(eRRT_ProviderRetrieved, provideProcessor(hook, core::BasePriority(), provider).getValue());
            return provider;
        };
    });
    Hook::s_onLine = nullptr;
    EXPECT_EQ((std::vector<int>{0, 10, 20}), doneAt);
    EXPECT_EQ(30, nbDone);
}

TEST(Stages, AFailureEndsTheRunWithItsTextAndCleansUp)
{
    std::string text;
    EXPECT_EQ((Log{"pre", "one", "two", "clean on error", "clear"}),
              logOf<Scripted3>([](Script& script) { script.failAt = "two"; }, &text));
    EXPECT_EQ("failed at two", text);
    EXPECT_EQ((Log{"pre", "clean on error", "clear"}), logOf<Scripted1>([](Script& script) { script.failAt = "pre"; }, &text));
    EXPECT_EQ("failed at pre", text);
    EXPECT_EQ((Log{"pre", "one", "post", "clean on error", "clear"}),
              logOf<Scripted1>([](Script& script) { script.failAt = "post"; }, &text));
    EXPECT_EQ("failed at post", text);
    for (const std::string step : {"pre", "one", "post"}) {
        const Log log = logOf<Scripted1>([&](Script& script) { script.throwAt = step; }, &text);
        EXPECT_EQ("thrown at " + step, text);
        EXPECT_EQ((Log{step, "clean on error", "clear"}), Log(log.end() - 3, log.end()));
    }
}

TEST(Stages, PastTheLastIterationAreRefused)
{
    std::string text;
    EXPECT_EQ((Log{"pre", "0", "1", "2", "3", "4", "5", "clean on error", "clear"}), logOf<ScriptedRepeated>(nullptr, &text));
    EXPECT_EQ("Invalid iteration number (cannot be greater than 5)", text);
}

TEST(Stages, AnExceptionLeavesUnchangedAndTheProcessorRunsAgain)
{
    const auto scripted = createInitialised<Scripted2>();
    scripted->script.throwAt = "two";
    EXPECT_EQ("thrown at two", thrownText<std::domain_error>([&] { executeSyncRun(scripted); }));
    EXPECT_TRUE(scripted->hasFailed());
    EXPECT_EQ("thrown at two", scripted->getErrorMessage());
    scripted->script.throwAt.clear();
    EXPECT_NO_THROW(executeSyncRun(scripted));
    EXPECT_FALSE(scripted->hasFailed());
    EXPECT_EQ("", scripted->getErrorMessage());
}

TEST(Stages, OfOneActionNeedAnAction)
{
    ProviderPtr provider;
    const RetrievalResult result = provideProcessor(boost::shared_ptr<core::BaseAction>(), core::BasePriority(), provider);
    EXPECT_EQ(eRRT_RetrievalFailed, result.getValue());
    EXPECT_EQ("A single action provider was given a null action", result.getMessage());
    EXPECT_FALSE(provider);

    const auto action = createInitialised<Scripted1>();
    ASSERT_EQ(eRRT_ProviderRetrieved, provideProcessor(action, core::BasePriority(4), provider).getValue());
    EXPECT_EQ(4, action->getActionPriority().getLevel());
    boost::shared_ptr<core::BaseActionRequest> request;
    boost::shared_ptr<BaseSerializationObject> data;
    bool hasMore = true;
    ASSERT_TRUE(provider->queryNextAction(core::BaseRequestOrigin(), request, hasMore, data).getValue());
    EXPECT_EQ(action, request->getAction());
    EXPECT_FALSE(hasMore);
    EXPECT_FALSE(provider->hasPendingAction());
}

TEST(Stages, OfAnActionWhoseInputIsMissingFailWithItsText)
{
    std::string text;
    logOf<Scripted1>(
        [](Script& script) {
            script.provide = [](const std::string&) {
                ProviderPtr provider;
                provideProcessor(createInitialised<Outputs>(), core::BasePriority(), provider);
                return provider;
            };
        },
        &text);
    EXPECT_EQ("Outputs refuses to run: mandatory attribute InTinyImg has no value (unset or null)", text);
}

}  // namespace
}  // namespace orvik::test
