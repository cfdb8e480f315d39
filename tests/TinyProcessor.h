#pragma once

// Small processor families for the tests of the frame.
//
// Hash: every output sample is a hash of all samples of a window, borders included, so that one wrong or misplaced
// sample shows. In planes or in volumes.
// Copy: touches everything that a kernel may touch, and keeps what it was told of each run.
// Hook: calls a function of the test for each line and lists the lines, one list per plane.

#include "frame/imaproc/ImageInitializers.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/PlanIndexedInitializers.h"
#include "frame/imaproc/ProcessingAlgorithm.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/KernelRegistrator.h"
#include "frame/serialization/PlanIndexedColl.h"

#include <boost/smart_ptr/make_shared_array.hpp>

#include <cstring>
#include <functional>
#include <mutex>

namespace orvik::imaproc::tiny {

struct Library
{
    static constexpr const char* s_namespace = "orvik::imaproc::tiny";
    static constexpr const char* s_name = "Tiny";
    static std::string toolTip(unsigned int row) { return "tiny " + std::to_string(row); }
};

/// How far a window reaches and what it reads outside the image; `Border` is an eBorderType.
ORVIK_RECORD(Reach, (unsigned int, StartX)(unsigned int, EndX)(unsigned int, StartY)(unsigned int, EndY)
                    (unsigned int, StartZ)(unsigned int, EndZ)(unsigned int, Border)(double, Value));
ORVIK_RECORD_DEFINE(Reach)
ORVIK_RECORD(Mark, (double, X)(double, Y)(long, Id));
ORVIK_RECORD_DEFINE(Mark)
ORVIK_RECORD_COLL(Marks, Mark);
ORVIK_RECORD_COLL_DEFINE(Marks)
ORVIK_PLAN_INDEXED(PlanIndexedMarks, Marks);
ORVIK_PLAN_INDEXED_DEFINE(PlanIndexedMarks)

ORVIK_INPUT(InTinyImg, (BaseInputImageAttribute), "image");
ORVIK_OUTPUT(OutTinyImg, (BaseOutputImageAttribute), "result");
ORVIK_INPUT(InReach, (processor::InputDataItem<Reach>), "window");
ORVIK_INPUT(InMarks, (processor::InputDataItem<Marks>), "list");
ORVIK_OUTPUT(OutMarks, (processor::OutputDataItem<Marks>), "list of lines");
ORVIK_OUTPUT(OutPIMarks, (PlanIndexedStorage<PlanIndexedMarks>), "lists of lines, one per plane");
ORVIK_INPUT(InTinyYStrip, (BaseInputYStrip2dAttribute), "strip");
ORVIK_OUTPUT(OutTinyYStrip, (BaseOutputYStrip2dAttribute), "strip of the result");
ORVIK_INPUT(InTinyZStrip, (BaseInputZStrip3dAttribute), "strip");
ORVIK_OUTPUT(OutTinyZStrip, (BaseOutputZStrip3dAttribute), "strip of the result");
ORVIK_INPUT(InTinyKnlYStrip, (BaseInputYStrip2dWithKernelAttribute), "strip with margins");
ORVIK_INPUT(InTinyKnlZStrip, (BaseInputZStrip3dWithKernelAttribute), "strip with margins");

typedef unsigned int Hash;

template<class T>
Hash mixed(Hash hash, T sample)
{
    unsigned long bits = 0;
    std::memcpy(&bits, &sample, sizeof sample);
    return (hash ^ static_cast<Hash>(bits)) * 16777619u + 1;
}

inline image::StripMargins marginsOf(const Reach& reach)
{
    return {reach.get<Reach::StartX>(), reach.get<Reach::EndX>(),   reach.get<Reach::StartY>(),
            reach.get<Reach::EndY>(),   reach.get<Reach::StartZ>(), reach.get<Reach::EndZ>()};
}

inline processor::StageResult done()
{
    return processor::StageResult(processor::eSRT_Done);
}

/// What `ORVIK_PROCESSOR` declares, of a class or, with its parameters in front, of a template.
#define TINY_DEFINE(Name, Class, ...) \
    __VA_ARGS__ inline Class::Name() = default; \
    __VA_ARGS__ inline Class::~Name() = default
#define TINY_STAGE \
    using processor::BaseAsync1Processor::retrieveProvider; \
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority, processor::ProviderPtr& provider) \
        override

