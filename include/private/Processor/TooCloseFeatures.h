#pragma once

#include "frame/attr/Records.h"
#include "frame/core/Scheduler.h"
#include "frame/util/ProcessingResult.h"

#include <algorithm>
#include <vector>

namespace orvik { namespace imaproc { namespace fd {

inline double squaredDistance(const attr::HoughCircle2dPpties& a, const attr::HoughCircle2dPpties& b)
{
    typedef attr::HoughCircle2dPpties Circle;
    const double dx = a.get<Circle::X>() - b.get<Circle::X>(), dy = a.get<Circle::Y>() - b.get<Circle::Y>();
    return dx * dx + dy * dy;
}

/// Leaves out of a list each feature that is too close to one before it which stays. Fails when cancelled.
template<class Features, class IsCancelled>
BoolResult removeTooClose(const attr::RemoveTooCloseCirclesParams& params, Features& features,
                          const IsCancelled& isCancelled)
{
    typedef typename Features::Coll::NodeType Feature;
    if (!params.get<attr::RemoveTooCloseCirclesParams::Enabled>())
        return success();
    const double factor = params.get<attr::RemoveTooCloseCirclesParams::DistanceFactor>() - 1.0;
    auto& nodes = features.template access<typename Features::Coll>().accessNodes();
    std::size_t nbKept = 0;
    for (std::size_t j = 0; j < nodes.size(); ++j) {
        const std::size_t often = 1024;
        if (j % often == 0 && isCancelled())
            return failure(core::getCancelledText());
        const bool isClose =
            std::any_of(nodes.begin(), nodes.begin() + static_cast<std::ptrdiff_t>(nbKept), [&](const auto& kept) {
                const double ours = nodes[j]->template get<typename Feature::Radius>();
                const double theirs = kept->template get<typename Feature::Radius>();
                const double limit = std::min(ours, theirs) * factor + std::max(ours, theirs);
                return limit * limit > squaredDistance(*nodes[j], *kept);
            });
        if (!isClose)
            nodes[nbKept++] = nodes[j];
    }
    nodes.resize(nbKept);
    return success();
}

}}}  // namespace orvik::imaproc::fd
