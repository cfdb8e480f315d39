#include "Processor/ExtractHoughPeaks2d/ExtractHoughPeaks2dLvl2.h"

#include "Processor/ExtractHoughPeaks2d/ExtractHoughPeaks2dLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"

#include <algorithm>

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(ExtractHoughPeaks2dLvl2)

processor::RetrievalResult ExtractHoughPeaks2dLvl2::retrieveProvider(const core::BasePriority& priority,
                                                                     processor::ProviderPtr& provider)
{
    return dispatch<ExtractHoughPeaks2dLvl3>(priority, provider, resultOfEach<OutPixels2d>(m_results),
                                             same(attribute<InOptLowestMax>()),
                                             stripsWithMargins<InGxKnlYStrip2d>(value<InSubGxImg2d>(), 1, 1),
                                             stripsWithMargins<InGyKnlYStrip2d>(value<InSubGyImg2d>(), 1, 1));
}

processor::StageResult ExtractHoughPeaks2dLvl2::postProcess()
{
    auto& peaks = value<OutPixels2d>()->access<Pixels2d::Coll>().accessNodes();
    peaks.clear();
    for (const auto& strip : *m_results) {
        const auto& nodes = strip.second->get<Pixels2d::Coll>().getNodes();
        peaks.insert(peaks.end(), nodes.begin(), nodes.end());
    }
    // The contents move between the records, not the records in the list, and equal peaks stand as the sort leaves them.
    struct Peak
    {
        double x, y, value;
    };
    std::vector<Peak> order;
    order.reserve(peaks.size());
    for (const Ptr<Pixel2d>& peak : peaks)
        order.push_back({peak->get<Pixel2d::X>(), peak->get<Pixel2d::Y>(), peak->get<Pixel2d::Value>()});
    std::sort(order.begin(), order.end(), [](const Peak& a, const Peak& b) { return a.value > b.value; });
    for (std::size_t i = 0; i < order.size(); ++i) {
        peaks[i]->set<Pixel2d::X>(order[i].x);
        peaks[i]->set<Pixel2d::Y>(order[i].y);
        peaks[i]->set<Pixel2d::Value>(order[i].value);
    }
    return processor::eSRT_Done;
}

void ExtractHoughPeaks2dLvl2::clearIntermediateData() noexcept
{
    m_results->clear();
}

}}}  // namespace orvik::imaproc::fd
