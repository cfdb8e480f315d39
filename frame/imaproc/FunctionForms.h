#pragma once

// The forms of a family's public functions, each list of arguments written once:
//
//     typedef FunctionForms<ExtractLocalExtrema2dLvl1, OutPIPixels2d> Forms;
//
//     ORVIK_PLANE_FUNCTIONS(extractLocalExtrema2d, (const ConstImagePtr&, inImg)(unsigned int, inFeaturesDistX)...)
//     {
//         processor.set<InImg>(inImg);
//         ...
//     }
//     ORVIK_PLANE_READERS
//
// defines extractLocalExtrema2d, extractLocalExtrema2d_async, and both with multiSlice_ in front, for these arguments; the
// block sets the attributes of the Level 1 processor from them. What a function hands over, and the readers of those in the
// background, follow from the outputs that `Forms` names.

#include "frame/imaproc/ImageAttributes.h"
#include "frame/processor/Processor.h"

#include <boost/preprocessor/punctuation/comma_if.hpp>
#include <boost/preprocessor/seq/for_each_i.hpp>
#include <boost/preprocessor/seq/variadic_seq_to_seq.hpp>

#include <tuple>
#include <utility>

namespace orvik { namespace imaproc {

namespace details {

/// What is handed over of an output: its value; of lists per plane, all of them or that of the first plane.
template<class A, bool PlanIndexed>
struct HandedOver
{
    typedef typename A::StorageType All;
    typedef All One;
    static const One& oneOf(const All& value) { return value; }
    template<class P>
    static void askForOne(P&)
    {
    }
    template<class P>
    static void checkGiven(const P& processor)
    {
        if (!processor.template getStorage<A>())
            processor::details::throwValueMissing(P::getObjectNameStr(), A::getObjectNameStr());
    }
};
template<class A>
struct HandedOver<A, true>
{
    typedef typename A::StorageType All;
    typedef boost::shared_ptr<typename A::Entry> One;
    static One oneOf(const All& value) { return value->getEntry(PlanIndex()); }
    /// An image of several planes is then refused by the rule.
    template<class P>
    static void askForOne(P& processor)
    {
        processor.template set<A>(All::element_type::createOfOnePlane());
    }
    template<class P>
    static void checkGiven(const P& processor)
    {
        HandedOver<A, false>::checkGiven(processor);
    }
};
template<class A>
using HandedOverOf = HandedOver<A, std::is_base_of<BasePlanIndexedAttribute, A>::value>;

template<class... T>
struct ResultOf;
template<class T>
struct ResultOf<T>
{
    typedef T type;
};
template<class T, class U>
struct ResultOf<T, U>
{
    typedef std::pair<T, U> type;
};
template<class T, class U, class V>
struct ResultOf<T, U, V>
{
    typedef std::tuple<T, U, V> type;
};

}  // namespace details

/// Runs Level 1 class `P` and hands its outputs `Out` over: one, a pair, or a tuple of three.
template<class P, class... Out>
struct FunctionForms
{
    typedef P Processor;
    typedef boost::shared_ptr<P> ProcessorPtr;
    /// What functions for one plane, and those for any number, return.
    typedef typename details::ResultOf<typename details::HandedOverOf<Out>::One...>::type One;
    typedef typename details::ResultOf<typename details::HandedOverOf<Out>::All...>::type All;

    enum Planes
    {
        eOnePlane,
        eAllPlanes,
        eIntoGiven  ///< all, of functions that write into what the caller gives: nobody would see what was made instead
    };