/// The hashes of one line. `rows`: the lines of the window from their left margins on. The first hash also takes in all
/// that lies right of the image and may be read.
template<class Sample>
void hashLine(const std::vector<const Sample*>& rows, const image::StripMargins& m, const processor::ProcessingInfo& info,
              Hash* out)
{
    for (unsigned long x = 0; x < info.nbData; ++x) {
        Hash hash = 0;
        for (const Sample* const row : rows)
            for (unsigned long i = 0; i < m.startX + 1 + m.endX; ++i)
                hash = mixed(hash, row[x + i]);
        if (x == 0)
            for (const Sample* const row : rows)
                for (unsigned long i = m.startX + info.nbData; i < m.startX + info.nbAlignedData + m.endX + 1; ++i)
                    hash = mixed(hash, row[i]);
        out[x] = hash;
    }
}

/// Lines of planes or of volumes, as the border says.
template<class D, class Border, class In, class Out>
class HashBase : public ProcessingAlgorithm<D, In, InReach, Out>
{
public:
    typedef LineStripParserMode ParserMode;

    processor::StageResult preProcess() override
    {
        const Reach& reach = *this->template value<InReach>();
        const Border border(static_cast<image::eBorderType>(reach.get<Reach::Border>()), reach.get<Reach::Value>());
        this->template setBorder<In>(border);
        return done();
    }
    template<class Sample, core::eInstructionSet>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info)
    {
        const auto* const in = this->template parser<In, Sample>();
        const auto* const out = this->template parser<Out, Hash>();
        if (!in || !out)
            return this->wrongSampleType();
        const image::StripMargins m = marginsOf(*this->template value<InReach>());
        std::vector<const Sample*> rows;
        for (unsigned long z = 0; z < (s_volumes ? m.startZ + 1 + m.endZ : 1); ++z)
            for (unsigned long y = 0; y < m.startY + 1 + m.endY; ++y)
                if constexpr (s_volumes)
                    rows.push_back(in->accessBuffer(z, y));
                else
                    rows.push_back(in->accessBuffer(y));
        hashLine(rows, m, info, out->accessBuffer());
        return success();
    }

private:
    static constexpr bool s_volumes = std::is_same<Border, image::Border3dPolicy>::value;
};

#define TINY_HASH(Name, Border, In, Out) \
    class Name : public HashBase<Name, image::Border, In, Out> \
    { \
        ORVIK_PROCESSOR(Name, 1) \
    }; \
    TINY_DEFINE(Name, Name); \
    const processor::KernelRegistrator<Name, processor::AllKernelTypes, core::eIS_Generic> g_kernels##Name(__FILE__)
TINY_HASH(HashYLvl3, Border2dPolicy, InTinyKnlYStrip, OutTinyYStrip);
TINY_HASH(HashZLvl3, Border3dPolicy, InTinyKnlZStrip, OutTinyZStrip);
#undef TINY_HASH

template<bool Volumes>
class HashLvl2
    : public processor::Processor<HashLvl2<Volumes>, processor::BaseAsync1Processor, InTinyImg, InReach, OutTinyImg>
{
    ORVIK_PROCESSOR(HashLvl2, 3)

    TINY_STAGE
    {
        const auto& in = this->template value<InTinyImg>();
        const auto& reach = this->template value<InReach>();
        const auto& out = this->template value<OutTinyImg>();
        const image::StripMargins margins = marginsOf(*reach);
        const bool inPlace = in->getLine(0) == out->getLine(0);
        if constexpr (Volumes)
            return dispatch<HashZLvl3>(priority, provider, StripsOf<InTinyKnlZStrip>{in, margins, inPlace},
                                       same<InReach>(reach), strips<OutTinyZStrip>(out));
        else
            return dispatch<HashYLvl3>(priority, provider, StripsOf<InTinyKnlYStrip>{in, margins, inPlace},
                                       same<InReach>(reach), strips<OutTinyYStrip>(out));
    }
};
TINY_DEFINE(HashLvl2, HashLvl2<Volumes>, template<bool Volumes>);

