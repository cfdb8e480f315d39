#pragma once

// Runs of the Hook family, which lists the lines that it is given.

#include "FamilyShapes.h"
#include "TinyProcessor.h"

#include "frame/attr/ImageAttributes.h"

#include <functional>
#include <vector>

namespace orvik::test {

using namespace imaproc::tiny;
using namespace processor;

/// Sets the function that the Hook family calls for each line, for a scope.
struct OnLine
{
    explicit OnLine(const std::function<BoolResult(unsigned long)>& f) { Hook::s_onLine = f; }
    ~OnLine() { Hook::s_onLine = nullptr; }
};

inline boost::shared_ptr<HookLvl1> hookOn(const ImagePtr& image)
{
    return processorWith<HookLvl1, InTinyImg>(image);
}

template<class P>
boost::shared_ptr<P> startInBackground(const boost::shared_ptr<P>& processor)
{
    processor->run(core::eST_Asynchronous);
    return processor;
}

/// The lists of a run in the background, when it has ended.
inline boost::shared_ptr<PlanIndexedMarks> listsOf(const boost::shared_ptr<HookLvl1>& hook)
{
    processor::waitForEnd(hook);
    return hook->getStorage<OutPIMarks>();
}

/// Lines of all planes in their order, as plane, row and first sample.
inline std::vector<long> linesOf(const PlanIndexedMarks& lists)
{
    std::vector<long> lines;
    for (const PlanIndex& plan : lists.getPlans())
        for (const auto& mark : lists.getEntry(plan)->get<Marks::Coll>().getNodes())
            lines.insert(lines.end(),
                         {static_cast<long>(plan.z), static_cast<long>(mark->get<Mark::Y>()), mark->get<Mark::Id>()});
    return lines;
}

inline std::vector<long> expectedLines(const image::BaseImage& image)
{
    std::vector<long> lines;
    for (unsigned long z = 0; z < image.getSizeZ(); ++z)
        for (unsigned long y = 0; y < image.getSizeY(); ++y)
            lines.insert(lines.end(),
                         {static_cast<long>(z), static_cast<long>(y), static_cast<long>(sampleAt(image, 0, y, z))});
    return lines;
}

}  // namespace orvik::test
