#pragma once

#include "frame/imaproc/StripParsers.h"
#include "frame/processor/BaseProcessingAlgorithm.h"
#include "frame/processor/ImageBufferTypeIdentifier.h"
#include "frame/processor/Processor.h"

#include <memory>

namespace orvik { namespace imaproc {

namespace details {
template<class First, class...>
struct FirstOf
{
    typedef First type;
};

/// What a kernel keeps for one strip, whatever its type.
struct BaseStripState
{
    virtual ~BaseStripState() = default;
};
template<class State>
struct StripState : BaseStripState
{
    explicit StripState(State&& made) : state(std::move(made)) {}
    State state;
};
}  // namespace details

/// What every Level 3 class repeats, written once. `D` adds to what Processor asks for:
/// - `typedef ... ParserMode`, RawStripParserMode or LineStripParserMode;
/// - `template<class Sample, core::eInstructionSet... Sets> BoolResult genericProcessFunction(const ProcessingInfo&)`,
///   the kernel of one run;
/// - `typedef ... KeyStrip`, when another strip than the first attribute chooses the kernel.
template<class D, class... A>
class ProcessingAlgorithm : public processor::Processor<D, processor::BaseProcessingAlgorithm, A...>
{
public:
    typedef typename details::FirstOf<A...>::type KeyStrip;

    static const processor::AlgorithmFunctionSelector& retrieveFunctionSelector() { return entry().selector; }
    static processor::AlgorithmFunctionSelector& accessFunctionSelector() { return entry().selector; }
    static const core::InstructionSetsIdentifier& retrieveForcedInstructionSets() { return entry().forcedSets; }
    static core::InstructionSetsIdentifier& accessForcedInstructionSets() { return entry().forcedSets; }
    /// Later runs use the kernels of exactly these sets, or fail where there is none.
    static void forceInstructionSets(const core::InstructionSetsIdentifier& sets) { entry().forcedSets = sets; }
    static void releaseForcedInstructionSets() { entry().forcedSets.clear(); }

    const processor::AlgorithmFunctionSelector& getFunctionSelector() const override { return retrieveFunctionSelector(); }
    const core::InstructionSetsIdentifier& getForcedInstructionSets() const override
    {
        return retrieveForcedInstructionSets();
    }
    void getDataTypeIdColl(processor::DataTypeIdentifierColl& coll) const override
    {
        imaproc::ImageBufferTypeIdentifier type;
        type.init(this->template attribute<typename D::KeyStrip>()->getImageBufferType());
        coll.init(type);
    }
    void initDataParserColl(processor::DataParserColl& coll) override
    {
        coll.clear();
        coll.reserve(sizeof...(A));
        (makeParser<A>(coll), ...);
    }
    void clearDataParserColl() override
    {
        m_strip.reset();
        for (boost::shared_ptr<processor::BaseDataParser>& parser : m_parsers) {
            if (parser)
                parser->clear();
            parser.reset();
        }
    }

protected:
    processor::AlgorithmEntry& getEntry() const override { return entry(); }

    /// The parser of a strip attribute, as the kernel for `Sample` sees it; null when the strip has another sample type,
    /// which `onceAStrip` notices.
    template<class Attribute, class Sample>
    auto* parser()
    {
        typedef typename StripParserClass<typename D::ParserMode, Sample, typename Attribute::StripBase>::type Parser;
        processor::BaseDataParser* const parser = m_parsers[placeOf<Attribute>()].get();
        const bool fits = parser && static_cast<BaseStripParser*>(parser)->getDataType() == DataTypeOf<Sample>::value;
        m_allParsersFit &= fits;
        return fits ? static_cast<Parser*>(parser) : nullptr;
    }
    /// The parser of a strip without margins whatever its sample type; null when the strip is unset.
    template<class Attribute>
    const PlainStripParser* plainParser() const
    {
        return static_cast<const PlainStripParser*>(m_parsers[placeOf<Attribute>()].get());
    }
    /// What the kernel works with on the strip at hand: parsers, records and thresholds as typed values. `make` fetches
    /// them at the strip's first run; they are kept to its end. Null when a parser that was asked for has another sample
    /// type; the kernel's answer is then `wrongSampleType`.
    template<class Make>
    auto* onceAStrip(const processor::ProcessingInfo& info, const Make& make)
    {
        typedef details::StripState<decltype(make())> Strip;
        if (info.lineIndex == 0 && info.partIndex == 0) {
            m_allParsersFit = true;
            m_strip.reset(new Strip(make()));
        }
        return m_allParsersFit ? &static_cast<Strip&>(*m_strip).state : nullptr;
    }
    /// A kernel's answer when the strips are not all of the types that it is written for.
    BoolResult wrongSampleType() const
    {
        return failure(this->getObjectName() + ": the strips do not have the sample types that go together");
    }

    /// What a strip with margins reads as outside the image; to be said in `preProcess`.
    template<class Attribute>
    void setBorder(const image::BorderPolicy& policy) const
    {
        static_assert(Attribute::Strip::s_withKernel, "strips without margins read nothing outside the image");
        static_cast<KernelStripParser&>(*m_parsers[placeOf<Attribute>()]).setBorder(policy);
    }
    /// Lines of a strip with margins are read when they are asked for; to be said in `preProcess`.
    template<class Attribute>
    void readOnDemand() const
    {
        static_cast<KernelStripParser&>(*m_parsers[placeOf<Attribute>()]).readOnDemand();
    }

private:
    static processor::AlgorithmEntry& entry()
    {
        static processor::AlgorithmEntry& found = processor::getAlgorithmEntry(D::getTypeName());
        return found;
    }

    template<class Attribute>
    static constexpr unsigned long placeOf()
    {
        constexpr bool matches[] = {std::is_same<Attribute, A>::value...};
        unsigned long place = 0;
        while (!matches[place])
            ++place;
        return place;
    }

    template<class Attribute>
    void makeParser(processor::DataParserColl& coll)
    {
        if constexpr (std::is_base_of<BaseStripAttribute, Attribute>::value) {
            typedef typename Attribute::StripBase Strip;
            const boost::shared_ptr<Strip> strip = this->template attribute<Attribute>();
            if (!strip->hasValue())
                return;
            boost::shared_ptr<processor::BaseDataParser>& parser = m_parsers[placeOf<Attribute>()];
            parser = StripParserInfo<typename D::ParserMode, Strip, Strip>::createParser(strip);
            if (parser)
                coll.push_back(parser);
        } else {
            static_cast<void>(coll);
        }
    }

    boost::shared_ptr<processor::BaseDataParser> m_parsers[sizeof...(A)];  // null for what is no strip
    std::unique_ptr<details::BaseStripState> m_strip;
    bool m_allParsersFit = true;
};

/// In the main unit of a class of Level 3: the bodies that say nothing of their own. Its kernels enter it in the factories.
#define ORVIK_DEFINE_ALGORITHM(X) \
    X::X() = default; \
    X::~X() = default;

}}  // namespace orvik::imaproc
