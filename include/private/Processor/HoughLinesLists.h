#pragma once

#include "frame/imaproc/ImageInitializers.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/util/ProcessingResult.h"

namespace orvik { namespace imaproc { namespace fd {

/// What a search for lines needs before its planes are dealt out: a list for each plane of `in`, and the accumulator, which
/// `info` makes where none is given.
template<class Lists, class In, class Out>
BoolResult prepareLines(const boost::shared_ptr<Lists>& lists, const boost::shared_ptr<In>& in,
                        const boost::shared_ptr<Out>& accumulator, const boost::shared_ptr<BaseCustomImageInfo>& info)
{
    // No rule says so, but planes must never share a list.
    const processor::RulePtr plans = matchImagePlans(lists, in, eIPMP_Planes);
    if (!plans->testRule())
        return failure(plans->createRuleEvaluatedString(0));
    return customOutput(accumulator, info)->initOutputAttribute();
}

}}}  // namespace orvik::imaproc::fd
