#pragma once

#include "frame/imaproc/ImageRules.h"

#include <initializer_list>

namespace orvik { namespace imaproc { namespace fd {

/// The rule on the images that a response to corners is computed in, of which the first `nbGradients` hold the gradients of
/// `in`: those are written while `in` is read, and no image shares memory with another. The stages would refuse them, too, but
/// later, when some would have been written.
inline processor::RulePtr workingImagesApart(const WeakImage& in, std::initializer_list<WeakImage> working,
                                             unsigned long nbGradients)
{
    processor::RulePtr rule;
    const auto add = [&rule](const WeakImage& a, const WeakImage& b) {
        const processor::RulePtr apart = noInSitu(a, b);
        rule = rule ? rule && apart : apart;
    };
    for (unsigned long i = 0; i < nbGradients; ++i)
        add(in, working.begin()[i]);
    for (const WeakImage* first = working.begin(); first != working.end(); ++first)
        for (const WeakImage* second = first + 1; second != working.end(); ++second)
            add(*first, *second);
    return rule;
}

}}}  // namespace orvik::imaproc::fd
