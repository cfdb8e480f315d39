// Calls of all functions on whatever bytes make of their arguments. Each call is made with every instruction set, with
// strips and threads that vary, at once and in the background, and must give what plain code on one thread gives.

#include "Arguments.h"

#include "ORVIKIPLFeatureDetection.h"
#include "Processor/ComputeBestCirclesRadiiFromGradMagImg2d/ComputeBestCirclesRadiiFromGradMagImg2dLvl1.h"
#include "Processor/ComputeBestSpheresRadiiFromGradMagImg3d/ComputeBestSpheresRadiiFromGradMagImg3dLvl1.h"
#include "Processor/ExtractHoughPeaks2d/ExtractHoughPeaks2dLvl1.h"
#include "Processor/ExtractRadiusFromHoughImg/ExtractRadiusFromHoughImgLvl1.h"
#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl1.h"

#include "frame/attr/Records.h"
#include "frame/core/InstructionSet.h"
#include "frame/processor/AlgorithmFunctionSelector.h"
#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl1.h"
#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgLvl1.h"

#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <map>
#include <new>
#include <string>
#include <tuple>

namespace orvik::fuzz { namespace {

using namespace imaproc::fd;
using namespace imaproc::filter;

constexpr unsigned long kOneStrip = 1000000;

struct Setting
{
    core::eInstructionSet set;
    unsigned int nbThreads;
    unsigned long grain;
};

// --- what calls are made of

struct Started
{
    boost::shared_ptr<processor::BaseProcessor> processor;
    std::function<Numbers()> read;
};

/// A call with its arguments; `start` is empty for functions that do not run in the background.
struct Call
{
    std::function<Numbers()> atOnce;
    std::function<Started()> start;
};

/// `f` with its arguments, as numbers; none when the function that it belongs to writes into images alone.
template<bool returns, class F, class... A>
std::function<Numbers()> bound(const F& f, const A&... a)
{
    return [=] {
        if constexpr (returns)
            return test::numbersOf(f(a...));
        else
            return f(a...), Numbers();
    };
}

template<class AtOnce, class Start, class Read, class... A>
Call callOf(const AtOnce& atOnce, const Start& start, const Read& read, const A&... a)
{
    constexpr bool returns = !std::is_void<decltype(atOnce(a...))>::value;
    return {bound<returns>(atOnce, a...), [=] {
                const auto processor = start(a...);
                return Started{processor, bound<returns>(read, processor)};
            }};
}

#define CALL(name) [](const auto&... a) { return name(a...); }
#define AT_ONCE(name) \
    [](Scenario&, const auto&... a) { \
        return Call{bound<!std::is_void<decltype(name(a...))>::value>(CALL(name), a...), nullptr}; \
    }
/// `name` and its form in the background.
#define FUNCTION(name) \
    [](Scenario&, const auto&... a) { return callOf(CALL(name), CALL(name##_async), CALL(getAsyncProcessorOutput), a...); }
/// The same, or, as a rule when the image has several planes, the forms for any number of them.
#define PLANES(name) \
    [](Scenario& scenario, const auto&... a) { \
        const image::ImageSizes& sizes = scenario.sizes(); \
        return scenario.oneIn(sizes.z * sizes.c * sizes.t == 1 ? 2 : 8) \
                   ? callOf(CALL(name), CALL(name##_async), CALL(getAsyncProcessorOutput), a...) \
                   : callOf(CALL(multiSlice_##name), CALL(multiSlice_##name##_async), \
                            CALL(getAsyncProcessorMultiSliceOutput), a...); \
    }

/// A class of Level 1 whose attributes are set, its working images included; gives `Out`.
template<class X, class Out, class... Attributes>
Call processorCall(Scenario&, const typename Attributes::StorageType&... a)
{
    const auto read = [](const boost::shared_ptr<X>& ended) {
        processor::waitForEnd(ended);
        return ended->template getStorage<Out>();
    };
    const auto start = [](const auto&... values) {
        const boost::shared_ptr<X> made = test::processorWith<X, Attributes...>(values...);
        made->run(core::eST_Asynchronous);
        return made;
    };
    return callOf([=](const auto&... values) { return read(test::ran<X, Attributes...>(values...)); }, start, read, a...);
}

// --- settings with which a result need not be that of plain code on one thread and in one strip

struct Exceptions
{
    bool (*hold)(const Scenario&, const Setting&);
    bool ofVectors = false;  // they differ from plain code, but not from one another
};

const Exceptions none = {[](const Scenario&, const Setting&) { return false; }};
/// The widest set rounds a sum of squares once, the others twice; what a NaN takes with it depends on where strips end.
const Exceptions norms = {[](const Scenario& scenario, const Setting& setting) {
    return setting.set == core::eIS_Avx512 || (setting.grain != kOneStrip && scenario.hasNan());
}};
/// Threads do not keep the order in which floats are added.
const Exceptions floatVotes = {[](const Scenario& scenario, const Setting& setting) {
    return setting.nbThreads > 1 && (scenario.hasType(image::eIBT_Real32) || scenario.hasType(image::eIBT_Label8));
}};
/// The same; and vectors have an arc tangent of their own.
const Exceptions gradientVotes = {[](const Scenario&, const Setting& setting) { return setting.nbThreads > 1; }, true};

/// The pair of sets with fused operations, which is the newest there.
const Exceptions fusedCorners = {[](const Scenario&, const Setting& setting) { return setting.set == core::eIS_Avx2; }};

// --- the functions

struct Family
{
    const char* name;
    Exceptions exceptions;
    std::function<Call(Scenario&)> read;
};

/// `call` makes a call of what the readers make, which are asked in this order.
template<class MakeCall, class... Readers>
Family family(const char* name, const Exceptions& exceptions, MakeCall call, const Readers&... readers)
{
    return {name, exceptions, [=](Scenario& scenario) {
                const std::tuple<decltype(readers(scenario))...> arguments{readers(scenario)...};
                return std::apply([&](const auto&... a) { return call(scenario, a...); }, arguments);
            }};
}

// clang-format off
const Family kFamilies[] = {
    family("maxL2Norm2Msr", norms, FUNCTION(maxL2Norm2Msr), in, in),
    family("cannyEdges2dImg", none, FUNCTION(cannyEdges2dImg), in, in, cannyThresholds),
    family("cannyEdges2dImg, into", none, FUNCTION(cannyEdges2dImg), in, in, cannyThresholds, policy, out),
    family("CannyEdges2dImgLvl1", none,
           processorCall<CannyEdges2dImgLvl1, OutBinImg, InGxGreyImg2d, InGyGreyImg2d, InCannyThresholds,
                         InOptOptimizationPolicy, OutOptWk1BinImg, OutOptWk2BinImg, OutOptWk1LabelImg, OutBinImg>,
           in, in, cannyThresholds, policy, working, working, working, outOrNone),
    family("cannySurfaces3dImg", none, FUNCTION(cannySurfaces3dImg), in, in, in, cannyThresholds),
    family("cannySurfaces3dImg, into", none, FUNCTION(cannySurfaces3dImg), in, in, in, cannyThresholds, policy, out),
    family("CannySurfaces3dImgLvl1", none,
           processorCall<CannySurfaces3dImgLvl1, OutBinImg, InGxGreyImg3d, InGyGreyImg3d, InGzGreyImg3d, InCannyThresholds,
                         InOptOptimizationPolicy, OutOptWk1BinImg, OutOptWk2BinImg, OutOptWk1LabelImg, OutBinImg>,
           in, in, in, cannyThresholds, policy, working, working, working, outOrNone),
    family("gaussianGradient2dImg", none, AT_ONCE(gaussianGradient2dImg), in, stdDev),
    family("gaussianGradient2dImg, into", none, AT_ONCE(gaussianGradient2dImg), in, stdDev, stdDev, coverage, outOrNone, out),
    family("GaussianGradient2dImgLvl1", none,
           processorCall<GaussianGradient2dImgLvl1, OutOptGradXImg, InImg, InStdDevX, InStdDevY,
                         InOptGradientGaussianCoverage, OutOptGradXImg>,
           in, stdDev, stdDev, coverageRecord, outOrNone),
    family("gaussianGradient3dImg", none, AT_ONCE(gaussianGradient3dImg), in, stdDev),
    family("gaussianGradient3dImg, into", none, AT_ONCE(gaussianGradient3dImg), in, stdDev, stdDev, stdDev, coverage, outOrNone,
           outOrNone, out),
    family("harrisCorner2dImg", none, FUNCTION(harrisCorner2dImg), in),
    family("harrisCorner2dImg, deviation", none, FUNCTION(harrisCorner2dImg), in, stdDev),
    family("harrisCorner2dImg, into", none, FUNCTION(harrisCorner2dImg), in, stdDev, coverageRecord, cornerParams, out),
    family("HarrisCorner2dImgLvl1", none,
           processorCall<HarrisCorner2dImgLvl1, OutImg, InImg, InOptGradStdDev, InOptGradientGaussianCoverage,
                         InOptCornerDetectionParams2d, OutWk1Img, OutWk2Img, OutWk3Img, OutImg>,
           in, stdDev, coverageRecord, cornerParams, working, working, working, outOrNone),
    family("harrisCorner2d", none, PLANES(harrisCorner2d), in, most, distance),
    family("harrisCorner2d, deviation", none, PLANES(harrisCorner2d), in, stdDev, most, distance),
    family("harrisCorner2d, all", none, PLANES(harrisCorner2d), in, stdDev, coverageRecord, cornerParams, most, threshold,
           distance, distance),
    family("harrisCorner3dImg", fusedCorners, FUNCTION(harrisCorner3dImg), in),
    family("harrisCorner3dImg, deviation", fusedCorners, FUNCTION(harrisCorner3dImg), in, stdDev),
    family("harrisCorner3dImg, into", fusedCorners, FUNCTION(harrisCorner3dImg), in, stdDev, coverageRecord, cornerParams, out),
    family("HarrisCorner3dImgLvl1", fusedCorners,
           processorCall<HarrisCorner3dImgLvl1, OutImg, InImg3d, InOptGradStdDev, InOptGradientGaussianCoverage,
                         InOptCornerDetectionParams3d, OutWk1Img, OutWk4Img, OutWk6Img, OutImg>,
           in, stdDev, coverageRecord, cornerParams, working, working, working, outOrNone),
    family("harrisCorner3d", fusedCorners, PLANES(harrisCorner3d), in, most, distance),
    family("harrisCorner3d, deviation", fusedCorners, PLANES(harrisCorner3d), in, stdDev, most, distance),
    family("harrisCorner3d, all", fusedCorners, PLANES(harrisCorner3d), in, stdDev, coverageRecord, cornerParams, most,
           threshold, distance, distance, distance),
    family("extractLocalExtrema2d", none, PLANES(extractLocalExtrema2d), in, distance, distance),
    family("extractLocalExtrema2d, all", none, PLANES(extractLocalExtrema2d), in, distance, distance, extremaConfig),
    family("extractLocalExtrema3d", none, PLANES(extractLocalExtrema3d), in, distance, distance, distance),
    family("extractLocalExtrema3d, all", none, PLANES(extractLocalExtrema3d), in, distance, distance, distance,
           extremaConfig),
    family("houghCircles2dImg", none, FUNCTION(houghCircles2dImg), in, in, radii),
    family("houghCircles2dImg, into", none, FUNCTION(houghCircles2dImg), in, in, radii, circleType, circleAngle, nbPoints, scores),
    family("houghCirclesPhaseCoded2dImg", none, FUNCTION(houghCirclesPhaseCoded2dImg), in, in, radii),
    family("houghCirclesPhaseCoded2dImg, into", none, FUNCTION(houghCirclesPhaseCoded2dImg), in, in, radii, circleType,
           circleAngle, nbPoints, scores, scores),
    family("houghCircles2d", none, PLANES(houghCircles2d), in, radii),
    family("houghCircles2d, grey", none, PLANES(houghCircles2d), in, radii, circleType, nbPoints, circleThreshold, tooClose),
    family("houghCircles2d, gradients", none, PLANES(houghCircles2d), in, in, radii),
    family("houghCircles2d, all", none, PLANES(houghCircles2d), in, in, radii, circleMethod, circleType, circleAngle, nbPoints,
           circleThreshold, tooClose, scores, scores),
    family("extractHoughPeaks2d", none, PLANES(extractHoughPeaks2d), in, in, threshold),
    family("ComputeBestCirclesRadiiFromGradMagImg2dLvl1", none,
           processorCall<ComputeBestCirclesRadiiFromGradMagImg2dLvl1, OutHoughCircles2dPpties, InGxSingleGreyImg2d,
                         InGySingleGreyImg2d, InOptCircleIntensityType, InHoughCirclesRadiusRange, InMaxAngleWithGradDir,
                         InNbMaxPtsPerCircle, InHoughCircles2dCenters, OutHoughCircles2dPpties>,
           in, in, circleType, radii, circleAngle, nbPoints, centers, circleList),
    family("ExtractRadiusFromHoughImgLvl1", none,
           processorCall<ExtractRadiusFromHoughImgLvl1, OutHoughCircles2dPpties, InSingleGreyComplexRealImg2d,
                         InSingleGreyComplexImImg2d, InHoughCircles2dCenters, InHoughCirclesRadiusRange,
                         OutHoughCircles2dPpties>,
           in, in, centers, radii, circleList),
    family("houghSpheres3dImg", none, FUNCTION(houghSpheres3dImg), in, in, in, radii),
    family("houghSpheres3dImg, into", none, FUNCTION(houghSpheres3dImg), in, in, in, radii, circleType, circleAngle, nbPoints,
           scores),
    family("houghSpheres3dLabelImg", none, FUNCTION(houghSpheres3dLabelImg), drawnSpheres, in),
    family("houghSpheres3dLabelImg, into", none, FUNCTION(houghSpheres3dLabelImg), drawnSpheres, in, out),
    family("houghSpheres3d", none, PLANES(houghSpheres3d), in, radii),
    family("houghSpheres3d, grey", none, PLANES(houghSpheres3d), in, radii, circleType, nbSpheres, nbPoints, circleThreshold,
           tooClose),
    family("houghSpheres3d, all", none, PLANES(houghSpheres3d), in, in, in, radii, circleType, nbSpheres, circleAngle, nbPoints,
           circleThreshold, tooClose, scores),
    family("ComputeBestSpheresRadiiFromGradMagImg3dLvl1", none,
           processorCall<ComputeBestSpheresRadiiFromGradMagImg3dLvl1, OutHoughSpheres3dPpties, InGxGreyImg3d, InGyGreyImg3d,
                         InGzGreyImg3d, InOptCircleIntensityType, InHoughCirclesRadiusRange, InMaxAngleWithGradDir,
                         InNbMaxPtsPerCircle, InHoughSpheres3dCenters, OutHoughSpheres3dPpties>,
           in, in, in, circleType, shortRadii, circleAngle, nbPoints, voxelCenters, sphereList),
    family("houghLines2dImg", floatVotes, FUNCTION(houghLines2dImg), in),
    family("houghLines2dImg, bins", floatVotes, FUNCTION(houghLines2dImg), in, greyBins),
    family("HoughLines2dImgLvl1", floatVotes,
           processorCall<HoughLines2dImgLvl1, OutImg, InGreyImg2d, InOptHoughLinesImgParams, OutImg>,
           in, greyBins, accumulator),
    family("houghLines2d", floatVotes, PLANES(houghLines2d), in),
    family("houghLines2d, all", floatVotes, PLANES(houghLines2d), in, greyBins, houghLines),
    family("houghLinesGradient2dImg", gradientVotes, FUNCTION(houghLinesGradient2dImg), in, in),
    family("houghLinesGradient2dImg, bins", gradientVotes, FUNCTION(houghLinesGradient2dImg), in, in, gradientBins, tolerance),
    family("HoughLinesGradient2dImgLvl1", gradientVotes,
           processorCall<HoughLinesGradient2dImgLvl1, OutRealImg, InGxGreyImg2d, InGyGreyImg2d,
                         InOptHoughLinesGradientImgParams, InOptHoughLinesOrientationTolerance, OutRealImg>,
           in, in, gradientBins, tolerance, accumulator),
    family("houghLinesGradient2d", gradientVotes, PLANES(houghLinesGradient2d), in, in),
    family("houghLinesGradient2d, all", gradientVotes, PLANES(houghLinesGradient2d), in, in, gradientBins, houghLines,
           tolerance),
};
// clang-format on

// --- the judge

/// Calls that were made of each function, and how many were served; told at the end.
struct Tally
{
    unsigned long nbCalls[std::size(kFamilies)] = {}, nbServed[std::size(kFamilies)] = {}, nbAll = 0;
    ~Tally()
    {
        for (unsigned int i = 0; i < std::size(kFamilies); nbAll += nbCalls[i++])
            std::fprintf(stderr, "%9lu calls, %9lu served: %s\n", nbCalls[i], nbServed[i], kFamilies[i].name);
        std::fprintf(stderr, "%9lu calls\n", nbAll);
    }
} g_tally;

/// Makes the machine one without the sets above this one.
void limitTo(core::eInstructionSet set)
{
    typedef std::map<processor::AlgorithmEntry*, processor::AlgorithmFunctionSelector> Selectors;
    static const Selectors all = [] {
        Selectors selectors;
        for (const std::string& name : processor::getAlgorithmNames())
            selectors[&processor::getAlgorithmEntry(name)] = processor::getAlgorithmEntry(name).selector;
        return selectors;
    }();
    static std::map<core::eInstructionSet, Selectors> limited;
    Selectors& chosen = limited[set];
    if (chosen.empty())
        for (const auto& [entry, selector] : all)
            for (const processor::AlgorithmFunctionIdentifier& function : selector.getFunctions())
                if (function.getInstructionSets().getSet(0) <= set)
                    chosen[entry].registerFunction(function);
    for (const auto& [entry, selector] : chosen)
        entry->selector = selector;
}

struct CallbackFailure : std::exception
{
    const char* what() const noexcept override { return "the callback of the fuzzer"; }
};

struct Outcome
{
    bool isServed = false;
    std::string refusal;
    Numbers numbers;
};

class Judge
{
public:
    Judge(const std::uint8_t* data, std::size_t size)
        : m_data(data), m_size(size), m_scenario(data, size, false), m_family(m_scenario.below(std::size(kFamilies))),
          m_call(kFamilies[m_family].read(m_scenario))
    {
        m_scenario.note();
    }

    void judge()
    {
        const Setting plain = {core::eIS_Generic, 1, kOneStrip};
        m_plain = run(m_scenario, plain, m_call.atOnce);
        const Setting vectors = {core::eIS_Sse2, 1, kOneStrip};
        m_vectors = kFamilies[m_family].exceptions.ofVectors ? run(m_scenario, vectors, m_call.atOnce) : m_plain;
        if (m_scenario.sharesMemory() && m_plain.isServed)
            judgeSharing(plain);
        for (const core::eInstructionSet set :
             {core::eIS_Generic, core::eIS_Sse2, core::eIS_Avx, core::eIS_Avx2, core::eIS_Avx512})
            if (core::isAvailable(set)) {
                const Setting setting = chooseSetting(set);
                const bool inBackground = m_call.start && m_scenario.oneIn(2);
                expectPlain(setting, inBackground ? run(m_scenario, setting, [&] { return m_call.start().read(); })
                                                  : run(m_scenario, setting, m_call.atOnce));
            }
        if (m_call.start && m_scenario.oneIn(3))
            judgeCallback(chooseSetting(core::eIS_Avx512));
    }

private:
    Setting chooseSetting(core::eInstructionSet set)
    {
        const unsigned int nbThreads = m_scenario.among({1u, 1u, 2u, 4u});
        return {set, nbThreads, m_scenario.among({kOneStrip, 0ul, 1ul, 2ul, 7ul, 13ul, 40ul})};
    }

    [[noreturn]] void fail(const Setting& setting, const std::string& what) const
    {
        std::cerr << kFamilies[m_family].name << ", " << core::getInstructionSetName(setting.set) << ", "
                  << setting.nbThreads << " threads, strips of " << setting.grain << " lines: " << what << "\nwith\n";
        Scenario again(m_data, m_size, false, &std::cerr);
        again.below(std::size(kFamilies));
        kFamilies[m_family].read(again);
        std::abort();
    }

    /// `mayEndMidway`: a call that fails may have written to its outputs.
    Outcome run(Scenario& scenario, const Setting& setting, const std::function<Numbers()>& call, bool mayEndMidway = false)
    {
        limitTo(setting.set);
        core::setNbThreads(setting.nbThreads);
        core::setStripGrain(setting.grain);
        scenario.restore();
        scenario.watchMemory(true);
        Outcome outcome;
        try {
            outcome.numbers = call();
            outcome.isServed = true;
        } catch (const std::exception& e) {
            outcome.refusal = e.what();
            if (!dynamic_cast<const BaseException*>(&e) && !dynamic_cast<const std::bad_alloc*>(&e)
                && !dynamic_cast<const CallbackFailure*>(&e))
                fail(setting, "not one of the library's exceptions: " + outcome.refusal);
        }
        scenario.watchMemory(false);
        ++g_tally.nbCalls[m_family];
        g_tally.nbServed[m_family] += outcome.isServed;
        // How many labels are needed is known when the components have been counted.
        const bool isUntouched = !outcome.isServed && !mayEndMidway
                                 && outcome.refusal.find("connected components") == std::string::npos;
        if (scenario.isOverwritten(isUntouched))
            fail(setting, "memory was written that is none of the call's; " + outcome.refusal);
        if (outcome.isServed)
            scenario.appendResults(outcome.numbers);
        // Any NaN is as good as another: gradients hand on those of the image by sets and strips of their own.
        std::replace_if(
            outcome.numbers.begin(), outcome.numbers.end(), [](double n) { return std::isnan(n); }, kNan);
        return outcome;
    }

    void expectPlain(const Setting& setting, const Outcome& found) const
    {
        const Outcome& plain = setting.set == core::eIS_Generic ? m_plain : m_vectors;
        if (found.isServed != plain.isServed || found.refusal != plain.refusal)
            fail(setting, "'" + found.refusal + "' instead of '" + plain.refusal + "'");
        const auto same = test::same(plain.numbers, found.numbers);
        if (!same && !kFamilies[m_family].exceptions.hold(m_scenario, setting))
            fail(setting, std::string("not the result of plain code: ") + same.message());
    }

    /// Images that share memory give what images apart give.
    void judgeSharing(const Setting& plain)
    {
        Scenario apart(m_data, m_size, true);
        apart.below(std::size(kFamilies));
        const Call call = kFamilies[m_family].read(apart);
        m_scenario.restore();
        apart.copyFrom(m_scenario);
        apart.note();
        expectPlain(plain, run(apart, plain, call.atOnce));
    }

    /// A callback that throws or cancels ends the run, one that sets another does not; the processor serves again.
    void judgeCallback(const Setting& setting)
    {
        enum
        {
            eThrows,
            eCancels,
            eSets
        };
        const auto kind = m_scenario.below(3);
        const int at = 1 + static_cast<int>(m_scenario.below(m_scenario.oneIn(2) ? 3 : 30));
        const bool inBackground = m_scenario.oneIn(2);
        Started started;
        expectPlain(setting, run(m_scenario, setting, [&] { return (started = m_call.start()).read(); }));
        if (!started.processor)
            return;  // refused before it was started
        processor::BaseProcessor& processor = *started.processor;
        const auto again = [&] {
            if (inBackground)
                processor.run(core::eST_Asynchronous);
            else
                processor::executeSyncRun(started.processor);
            return started.read();
        };
        int nbCalled = 0;
        std::atomic<bool> isInside(false);
        bool isOrderly = true;
        processor.setProgressCallback([&](double done) {
            isOrderly = isOrderly && !isInside.exchange(true) && done >= 0 && done <= 1;
            const bool isTime = ++nbCalled == at;
            if (isTime && kind == eCancels)
                processor.requestCancellation();
            if (isTime && kind == eSets)
                processor.setProgressCallback([](double) {});
            isInside = false;
            if (isTime && kind == eThrows)
                throw CallbackFailure();
        });
        const Outcome ended = run(m_scenario, setting, again, true);
        const std::string text = kind == eThrows ? CallbackFailure().what() : core::getCancelledText();
        if (!isOrderly)
            fail(setting, "a callback within a callback, or with a fraction that is none");
        if (nbCalled < at || kind == eSets)
            expectPlain(setting, ended);
        else if (ended.refusal.find(text) == std::string::npos || processor.getErrorMessage() != ended.refusal)
            fail(setting, "'" + ended.refusal + "' instead of '" + text + "'");
        processor.setProgressCallback(nullptr);
        expectPlain(setting, run(m_scenario, setting, again));
    }

    const std::uint8_t* m_data;
    std::size_t m_size;
    Scenario m_scenario;
    unsigned int m_family;
    Call m_call;
    Outcome m_plain, m_vectors;
};

}}  // namespace orvik::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    orvik::fuzz::Judge(data, size).judge();
    return 0;
}