    /// A processor whose attributes `prepare` sets.
    template<class Prepare>
    static ProcessorPtr make(Planes planes, const Prepare& prepare)
    {
        const ProcessorPtr processor = processor::createInitialised<P>();
        prepare(*processor);
        if (planes == eOnePlane)
            (details::HandedOverOf<Out>::askForOne(*processor), ...);
        if (planes == eIntoGiven)
            (details::HandedOverOf<Out>::checkGiven(*processor), ...);
        return processor;
    }
    /// Runs it at once.
    template<class Prepare>
    static ProcessorPtr run(Planes planes, const Prepare& prepare)
    {
        const ProcessorPtr processor = make(planes, prepare);
        processor::executeSyncRun(processor);
        return processor;
    }
    /// Runs it in the background, where it keeps itself alive until it has ended.
    template<class Prepare>
    static ProcessorPtr start(Planes planes, const Prepare& prepare)
    {
        const ProcessorPtr processor = make(planes, prepare);
        processor->run(core::eST_Asynchronous);
        return processor;
    }
    /// Waits for the end of what was started. @throws what ended the run, when it failed.
    static const ProcessorPtr& wait(const ProcessorPtr& processor)
    {
        processor::waitForEnd(processor);
        return processor;
    }
    /// The outputs of a processor that has ended.
    static One one(const ProcessorPtr& processor)
    {
        return One{details::HandedOverOf<Out>::oneOf(processor->template getStorage<Out>())...};
    }
    static All all(const ProcessorPtr& processor) { return All{processor->template getStorage<Out>()...}; }
};

#define ORVIK_FORM_PARAMETER(Type, name) Type name
#define ORVIK_FORM_ARGUMENT(Type, name) name
#define ORVIK_EACH_FORM_PARAMETER(r, data, i, parameter) BOOST_PP_COMMA_IF(i) ORVIK_FORM_PARAMETER parameter
#define ORVIK_EACH_FORM_ARGUMENT(r, data, i, parameter) BOOST_PP_COMMA_IF(i) ORVIK_FORM_ARGUMENT parameter
#define ORVIK_FORM_PARAMETERS(parameters) BOOST_PP_SEQ_FOR_EACH_I(ORVIK_EACH_FORM_PARAMETER, _, parameters)
/// Sets the attributes by the block that follows the macro.
#define ORVIK_FORM_PREPARE(parameters) \
    [&](Forms::Processor& processor) { \
        prepare(processor, BOOST_PP_SEQ_FOR_EACH_I(ORVIK_EACH_FORM_ARGUMENT, _, parameters)); \
    }

// One function at once, which returns what `hand` makes of the processor, and one in the background.
#define ORVIK_FORMS(Name, Result, planes, hand, parameters) \
    Result Name(ORVIK_FORM_PARAMETERS(parameters)) \
    { \
        return hand(Forms::run(Forms::planes, ORVIK_FORM_PREPARE(parameters))); \
    } \
    Forms::ProcessorPtr Name##_async(ORVIK_FORM_PARAMETERS(parameters)) \
    { \
        return Forms::start(Forms::planes, ORVIK_FORM_PREPARE(parameters)); \
    }
#define ORVIK_DECLARE_PREPARE(parameters) static void prepare(Forms::Processor& processor, ORVIK_FORM_PARAMETERS(parameters))

/// `Name` and `Name_async` of functions that treat all planes at once and return their result.
#define ORVIK_FUNCTION(Name, parameters) ORVIK_FUNCTION_OF(Name, BOOST_PP_VARIADIC_SEQ_TO_SEQ(parameters))
#define ORVIK_FUNCTION_OF(Name, parameters) \
    ORVIK_DECLARE_PREPARE(parameters); \
    ORVIK_FORMS(Name, Forms::All, eAllPlanes, Forms::all, parameters) \
    ORVIK_DECLARE_PREPARE(parameters)
/// The same of functions into images of the caller's, which return nothing and refuse null.
#define ORVIK_PROCEDURE(Name, parameters) ORVIK_PROCEDURE_OF(Name, BOOST_PP_VARIADIC_SEQ_TO_SEQ(parameters))
#define ORVIK_PROCEDURE_OF(Name, parameters) \
    ORVIK_DECLARE_PREPARE(parameters); \
    ORVIK_FORMS(Name, void, eIntoGiven, void, parameters) \
    ORVIK_DECLARE_PREPARE(parameters)
/// `Name`, `Name_async` for one plane, `multiSlice_Name`, `multiSlice_Name_async` for any number of them.
#define ORVIK_PLANE_FUNCTIONS(Name, parameters) ORVIK_PLANE_FUNCTIONS_OF(Name, BOOST_PP_VARIADIC_SEQ_TO_SEQ(parameters))
#define ORVIK_PLANE_FUNCTIONS_OF(Name, parameters) \
    ORVIK_DECLARE_PREPARE(parameters); \
    ORVIK_FORMS(Name, Forms::One, eOnePlane, Forms::one, parameters) \
    ORVIK_FORMS(multiSlice_##Name, Forms::All, eAllPlanes, Forms::all, parameters) \
    ORVIK_DECLARE_PREPARE(parameters)

/// Of results in the background.
#define ORVIK_READER \
    Forms::All getAsyncProcessorOutput(Forms::ProcessorPtr processor) \
    { \
        return Forms::all(Forms::wait(processor)); \
    }
#define ORVIK_PLANE_READERS \
    Forms::One getAsyncProcessorOutput(Forms::ProcessorPtr processor) \
    { \
        return Forms::one(Forms::wait(processor)); \
    } \
    Forms::All getAsyncProcessorMultiSliceOutput(Forms::ProcessorPtr processor) \
    { \
        return Forms::all(Forms::wait(processor)); \
    }

}}  // namespace orvik::imaproc
