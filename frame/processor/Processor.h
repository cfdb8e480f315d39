#pragma once

#include "frame/processor/AsyncProcessors.h"
#include "frame/processor/ClassStatics.h"
#include "frame/util/Arena.h"
#include "frame/util/KeptText.h"

namespace orvik { namespace processor {

namespace details {
/// Where a processor holds one of its attributes; found by type. Cheaper to compile than a tuple.
template<class A>
struct AttributeSlot
{
    boost::shared_ptr<A> attribute;
};
template<class... A>
struct AttributeSlots : AttributeSlot<A>...
{
};
}  // namespace details

/// What every processor class repeats, written once. `D` is the class, `B` the base that tells its stages, `A...` its
/// attributes in declaration order; they may be forward declared where the class is.
///
/// `D` names itself by ORVIK_PROCESSOR and hides what it has of its own: `createRule()`,
/// `initInitializers(InitializerMap&)`, `s_version`.
template<class D, class B, class... A>
class Processor : public B, public BaseObjectDescription
{
public:
    /// Hands a value to an attribute; a later one replaces it.
    /// @throws ORVIKBaseProcessingException before `init`.
    template<class T>
    void set(const typename T::StorageType& value)
    {
        this->checkInitialised();
        attribute<T>()->assign(value);
    }

    /// The value of an output. @throws ORVIKBaseProcessingException before `init`.
    template<class T>
    typename std::enable_if<T::g_bOutput, typename T::StorageType>::type getStorage() const
    {
        this->checkInitialised();
        return attribute<T>()->getStorage();
    }

    BoolResult initDerived(AttributeColl& attributes, InitializerMap& initializers, ProcessorDispatchPolicy& policy,
                           RulePtr& rule, const eProcessorRulePolicy& rulePolicy) override
    {
        attributes.clear();
        attributes.reserve(sizeof...(A));
        (void(attributes.push_back(slot<A>().attribute = makeTogether<A>())), ...);
        initializers.clear();
        static_cast<D*>(this)->initInitializers(initializers);
        policy = getDefaultDispatchPolicy();
        rule.reset();
        if (rulePolicy != ePRP_NoRules)
            rule = static_cast<const D*>(this)->createRule();
        return success();
    }

    /// Calls f with the pointer to each attribute, in the order of declaration.
    template<class F>
    void forEachAttribute(F&& f) const
    {
        (void(f(attribute<A>())), ...);
    }

    static const std::string& getTypeName()
    {
        static const std::string& name = keptText(details::makeTypeName(D::s_namespace, D::s_name));
        return name;
    }
    static const std::string& getObjectNameStr()
    {
        static const std::string& name = keptText(D::s_name);
        return name;
    }
    static const std::string& getToolTipStr()
    {
        static const std::string& tip = keptText(D::readToolTip());
        return tip;
    }
    static unsigned int getVersion()
    {
        static const unsigned int version = details::readVersionConstant(D::s_version);
        return version;
    }
    static const ProcessorDispatchPolicy& getDefaultDispatchPolicy()
    {
        static ProcessorDispatchPolicy policy;
        details::initDispatchPolicy(policy);
        return policy;
    }
    static BaseDynamicObject* createNewObject() { return new D; }
    static DynamicObjectPtr createSharedObject() { return boost::make_shared<D>(); }
    static boost::shared_ptr<D> createProcessor() { return boost::make_shared<D>(); }
    static boost::shared_ptr<BaseProcessor> createBaseProcessor() { return boost::make_shared<D>(); }

    std::string getClassName() const override { return getTypeName(); }
    const std::string& getObjectName() const override { return getObjectNameStr(); }
    const std::string& getToolTip() const override { return getToolTipStr(); }
    BaseDynamicObject* createNew() const override { return createNewObject(); }
    DynamicObjectPtr createShared() const override { return createSharedObject(); }
    bool hasCopySupport() const override { return false; }
    // Processors are never copied: their attributes, rules and partial results refer to one another.
    void copy(const BaseDynamicObject&) override { details::throwCopyNotSupported(getTypeName()); }
    BaseDynamicObject* duplicate() const override { details::throwCopyNotSupported(getTypeName()); }
    DynamicObjectPtr duplicateShared() const override { details::throwCopyNotSupported(getTypeName()); }
    BoolResult write(BaseOArchive& archive) const override
    {
        const BoolResult result = B::write(archive);
        return result.getValue() ? details::writeClassVersion(archive, getClassName(), getVersion()) : result;
    }
    BoolResult read(BaseIArchive& archive) override
    {
        const BoolResult result = B::read(archive);
        return result.getValue() ? details::readClassVersion(archive, getClassName(), getVersion()) : result;
    }

    /// Strips of fewer lines cost more than they win; a class with an expensive first line asks for more.
    static constexpr unsigned long s_minStripLines = 1;
    /// Strips are no thinner than that many times the margin on one side, as long as there is one for each thread; a class
    /// whose margins cost more than lines that are read asks for more. One line more than twice it is the least.
    static constexpr unsigned long s_minStripMargins = 2;
    /// Whether that least may be undercut to give each thread a strip: where lines that margins read take far less than others.
    static constexpr bool s_areMarginsCheap = false;

protected:
    static constexpr unsigned int s_version = 1;

    template<class T>
    const boost::shared_ptr<T>& attribute() const
    {
        const details::AttributeSlot<T>& slot = m_slots;
        return slot.attribute;
    }
    /// What an attribute holds.
    template<class T>
    decltype(auto) value() const
    {
        return attribute<T>()->getStorage();
    }
    RulePtr createRule() const { return none(); }
    void initInitializers(InitializerMap&) {}
    /// Enters an initialiser under the name of its output.
    template<class T>
    static void addInitializer(InitializerMap& initializers, const InitializerPtr& initializer)
    {
        initializers[T::getObjectNameStr()] = initializer;
    }

private:
    template<class T>
    details::AttributeSlot<T>& slot()
    {
        return m_slots;
    }

    details::AttributeSlots<A...> m_slots;
};

/// First line of a processor class: its name and the number of its tool tip. The namespace has a `Library` that tells
/// the rest: `s_namespace`, `s_name`, `toolTip(row)`.
#define ORVIK_PROCESSOR(Name, ToolTipRow) \
    template<class, class, class...> \
    friend class ::orvik::processor::Processor; \
    static constexpr const char* s_name = #Name; \
    static constexpr const char* s_namespace = Library::s_namespace; \
    static std::string readToolTip() \
    { \
        return Library::toolTip(ToolTipRow); \
    } \
\
public: \
    static constexpr const char* s_library = Library::s_name; \
    static constexpr const char* s_headerPath = __FILE__; \
    Name(); \
    ~Name() override;

/// Makes a processor, ready for `set`.
template<class P>
boost::shared_ptr<P> createInitialised()
{
    const ArenaScope together;
    const boost::shared_ptr<P> processor = makeTogether<P>();
    processor->init(ePRP_WithRules);
    return processor;
}

/// Waits for the end of a processor that was started in the background. @throws what ended the run, when it failed.
template<class P>
void waitForEnd(const boost::shared_ptr<P>& processor)
{
    if (!processor)
        details::throwNullProcessor();
    processor->waitForEnd();
    processor->rethrowFailure();
}

}}  // namespace orvik::processor
