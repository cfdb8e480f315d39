#pragma once

#include "frame/core/BaseAction.h"
#include "frame/processor/BaseOutputInitializer.h"
#include "frame/processor/ProcessorDispatchPolicy.h"

#include <vector>

namespace orvik {

/// Key of data that is kept in step between machines; this frame runs in one process and never makes any.
class Guid
{
};

namespace processor {

enum eProcessorRulePolicy : unsigned long
{
    ePRP_WithRules = 0,
    ePRP_NoRules = 1
};

enum eProcessorType : unsigned int
{
    ePT_Sync = 0,
    ePT_Async1 = 1,
    ePT_Async2 = 2,
    ePT_Async3 = 3,
    ePT_RepeatedAsync1 = 7
};

enum eRetrievalResultType : unsigned long
{
    eRRT_ProviderRetrieved = 0,
    eRRT_NoMoreProvider = 1,
    eRRT_RetrievalFailed = 2
};
typedef ProcessingResult<eRetrievalResultType> RetrievalResult;
constexpr eRetrievalResultType failedValue(eRetrievalResultType)
{
    return eRRT_RetrievalFailed;
}

enum eStageResultType : unsigned long
{
    eSRT_Done = 0,
    eSRT_Failed = 1
};
/// Answer of `preProcess` and `postProcess`.
typedef ProcessingResult<eStageResultType> StageResult;
constexpr eStageResultType failedValue(eStageResultType)
{
    return eSRT_Failed;
}

typedef boost::shared_ptr<core::BaseActionProvider> ProviderPtr;
typedef std::vector<boost::shared_ptr<BaseAttribute>> AttributeColl;

/// Tells the name and the purpose of a class.
class ORVIK_API BaseObjectDescription
{
public:
    virtual ~BaseObjectDescription();
    virtual const std::string& getObjectName() const = 0;
    virtual const std::string& getToolTip() const = 0;
};

/// An algorithm with attributes: initialised once, given its attributes, then run, as often as wanted.
class ORVIK_API BaseProcessor : public core::BaseComplexAction
{
public:
    BaseProcessor();
    ~BaseProcessor() override;

    /// Makes the attributes, unset, with the rule and the output initialisers on them.
    BoolResult init(const eProcessorRulePolicy& rulePolicy);
    bool isInitialised() const { return m_initialised; }

    virtual eProcessorType getProcessorType() const = 0;
    virtual const std::string& getObjectName() const = 0;
    virtual const std::string& getToolTip() const = 0;

    const AttributeColl& getAttributes() const { return m_attributes; }
    const InitializerMap& getInitializers() const { return m_initializers; }
    const RulePtr& getRule() const { return m_rule; }
    const ProcessorDispatchPolicy& getDispatchPolicy() const { return m_dispatchPolicy; }

    virtual BoolResult initDerived(AttributeColl& attributes, InitializerMap& initializers, ProcessorDispatchPolicy& policy,
                                   RulePtr& rule, const eProcessorRulePolicy& rulePolicy) = 0;

    virtual StageResult preProcess();
    virtual StageResult postProcess();
    virtual void globalCleanDerived();
    virtual void syncInputDataDerived(const Guid& guid);
    virtual void syncOutputDataDerived(const Guid& guid);
    /// Takes the values of all inputs, or of all outputs, away.
    virtual void clearInputData();
    virtual void clearOutputData();
    virtual void initProcess();
    virtual void endProcess();

    /// Parameters that have a value; images and results are not kept.
    BoolResult write(BaseOArchive& archive) const override;
    BoolResult read(BaseIArchive& archive) override;

protected:
    /// @throws ORVIKBaseProcessingException unless `init` has been called.
    void checkInitialised() const;

    /// Refuses a run whose attributes are not acceptable, before anything of the caller's is written: mandatory
    /// inputs, then the rule, then the outputs that are still missing are made, then the rule again with them; last,
    /// outputs that nobody gave or made.
    BoolResult prepareRun() override;

private:
    void clearMadeOutputs();
    /// False with the name of the first input, or output, that a run needs and that has no value.
    BoolResult checkMandatory(bool outputs) const;
    BoolResult refusedByRule() const;

    AttributeColl m_attributes;
    InitializerMap m_initializers;
    ProcessorDispatchPolicy m_dispatchPolicy;
    RulePtr m_rule;
    bool m_initialised;
};

/// Checks the rule, makes missing outputs, runs the processor and returns when it has ended.
/// @throws ORVIKBaseProcessingException with the reason of a refused or failed run; exceptions raised while the
/// processor runs leave unchanged, whichever thread raised them.
ORVIK_API void executeSyncRun(const boost::shared_ptr<BaseProcessor>& processor);

}
}  // namespace orvik::processor
