#pragma once

#include "frame/imaproc/StripParsers.h"
#include "frame/processor/BaseProcessingAlgorithm.h"
#include "frame/processor/ImageBufferTypeIdentifier.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace processor {

namespace details {
template<class First, class...>
struct FirstOf
{
    typedef First type;
};
}  // namespace details

/// What every Level 3 class repeats, written once. `D` adds to what Processor asks for:
/// - `typedef ... ParserMode`, RawStripParserMode or LineStripParserMode;
/// - `template<class Sample, core::eInstructionSet... Sets> BoolResult genericProcessFunction(const ProcessingInfo&)`,
///   the kernel of one run;
/// - `typedef ... KeyStrip`, when another strip than the first attribute chooses the kernel.
template<class D, class... A>
class ProcessingAlgorithm : public Processor<D, BaseProcessingAlgorithm, A...>
{
public:
    typedef typename details::FirstOf<A...>::type KeyStrip;

    static const AlgorithmFunctionSelector& retrieveFunctionSelector() { return entry().selector; }
    static AlgorithmFunctionSelector& accessFunctionSelector() { return entry().selector; }
    static const core::InstructionSetsIdentifier& retrieveForcedInstructionSets() { return entry().forcedSets; }
    static core::InstructionSetsIdentifier& accessForcedInstructionSets() { return entry().forcedSets; }
    /// Later runs use the kernels of exactly these sets, or fail where there is none.
    static void forceInstructionSets(const core::InstructionSetsIdentifier& sets) { entry().forcedSets = sets; }
    static void releaseForcedInstructionSets() { entry().forcedSets.clear(); }

    const AlgorithmFunctionSelector& getFunctionSelector() const override { return retrieveFunctionSelector(); }
    const core::InstructionSetsIdentifier& getForcedInstructionSets() const override
    {
        return retrieveForcedInstructionSets();
    }
    void getDataTypeIdColl(DataTypeIdentifierColl& coll) const override
    {
        imaproc::ImageBufferTypeIdentifier type;
        type.init(this->template attribute<typename D::KeyStrip>()->getImageBufferType());
        coll.init(type);
    }
    void initDataParserColl(DataParserColl& coll) override
    {
        coll.clear();
        m_parsers.assign(sizeof...(A), boost::shared_ptr<BaseDataParser>());
        unsigned long place = 0;
        (makeParser<A>(place++, coll), ...);
    }
    void clearDataParserColl() override
    {
        for (boost::shared_ptr<BaseDataParser>& parser : m_parsers) {
            if (parser)
                parser->clear();
            parser.reset();
        }
    }

protected:
    AlgorithmEntry& getEntry() const override { return entry(); }

    /// The parser of a strip attribute, as the kernel for `Sample` sees it; null when the strip has another sample type.
    template<class Attribute, class Sample>
    auto* parser() const
    {
        typedef typename imaproc::StripParserClass<typename D::ParserMode, Sample, typename Attribute::StripBase>::type
            Parser;
        BaseDataParser* const parser = m_parsers[placeOf<Attribute>()].get();
        return parser && static_cast<imaproc::BaseStripParser*>(parser)->getDataType() == DataTypeOf<Sample>::value
                   ? static_cast<Parser*>(parser)
                   : nullptr;
    }
    /// Calls f with the parser of a strip attribute, whatever its sample type. False when there is none.
    template<class Attribute, class F>
    bool withParser(F&& f) const
    {
        return tryParser<Attribute, unsigned char>(f) || tryParser<Attribute, float>(f)
               || tryParser<Attribute, signed char>(f) || tryParser<Attribute, short>(f)
               || tryParser<Attribute, unsigned short>(f) || tryParser<Attribute, int>(f)
               || tryParser<Attribute, unsigned int>(f);
    }
    /// The parser of a strip attribute whatever its sample type, for setting its border.
    template<class Attribute, class BaseParser>
    BaseParser& borderParser() const
    {
        return static_cast<BaseParser&>(*m_parsers[placeOf<Attribute>()]);
    }
    /// A kernel's answer when the strips are not all of the types that it is written for.
    BoolResult wrongSampleType() const
    {
        return failure(this->getObjectName() + ": the strips do not have the sample types that go together");
    }

private:
    static AlgorithmEntry& entry()
    {
        static AlgorithmEntry& found = getAlgorithmEntry(D::getTypeName());
        return found;
    }

    template<class Attribute, class Sample, class F>
    bool tryParser(F& f) const
    {
        auto* const found = parser<Attribute, Sample>();
        if (found)
            f(*found);
        return found != nullptr;
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
    void makeParser(unsigned long place, DataParserColl& coll)
    {
        if constexpr (std::is_base_of<imaproc::BaseStripAttribute, Attribute>::value) {
            typedef typename Attribute::StripBase Strip;
            const boost::shared_ptr<Strip> strip = this->template attribute<Attribute>();
            if (!strip->hasValue())
                return;
            m_parsers[place] = imaproc::StripParserInfo<typename D::ParserMode, Strip, Strip>::createParser(strip);
            if (m_parsers[place])
                coll.push_back(m_parsers[place]);
        } else {
            static_cast<void>(place);
            static_cast<void>(coll);
        }
    }

    DataParserColl m_parsers;  // by the place of the attribute; null for what is no strip
};

}}  // namespace orvik::processor