template<bool Volumes>
class HashLvl1
    : public processor::Processor<HashLvl1<Volumes>, processor::BaseAsync1Processor, InTinyImg, InReach, OutTinyImg>
{
    ORVIK_PROCESSOR(HashLvl1, 4)

    TINY_STAGE
    {
        const auto& in = this->template value<InTinyImg>();
        const auto& out = this->template value<OutTinyImg>();
        return dispatch<HashLvl2<Volumes>>(priority, provider,
                                           Volumes ? eachVolume<InTinyImg>(in) : eachPlane<InTinyImg>(in),
                                           same<InReach>(this->template value<InReach>()),
                                           Volumes ? eachVolume<OutTinyImg>(out) : eachPlane<OutTinyImg>(out));
    }
    processor::RulePtr createRule() const
    {
        return matchSize(this->template attribute<InTinyImg>(), this->template attribute<OutTinyImg>());
    }
    void initInitializers(processor::InitializerMap& initializers)
    {
        this->template addInitializer<OutTinyImg>(initializers,
                                                  duplicateInOut(this->template attribute<OutTinyImg>(),
                                                                 this->template attribute<InTinyImg>(), image::eIBT_UInt32));
    }
};
TINY_DEFINE(HashLvl1, HashLvl1<Volumes>, template<bool Volumes>);

/// What the kernels of the Copy family were told, run by run.
struct RunLog
{
    static inline std::mutex s_mutex;
    static inline std::vector<processor::ProcessingInfo> s_runs;
};

template<class D, class Mode, unsigned long Granularity, class In, class Out>
class CopyBase : public ProcessingAlgorithm<D, In, Out>
{
public:
    typedef Mode ParserMode;
    typedef In InStrip;
    typedef Out OutStrip;

    unsigned long getRunGranularity() const override { return Granularity; }
    template<class Sample, core::eInstructionSet>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info)
    {
        const auto* const in = this->template parser<In, Sample>();
        const auto* const out = this->template parser<Out, Sample>();
        if (!in || !out)
            return this->wrongSampleType();
        const std::lock_guard<std::mutex> lock(RunLog::s_mutex);
        RunLog::s_runs.push_back(info);
        for (unsigned long i = 0; i < info.nbAlignedData; ++i)
            out->accessBuffer()[i] = in->accessBuffer()[i];
        return success();
    }
};

/// One type of each size: the copies move bytes, and every type costs time to compile.
typedef processor::KernelTypes<processor::KernelType<image::eIBT_UInt8, unsigned char>,
                               processor::KernelType<image::eIBT_Int16, short>,
                               processor::KernelType<image::eIBT_Real32, float>>
    CopyTypes;

#define TINY_COPY(Name, Mode, Granularity, Axis) \
    class Name : public CopyBase<Name, Mode, Granularity, InTiny##Axis##Strip, OutTiny##Axis##Strip> \
    { \
        ORVIK_PROCESSOR(Name, 5) \
    }; \
    TINY_DEFINE(Name, Name); \
    const processor::KernelRegistrator<Name, CopyTypes, core::eIS_Generic> g_kernels##Name(__FILE__)
TINY_COPY(CopyRaw16, RawStripParserMode, 16, Y);
TINY_COPY(CopyRaw64, RawStripParserMode, 64, Y);
TINY_COPY(CopyRaw256, RawStripParserMode, 256, Y);
TINY_COPY(CopyLine64, LineStripParserMode, 64, Y);
TINY_COPY(CopyLine256, LineStripParserMode, 256, Y);
TINY_COPY(CopyRawZ, RawStripParserMode, 64, Z);
#undef TINY_COPY

