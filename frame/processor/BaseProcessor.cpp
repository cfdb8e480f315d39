#include "frame/processor/BaseProcessor.h"

#include "frame/processor/ClassStatics.h"
#include "frame/serialization/Archive.h"
#include "frame/util/Arena.h"
#include "frame/util/FrameMessages.h"

namespace orvik { namespace processor {

BaseObjectDescription::~BaseObjectDescription() = default;

BaseProcessor::BaseProcessor() : m_initialised(false) {}
BaseProcessor::~BaseProcessor() = default;

BoolResult BaseProcessor::init(const eProcessorRulePolicy& rulePolicy)
{
    const ArenaScope together;
    const BoolResult result = initDerived(m_attributes, m_initializers, m_dispatchPolicy, m_rule, rulePolicy);
    m_initialised = result.getValue();
    return result;
}

void BaseProcessor::checkInitialised() const
{
    if (!m_initialised)
        ORVIK_THROW(ORVIKBaseProcessingException, g_baseProcessingLogSource, eProcessorMessage::eProcessorNotInitialised,
                    getObjectName());
}

StageResult BaseProcessor::preProcess()
{
    return StageResult(eSRT_Done);
}

StageResult BaseProcessor::postProcess()
{
    return StageResult(eSRT_Done);
}

void BaseProcessor::globalCleanDerived() {}
void BaseProcessor::syncInputDataDerived(const Guid&) {}
void BaseProcessor::syncOutputDataDerived(const Guid&) {}
void BaseProcessor::initProcess() {}
void BaseProcessor::endProcess() {}

void BaseProcessor::clearInputData()
{
    for (const boost::shared_ptr<BaseAttribute>& attribute : m_attributes)
        if (!attribute->isOutput())
            attribute->clear();
}

void BaseProcessor::clearOutputData()
{
    for (const boost::shared_ptr<BaseAttribute>& attribute : m_attributes)
        if (attribute->isOutput())
            attribute->clear();
}

void BaseProcessor::clearMadeOutputs()
{
    for (const boost::shared_ptr<BaseAttribute>& attribute : m_attributes)
        if (attribute->isMadeByInitializer())
            attribute->clear();
}

BoolResult BaseProcessor::checkMandatory(bool outputs) const
{
    for (const boost::shared_ptr<BaseAttribute>& attribute : m_attributes) {
        if (attribute->isOutput() == outputs && attribute->isMandatory() && !attribute->hasValue()) {
            LogMessageFormater formater(getORVIKBaseProcessingLogMessageManager());
            formater[eProcessorMessage::eMandatoryAttributeMissing] % getObjectName() % attribute->getObjectName();
            return failure(formater.string());
        }
    }
    return success();
}

BoolResult BaseProcessor::refusedByRule() const
{
    LogMessageFormater formater(getORVIKBaseProcessingLogMessageManager());
    formater[eProcessorMessage::eRunRefused] % getObjectName() % m_rule->createRuleEvaluatedString(0);
    return failure(formater.string());
}

BoolResult BaseProcessor::prepareRun()
{
    checkInitialised();
    clearMadeOutputs();
    const BoolResult hasInputs = checkMandatory(false);
    if (!hasInputs.getValue())
        return hasInputs;
    if (m_rule && !m_rule->testRule())
        return refusedByRule();

    bool made = false;
    for (const InitializerMap::value_type& initializer : m_initializers) {
        if (initializer.second->getOutputAttribute()->hasValue())
            continue;
        const BoolResult result = initializer.second->initOutputAttribute();
        if (!result)
            return result;
        made = true;
    }
    if (made && m_rule && !m_rule->testRule()) {
        const BoolResult refused = refusedByRule();
        clearMadeOutputs();
        return refused;
    }
    return checkMandatory(true);
}

BoolResult BaseProcessor::write(BaseOArchive& archive) const
{
    const BoolResult result = core::BaseComplexAction::write(archive);
    if (!result)
        return result;
    ArchiveSectionManager section(archive, "attributes");
    archive << SerializationOItem<bool>("initialised", m_initialised);
    for (const boost::shared_ptr<BaseAttribute>& attribute : m_attributes) {
        if (!attribute->isStored())
            continue;
        const bool hasValue = attribute->hasValue();
        archive << SerializationOItem<bool>(attribute->getObjectName(), hasValue);
        if (!hasValue)
            continue;
        const BoolResult written = attribute->write(archive);
        if (!written.getValue())
            return written;
    }
    section.close();
    return success();
}

BoolResult BaseProcessor::read(BaseIArchive& archive)
{
    BoolResult result = core::BaseComplexAction::read(archive);
    if (!result)
        return result;
    if (!m_initialised) {
        result = init(ePRP_WithRules);
        if (!result)
            return result;
    }
    ArchiveSectionManager section(archive, "attributes");
    bool initialised = false;  // one that was not had no attributes to write
    archive >> SerializationIItem<bool>("initialised", initialised);
    for (const boost::shared_ptr<BaseAttribute>& attribute : m_attributes) {
        if (!attribute->isStored())
            continue;
        bool hasValue = false;
        if (initialised)
            archive >> SerializationIItem<bool>(attribute->getObjectName(), hasValue);
        attribute->clear();
        if (!hasValue)
            continue;
        const BoolResult read = attribute->read(archive);
        if (!read.getValue())
            return read;
    }
    section.close();
    return success();
}

void executeSyncRun(const boost::shared_ptr<BaseProcessor>& processor)
{
    if (!processor)
        details::throwNullProcessor();
    processor->executeAsRoot();
}

}}  // namespace orvik::processor