/// One plane or volume, straight to the strips of `Lvl3`.
template<class Lvl3>
class CopyLvl1 : public processor::Processor<CopyLvl1<Lvl3>, processor::BaseAsync1Processor, InTinyImg, OutTinyImg>
{
    ORVIK_PROCESSOR(CopyLvl1, 6)

    TINY_STAGE
    {
        return dispatch<Lvl3>(priority, provider, strips<typename Lvl3::InStrip>(this->template value<InTinyImg>()),
                              strips<typename Lvl3::OutStrip>(this->template value<OutTinyImg>()));
    }
    void initInitializers(processor::InitializerMap& initializers)
    {
        this->template addInitializer<OutTinyImg>(initializers, duplicateInOut(this->template attribute<OutTinyImg>(),
                                                                               this->template attribute<InTinyImg>(),
                                                                               image::eImageBufferType()));
    }
};
TINY_DEFINE(CopyLvl1, CopyLvl1<Lvl3>, template<class Lvl3>);

/// Called for each line, on whichever thread works on it.
struct Hook
{
    static inline std::function<BoolResult(unsigned long y)> s_onLine;
};

/// Lists each line of its strip: the first sample as Id.
class HookLvl3 : public ProcessingAlgorithm<HookLvl3, InTinyYStrip, OutMarks>
{
    ORVIK_PROCESSOR(HookLvl3, 7)

    typedef LineStripParserMode ParserMode;

    template<class Sample, core::eInstructionSet>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info)
    {
        const auto* const in = parser<InTinyYStrip, Sample>();
        if (!in)
            return wrongSampleType();
        const unsigned long y = value<InTinyYStrip>()->getStripStartOffsetY() + info.lineIndex;
        value<OutMarks>()->template access<Marks::Coll>().push_back(
            Mark::createNode(0.0, static_cast<double>(y), static_cast<long>(in->accessBuffer()[0])));
        return Hook::s_onLine ? Hook::s_onLine(y) : success();
    }
};
TINY_DEFINE(HookLvl3, HookLvl3);

class HookLvl2 : public processor::Processor<HookLvl2, processor::BaseAsync1Processor, InTinyImg, OutMarks>
{
    ORVIK_PROCESSOR(HookLvl2, 8)

    TINY_STAGE
    {
        return dispatch<HookLvl3>(priority, provider, strips<InTinyYStrip>(value<InTinyImg>()),
                                  resultOfEach<OutMarks>(m_results));
    }
    processor::StageResult postProcess() override
    {
        Marks::Coll& all = value<OutMarks>()->access<Marks::Coll>();
        all.clear();
        for (const auto& strip : *m_results)
            for (const auto& mark : strip.second->get<Marks::Coll>().getNodes())
                all.push_back(mark);
        return done();
    }
    void clearIntermediateData() noexcept override { m_results->clear(); }

private:
    processor::ResultsOfStrips<Marks> m_results;
};
TINY_DEFINE(HookLvl2, HookLvl2);

class HookLvl1 : public processor::Processor<HookLvl1, processor::BaseAsync1Processor, InTinyImg, OutPIMarks>
{
    ORVIK_PROCESSOR(HookLvl1, 9)

    TINY_STAGE
    {
        return dispatch<HookLvl2>(priority, provider, eachPlane<InTinyImg>(value<InTinyImg>()),
                                  entryOfEachPlane<OutMarks>(value<OutPIMarks>(), *value<InTinyImg>()));
    }
    void initInitializers(processor::InitializerMap& initializers)
    {
        addInitializer<OutPIMarks>(initializers, fromImage(attribute<OutPIMarks>(), attribute<InTinyImg>()));
    }
};
TINY_DEFINE(HookLvl1, HookLvl1);

const processor::KernelRegistrator<HookLvl3, processor::AllKernelTypes, core::eIS_Generic> g_kernelsHook(__FILE__);

}  // namespace orvik::imaproc::tiny
